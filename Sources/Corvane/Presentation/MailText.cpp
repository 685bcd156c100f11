#include "Presentation/MailText.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QStringList>
#include <algorithm>

namespace corvane::MailText {

namespace {

constexpr qsizetype longestPrefix = 4;

bool isBlank(QStringView line)
{
    return std::ranges::all_of(line, [](QChar character) { return character.isSpace(); });
}

/// The length of "Re:", "Fwd:" or "RE[2]:" at the start; 0 for none.
qsizetype prefixLength(QStringView subject)
{
    static const QStringList prefixes { u"re"_s, u"fw"_s, u"fwd"_s, u"aw"_s, u"wg"_s, u"rv"_s, u"sv"_s, u"tr"_s };
    const qsizetype colon = subject.first(std::min(subject.size(), longestPrefix * 2)).indexOf(u':');
    if (colon < 0)
        return 0;
    const QStringView word = subject.first(colon);
    const qsizetype bracket = word.indexOf(u'[');
    const QString name = word.first(bracket < 0 ? word.size() : bracket).trimmed().toString().toLower();
    return prefixes.contains(name) ? colon + 1 : 0;
}

}

qsizetype quoteStart(const QString& body)
{
    const QStringView text(body);
    qsizetype start = text.size();
    for (qsizetype end = text.size(); end > 0;) {
        const qsizetype begin = text.lastIndexOf(u'\n', end - 1) + 1;
        const QStringView line = text.sliced(begin, end - begin);
        if (line.startsWith(u'>'))
            start = begin;
        else if (!isBlank(line))
            return start;
        end = begin - 1;
    }
    return text.size();
}

QString withoutQuote(const QString& body)
{
    return body.first(quoteStart(body));
}

QString unquoted(const QString& quote)
{
    QStringList lines = quote.split(u'\n');
    for (QString& line : lines) {
        if (line.startsWith(u'>'))
            line.remove(0, line.startsWith(u"> "_s) ? 2 : 1);
    }
    return lines.join(u'\n').trimmed();
}

QString plainSubject(const QString& subject)
{
    const QString line = singleLine(subject);
    QStringView rest(line);
    while (const qsizetype prefix = prefixLength(rest))
        rest = rest.sliced(prefix).trimmed();
    return rest.toString();
}

}
