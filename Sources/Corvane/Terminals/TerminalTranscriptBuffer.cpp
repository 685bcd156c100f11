#include "Terminals/TerminalTranscriptBuffer.h"

#include "Foundation/Literals.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <QTextBoundaryFinder>

namespace corvane {

namespace {

constexpr size_t maxRawBytes = 1 << 20;
constexpr size_t maxTail = 256;
constexpr size_t maxLine = 4096; // of typed text without a line end, as for full-screen programs
constexpr qsizetype leastSnapshot = 500;
constexpr char interrupt = 3;
constexpr char endOfInput = 4;

/// Where the last `count` user-perceived characters of the text begin.
qsizetype startOfLast(const QString& text, qsizetype count)
{
    qsizetype at = text.size();
    std::optional<QTextBoundaryFinder> finder;
    while (at > 0 && count > 0) {
        const QChar last = text.at(at - 1);
        const QChar before = at > 1 ? text.at(at - 2) : QChar();
        if (last.unicode() < 0x80 && before.unicode() < 0x80) {
            at -= last == u'\n' && before == u'\r' ? 2 : 1;
        } else {
            if (!finder)
                finder.emplace(QTextBoundaryFinder::Grapheme, text);
            finder->setPosition(at);
            at = finder->toPreviousBoundary();
        }
        --count;
    }
    return std::max<qsizetype>(at, 0);
}

/// Nothing if it is not UTF-8.
QString decoded(const std::string& chunk)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(QByteArrayView(chunk.data(), qsizetype(chunk.size())));
    return decoder.hasError() ? QString() : text;
}

/// The length of an incomplete character at the end, in bytes.
size_t cutLength(std::string_view chunk)
{
    for (size_t back = 1; back <= std::min<size_t>(3, chunk.size()); ++back) {
        const auto byte = uint8_t(chunk[chunk.size() - back]);
        if (byte < 0x80 || byte >= 0xf5)
            return 0;
        if (byte >= 0xc0)
            return back < (byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : 2) ? back : 0;
    }
    return 0;
}

void keepEnd(std::string& text, size_t most)
{
    if (text.size() > most)
        text.erase(0, text.size() - most);
}

}

QString cleanTranscript(const QString& text)
{
    QString clean;
    clean.reserve(text.size());
    bool inEscape = false;
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        if (inEscape)
            inEscape = !character.isLetter() && unit != u'~';
        else if (unit == 27)
            inEscape = true;
        else if (unit != 8 && unit != 7 && unit != 0)
            clean.append(character);
    }
    return clean;
}

bool endsInPasswordPrompt(const QString& text)
{
    // The prompt may show stars for what was typed so far.
    static const QRegularExpression prompt(
        uR"((?i)\b(pass(word|phrase|code|wort)|passwd|pin|secret|token|verification code)\b)"
        R"([^\n]{0,80}[:?][ \t]*[*•]*\z)"_s);
    return prompt.match(text).hasMatch();
}

TerminalTranscriptBuffer::TerminalTranscriptBuffer(qsizetype maxCharacters)
    : m_maxCharacters(maxCharacters)
{
}

void TerminalTranscriptBuffer::received(std::string_view chunk)
{
    const std::lock_guard lock(m_lock);
    std::string joined;
    if (!m_cut.empty()) {
        joined = std::exchange(m_cut, {}).append(chunk);
        chunk = joined;
    }
    const size_t cut = cutLength(chunk);
    m_cut = chunk.substr(chunk.size() - cut);
    chunk.remove_suffix(cut);
    m_tail.append(chunk.substr(chunk.size() - std::min(chunk.size(), maxTail)));
    keepEnd(m_tail, maxTail);
    if (m_typing) {
        m_echo.append(chunk.substr(chunk.size() - std::min(chunk.size(), maxLine)));
        keepEnd(m_echo, maxLine);
    }
    append(chunk);
}

void TerminalTranscriptBuffer::sent(std::string_view chunk, bool hidden)
{
    const std::lock_guard lock(m_lock);
    for (const char character : chunk) {
        if (!std::exchange(m_typing, true)) {
            m_echo.clear();
            m_hidden
                = endsInPasswordPrompt(cleanTranscript(QString::fromUtf8(m_tail.data(), qsizetype(m_tail.size()))));
        }
        m_hidden |= hidden;
        if (m_hidden)
            m_typed.clear();
        const bool ends = character == '\r' || character == '\n' || character == interrupt || character == endOfInput;
        if (ends)
            endLine(character);
        else if (!m_hidden)
            m_typed.push_back(character);
        if (m_typed.size() >= maxLine)
            endLine(0);
    }
}

void TerminalTranscriptBuffer::endLine(char end)
{
    const auto readable = [](const std::string& text) {
        return cleanTranscript(QString::fromUtf8(text.data(), qsizetype(text.size())));
    };
    if (m_hidden)
        append("[hidden]" + std::string(1, end));
    else if (!readable(m_echo).contains(readable(m_typed)))
        append(end ? m_typed + end : m_typed);
    m_typed.clear();
    m_typing = false;
    // Text typed ahead belongs to the next prompt.
    m_tail.clear();
}

void TerminalTranscriptBuffer::append(std::string_view chunk)
{
    if (chunk.empty())
        return;
    m_chunks.emplace_back(chunk);
    m_bytes += chunk.size() + sizeof(std::string);
    if (m_bytes > maxRawBytes)
        compact();
}

/// Replaces the chunks with their cleaned text; cleaning it again changes nothing.
void TerminalTranscriptBuffer::compact()
{
    QStringList pieces; // newest first
    qsizetype units = 0;
    qsizetype enough = m_maxCharacters;
    QString text;
    while (true) {
        while (!m_chunks.empty() && units < enough) {
            pieces.append(cleanTranscript(decoded(m_chunks.back())));
            units += pieces.last().size();
            m_chunks.pop_back();
        }
        text.clear();
        for (auto piece = pieces.crbegin(); piece != pieces.crend(); ++piece)
            text += *piece;
        const qsizetype start = startOfLast(text, m_maxCharacters);
        text.remove(0, start);
        if (start > 0 || m_chunks.empty())
            break;
        enough = 2 * units;
    }
    m_chunks.clear();
    const QByteArray bytes = text.toUtf8();
    m_bytes = size_t(bytes.size()) + sizeof(std::string);
    m_chunks.emplace_back(bytes.data(), size_t(bytes.size()));
}

QString TerminalTranscriptBuffer::snapshot(qsizetype maxCharacters)
{
    const std::lock_guard lock(m_lock);
    compact();
    QString text = QString::fromStdString(m_chunks.front());
    if (m_typing)
        text += m_hidden ? u"[hidden]"_s : cleanTranscript(decoded(m_typed));
    const qsizetype most = std::min(std::max(maxCharacters, leastSnapshot), m_maxCharacters);
    return text.mid(startOfLast(text, most)).trimmed();
}

}
