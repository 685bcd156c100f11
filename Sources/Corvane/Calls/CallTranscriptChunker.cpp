#include "Calls/CallTranscriptChunker.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QTextBoundaryFinder>
#include <algorithm>

namespace corvane::CallTranscriptChunker {

namespace {

constexpr int labelLimit = 49;

/// A text and its length, cached since it is expensive to compute.
struct Piece {
    explicit Piece(const QString& of = {})
        : text(of)
        , count(characterCount(of))
    {
    }
    QString text;
    qsizetype count;
};

using Split = QStringList (*)(const QString& text, int maxCharacters);

/// Packs as many parts as fit into each piece, with the separator between them. Splits a part that is too long.
QStringList pack(const QStringList& parts, const QString& separator, int maxCharacters, Split split)
{
    QStringList pieces;
    QString packed;
    qsizetype packedCount = 0;
    const auto emitPacked = [&] {
        if (const QString piece = packed.trimmed(); !piece.isEmpty())
            pieces.append(piece);
        packed.clear();
        packedCount = 0;
    };
    for (const QString& part : parts) {
        const Piece next(part);
        if (next.count > maxCharacters) {
            emitPacked();
            pieces += split(part, maxCharacters);
        } else if (packed.isEmpty()) {
            packed = part;
            packedCount = next.count;
        } else if (packedCount + separator.size() + next.count <= maxCharacters) {
            packed += separator + part;
            packedCount += separator.size() + next.count;
        } else {
            emitPacked();
            packed = part;
            packedCount = next.count;
        }
    }
    emitPacked();
    return pieces;
}

QStringList chunked(const QString& word, int maxCharacters)
{
    QStringList pieces;
    for (QString rest = word; !rest.isEmpty();) {
        const QString piece = firstCharacters(rest, maxCharacters);
        pieces.append(piece);
        rest.remove(0, piece.size());
    }
    return pieces;
}

QStringList splitByWords(const QString& text, int maxCharacters)
{
    return pack(text.split(u' ', Qt::SkipEmptyParts), u" "_s, maxCharacters, chunked);
}

/// A sentence ends after a full stop, an exclamation or a question mark before white space or the end.
QStringList splitAfterSentenceTerminators(const QString& text)
{
    QStringList sentences;
    const auto add = [&](qsizetype from, qsizetype to) {
        if (const QString sentence = text.sliced(from, to - from).trimmed(); !sentence.isEmpty())
            sentences.append(sentence);
    };
    qsizetype start = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar character = text.at(at);
        const bool ends = character == u'.' || character == u'!' || character == u'?';
        if (!ends || (at + 1 < text.size() && !text.at(at + 1).isSpace()))
            continue;
        add(start, at + 1);
        start = at + 1;
    }
    add(start, text.size());
    return sentences;
}

QStringList splitBySentences(const QString& text, int maxCharacters)
{
    return pack(splitAfterSentenceTerminators(text), u" "_s, maxCharacters, splitByWords);
}

QStringList splitLongTurn(const QString& turn, int maxCharacters)
{
    return pack(turn.split(u'\n'), u"\n"_s, maxCharacters, splitBySentences);
}

/// Whether the line starts with a name and a colon, and not with a web address or a clock time.
bool isSpeakerTurnStart(const QString& line)
{
    const qsizetype colon = line.indexOf(u':');
    if (colon < 0 || line.sliced(colon).startsWith("://"_L1))
        return false;
    const QString label = line.first(colon).trimmed();
    const auto isOfPath = [](QChar character) {
        return character == u'.' || character == u'/' || character == u'\\';
    };
    return !label.isEmpty() && characterCount(label) < labelLimit && std::ranges::none_of(label, isOfPath)
        && std::ranges::any_of(label, [](QChar character) { return character.isLetter(); });
}

QStringList speakerTurns(const QString& text)
{
    QStringList turns;
    QStringList group;
    const auto close = [&] {
        if (const QString turn = group.join(u'\n').trimmed(); !turn.isEmpty())
            turns.append(turn);
        group.clear();
    };
    for (const QString& line : text.split(u'\n')) {
        if (isSpeakerTurnStart(line))
            close();
        group.append(line);
    }
    close();
    return turns;
}

}

/// Below the first combining mark only a carriage return forms a character with what follows. Most transcripts hold
/// nothing else, and finding the boundaries of hours of speech would be felt.
qsizetype characterCount(const QString& text)
{
    if (std::ranges::all_of(text, [](QChar unit) { return unit < QChar(0x300) && unit != u'\r'; }))
        return text.size();
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() != -1)
        ++count;
    return count;
}

QStringList chunks(const QString& text, int maxCharacters)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return {};
    if (characterCount(trimmed) <= maxCharacters)
        return { trimmed };
    return pack(speakerTurns(trimmed), u"\n\n"_s, maxCharacters, splitLongTurn);
}

}
