#include "Inbox/List/HitText.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Presentation/BodyText.h"

namespace corvane {

namespace {

constexpr int lineLength = 160;

}

// A text may be very long; it is truncated before anything processes it.
QString lineOf(const QString& text)
{
    const QString line = singleLine(BodyText::printable(text.left(2 * lineLength)));
    return firstCharacters(line, lineLength);
}

std::optional<QString> cutBefore(const QString& text, const QString& words)
{
    constexpr qsizetype lead = 18;
    const qsizetype at = text.indexOf(words, 0, Qt::CaseInsensitive);
    if (at <= lead)
        return std::nullopt;
    // At a space if one is near, else between two characters.
    qsizetype from = text.lastIndexOf(u' ', at - lead / 2);
    if (from < at - lead)
        from = at - lead + (text.at(at - lead).isLowSurrogate() ? 1 : 0);
    return u"…"_s + lineOf(text.sliced(from));
}

QString highlighted(const QString& line, const QString& words)
{
    QString marked;
    qsizetype from = 0;
    for (qsizetype at = 0; !words.isEmpty() && (at = line.indexOf(words, from, Qt::CaseInsensitive)) >= 0;) {
        marked += line.sliced(from, at - from).toHtmlEscaped() + u"<b>"_s
            + line.sliced(at, words.size()).toHtmlEscaped() + u"</b>"_s;
        from = at + words.size();
    }
    return marked + line.sliced(from).toHtmlEscaped();
}

}
