#include "Presentation/BodyText.h"

#include "Foundation/Literals.h"

#include <QLocale>
#include <QTextBoundaryFinder>
#include <algorithm>

namespace corvane::BodyText {

namespace {

// The search range for grapheme boundaries around a cut.
constexpr qsizetype longestCharacter = 64;

bool isLineEnd(QChar character)
{
    return character == u'\r' || character == u'\u0085' || character == QChar::LineSeparator
        || character == QChar::ParagraphSeparator;
}

/// Directional marks that affect the rest of the line.
bool isOverride(QChar character)
{
    return character == u'\u202D' || character == u'\u202E';
}

bool isHidden(QChar character)
{
    return (character.category() == QChar::Other_Control && character != u'\n' && character != u'\t')
        || isOverride(character);
}

bool isPlain(QChar character)
{
    return !character.isSurrogate() && !isHidden(character) && !isLineEnd(character);
}

bool isPairAt(const QString& text, qsizetype at)
{
    return at + 1 < text.size() && text.at(at).isHighSurrogate() && text.at(at + 1).isLowSurrogate();
}

}

QString printable(const QString& text)
{
    if (std::ranges::all_of(text, isPlain))
        return text;
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (isPairAt(text, i)) {
            result.append(character).append(text.at(++i));
        } else if (character.isSurrogate()) {
            result.append(QChar::ReplacementCharacter);
        } else if (isLineEnd(character)) {
            if (character != u'\r' || i + 1 >= text.size() || text.at(i + 1) != u'\n')
                result.append(u'\n');
        } else if (!isHidden(character)) {
            result.append(character);
        }
    }
    return result;
}

Shown shown(const QString& text, qsizetype length)
{
    // Text far behind the cut is not examined.
    const QString start = text.size() <= length + longestCharacter ? text : text.first(length + longestCharacter);
    const qsizetype behind = text.size() - start.size();
    const QString whole = printable(start);
    if (whole.size() <= length)
        return { whole, behind };
    const qsizetype from = std::max<qsizetype>(0, length - longestCharacter);
    const QString around = whole.sliced(from, std::min(longestCharacter * 2, whole.size() - from));
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, around);
    finder.setPosition(length - from);
    // The first character is shown whole; an endless one is cut like text.
    if (!finder.isAtBoundary() && finder.toPreviousBoundary() <= 0) {
        finder.setPosition(length - from);
        if (finder.toNextBoundary() >= around.size())
            finder.setPosition(length - from + (around.at(length - from).isLowSurrogate() ? 1 : 0));
    }
    const qsizetype end = from + finder.position();
    return { whole.first(end), whole.size() - end + behind };
}

QString moreText(qsizetype hidden)
{
    return hidden > 0 ? u"Show more (%1 characters)"_s.arg(QLocale().toString(hidden)) : QString();
}

}
