#include "Foundation/Text.h"

#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"

#include <QTextBoundaryFinder>
#include <algorithm>

namespace corvane {

namespace {

/// Whether the code unit is always a character on its own: Latin, Greek, Cyrillic, common punctuation, Han.
bool isPlain(QChar character)
{
    const char16_t unit = character.unicode();
    return (unit < 0x300 && unit != u'\r') || (unit >= 0x370 && unit < 0x483) || (unit >= 0x2010 && unit < 0x2028)
        || (unit >= 0x4E00 && unit < 0xA000);
}

/// Everything that may be taken for a line break, and tabs.
bool breaksALine(QChar unit)
{
    return (unit >= u'\t' && unit <= u'\r') || unit == u'\u0085' || unit == u'\u2028' || unit == u'\u2029';
}

QString onOneLine(QString text)
{
    std::ranges::replace_if(text, breaksALine, u' ');
    return text;
}

}

QString folded(const QString& text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_KD).toCaseFolded();
    QString plain;
    plain.reserve(decomposed.size());
    for (const QChar character : decomposed) {
        if (!character.isMark())
            plain.append(character);
    }
    return plain;
}

QString singleLine(const QString& text)
{
    return text.simplified();
}

QString firstCharacters(const QString& text, int count)
{
    if (text.size() <= count)
        return text;
    if (std::ranges::all_of(QStringView(text).first(count + 1), isPlain))
        return text.first(count);
    // Only as much of a long text is examined as needed; a boundary at the window's end does not count.
    for (qsizetype window = 4 * qsizetype(count) + 64;; window *= 2) {
        window = std::min(window, text.size());
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, QStringView(text).first(window));
        qsizetype end = 0;
        for (int seen = 0; seen < count && end != -1; ++seen)
            end = finder.toNextBoundary();
        if (window == text.size())
            return end == -1 ? text : text.first(end);
        if (end != -1 && end < window)
            return text.first(end);
    }
}

QString promptLine(const QString& text)
{
    return onOneLine(text.trimmed());
}

QString promptLine(const QString& text, int limit)
{
    // A single character may carry any number of marks; sixteen units are more than any emoji needs.
    const QString trimmed = text.trimmed();
    QString start = trimmed.left(16 * limit);
    if (!start.isEmpty() && start.back().isHighSurrogate() && start.size() < trimmed.size())
        start.chop(1);
    start = firstCharacters(start, limit);
    return start.size() == trimmed.size() ? onOneLine(start) : onOneLine(start) + u"..."_s;
}

QString atStart(const QString& words)
{
    return words.left(1).toUpper() + words.mid(1);
}

}
