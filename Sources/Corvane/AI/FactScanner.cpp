#include "AI/FactScanner.h"

#include "AI/FactReadings.h"
#include "Foundation/Literals.h"

#include <QDate>
#include <QRegularExpression>
#include <algorithm>
#include <functional>

namespace corvane {

namespace {

using Match = QRegularExpressionMatch;

/// Nothing if the match is not a fact after all, and is left for later patterns.
using Reader = std::function<std::optional<Fact>(const Match&)>;

struct Pattern {
    QRegularExpression expression;
    Reader read;
};

QRegularExpression expression(const QString& pattern)
{
    return QRegularExpression(
        pattern, QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
}

QString key(QChar kind, const QString& value)
{
    return QString(kind) + u':' + value;
}

QString key(QChar kind, int value)
{
    return key(kind, QString::number(value));
}

Fact same(const QString& onlyKey)
{
    return { {}, 0, { onlyKey }, { onlyKey } };
}

/// A value with an optional qualifier: "500" and "500 €", "3 May" and "3 May 2026". If both sides have one, they must
/// match.
void qualify(Fact& fact, const QString& value, const QString& qualifier)
{
    fact.states << value << value + u'/' + qualifier;
    if (qualifier.isEmpty())
        fact.needs << value;
    else
        fact.needs << value + u'/' << value + u'/' + qualifier;
}

// Addresses

QString withoutFrame(QString address)
{
    static const QRegularExpression scheme(u"^(?:https?://)?(?:www\\.)?"_s);
    return address.toLower().remove(scheme);
}

std::optional<Fact> readUrl(const Match& match)
{
    QString address = withoutFrame(match.captured());
    while (address.endsWith(u'/'))
        address.chop(1);
    Fact fact = same(key(u'u', address));
    for (qsizetype at = 0; at < address.size(); ++at) {
        if (QStringView(u"/?#").contains(address.at(at)))
            fact.states.append(key(u'u', address.first(at)));
    }
    return fact;
}

std::optional<Fact> readMail(const Match& match)
{
    Fact fact = same(key(u'e', match.captured().toLower()));
    fact.states.append(key(u'u', match.captured(1).toLower()));
    return fact;
}

std::optional<Fact> readPhone(const Match& match)
{
    QString digits = match.captured();
    digits.removeIf([](QChar sign) { return !sign.isDigit(); });
    if (digits.size() < 7)
        return std::nullopt;
    return same(key(u'p', digits.last(7))); // in any notation of the country code
}

// Dates and times

void addDate(Fact& fact, int day, int month, const QString& year)
{
    if (day < 1 || month < 1 || day > 31 || month > 12)
        return;
    const QString fullYear = year.size() == 2 ? u"20"_s + year : year;
    qualify(fact, key(u'd', u"%1-%2"_s.arg(month).arg(day)), fullYear);
    fact.states << key(u'm', month) << key(u'n', day) << key(u'n', fullYear);
    const QDate date(fullYear.toInt(), month, day);
    if (!fullYear.isEmpty() && date.isValid())
        fact.states << key(u'w', date.dayOfWeek());
}

std::optional<Fact> orNothing(const Fact& fact)
{
    return fact.needs.isEmpty() ? std::nullopt : std::optional(fact);
}

QStringList timeKeys(int hour, int minute, const QString& half)
{
    if (hour > 24 || minute > 59)
        return {};
    const QString lower = half.toLower();
    if (lower.startsWith(u'p') || lower.startsWith(u'a'))
        return { key(u't', (hour % 12 + (lower.startsWith(u'p') ? 12 : 0)) * 60 + minute) };
    QStringList keys { key(u't', hour % 24 * 60 + minute) };
    if (hour < 12)
        keys << key(u't', (hour + 12) * 60 + minute);
    return keys;
}

std::optional<Fact> readTime(const Match& match)
{
    const int hour = match.captured(1).toInt();
    Fact fact;
    fact.needs = timeKeys(hour, match.captured(2).toInt(), match.captured(3));
    fact.states = fact.needs;
    fact.states << key(u'n', hour) << key(u'n', (hour + 11) % 12 + 1);
    if (match.captured(3) == "h"_L1) // "2h" may be a duration
        fact.needs << key(u'n', hour);
    return orNothing(fact);
}

/// A message's timestamp: its parts are not numbers of the text.
std::optional<Fact> readStamp(const Match& match)
{
    Fact fact;
    addDate(fact, match.captured(3).toInt(), match.captured(2).toInt(), match.captured(1));
    fact.states.removeIf([](const QString& each) { return each.startsWith(u'n') || each.startsWith(u'w'); });
    fact.states += timeKeys(match.captured(4).toInt(), match.captured(5).toInt(), u"a"_s);
    return orNothing(fact);
}

std::optional<Fact> readIsoDate(const Match& match)
{
    Fact fact;
    addDate(fact, match.captured(3).toInt(), match.captured(2).toInt(), match.captured(1));
    return orNothing(fact);
}

std::optional<Fact> readNumericDate(const Match& match)
{
    Fact fact;
    addDate(fact, match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3));
    addDate(fact, match.captured(2).toInt(), match.captured(1).toInt(), match.captured(3));
    return orNothing(fact);
}

/// "12.5." is a date, or a number that ends a sentence.
std::optional<Fact> readDottedDate(const Match& match)
{
    std::optional<Fact> fact = readNumericDate(match);
    if (fact) {
        const double value = QString(match.captured(1) + u'.' + match.captured(2)).toDouble();
        const QString number = key(u'n', QString::number(value, 'g', 15));
        fact->states << number;
        fact->needs << number;
    }
    return fact;
}

std::optional<Fact> readDayMonth(const Match& match)
{
    Fact fact;
    addDate(fact, match.captured(1).toInt(), monthNumber(match.captured(2)).value_or(0), match.captured(3));
    return orNothing(fact);
}

std::optional<Fact> readMonthDay(const Match& match)
{
    Fact fact;
    addDate(fact, match.captured(2).toInt(), monthNumber(match.captured(1)).value_or(0), match.captured(3));
    return orNothing(fact);
}

std::optional<Fact> readMonth(const Match& match)
{
    Fact fact = same(key(u'm', monthNumber(match.captured(1)).value_or(0)));
    if (!match.captured(2).isEmpty())
        fact.states << key(u'n', match.captured(2));
    return fact;
}

std::optional<Fact> readWeekday(const Match& match)
{
    return same(key(u'w', weekdayNumber(match.captured()).value_or(0)));
}

// Numbers

std::optional<Fact> readCode(const Match& match)
{
    QString code = match.captured().toLower();
    code.remove(u'-');
    Fact fact = same(key(u'c', code));
    const QString digits = match.captured(1);
    if (digits.size() > 2 && code.endsWith(digits)) { // "INV-2041" is the invoice 2041
        fact.needs << key(u'n', digits);
        fact.states << key(u'n', digits);
    }
    return fact;
}

std::optional<Fact> readNumber(const Match& match)
{
    const QString before = unitOf(match.captured(u"before"_s));
    const QString unit = before.isEmpty() ? unitOf(match.captured(u"after"_s)) : before;
    const double scale = scaleOf(match.captured(u"scale"_s));
    const QString digits = match.captured(u"digits"_s);
    const QString clock = match.captured(u"clock"_s);
    Fact fact { match.captured().sliced(clock.size()).trimmed(), 0, {}, {} };
    for (const double value : numberValues(digits))
        qualify(fact, key(u'n', QString::number(value * scale, 'g', 15)), unit);
    if (!clock.isEmpty() && unit.isEmpty())
        fact.states += timeKeys(digits.toInt(), 0, {});
    if (digits.size() > 7 && digits.toULongLong() > 0)
        fact.states << key(u'p', digits.last(7));
    return fact;
}

std::optional<Fact> readNumberWord(const Match& match)
{
    return same(key(u'n', numberOfWord(match.captured()).value_or(0)));
}

/// Patterns run in this order: text matched by an earlier one is hidden from later ones. Each starts at a word boundary
/// and does not backtrack, so that long runs are read once.
const QList<Pattern>& patterns()
{
    static const QList<Pattern> all = [] {
        const QString months = monthPattern();
        const QString year = u"(?:,?\\s+(?:de\\s+)?((?:19|20)\\d\\d)\\b)?"_s;
        const QString unit = u"€|US\\$|\\$|£|¥|EUR\\b|USD\\b|GBP\\b|CHF\\b"_s;
        return QList<Pattern> {
            { expression(u"(?<![\\w.+-])[\\w.+-]++@([\\w-]+(?:\\.[\\w-]+)+)"_s), readMail },
            { expression(
                  u"(?<!\\w)(?:https?://|www\\.)[^\\s<>\"'\u201C\u201D)\\]]*[^\\s<>\"'\u201C\u201D)\\].,;:!?]"_s),
                readUrl },
            { expression(u"(?<![\\w.-])(?:[a-z0-9-]++\\.)+[a-z]{2,}/[^\\s<>\"')\\]]*[^\\s<>\"')\\].,;:!?]"_s),
                readUrl },
            { expression(u"(?<![\\w.-])(?:[a-z0-9-]++\\.)+(?:com|org|net|info|io|eu|de|fr|es|ch|nl|uk|biz|"
                         "app|dev|example|shop)\\b(?:/[^\\s<>\"')\\]]*[^\\s<>\"')\\].,;:!?])?"_s),
                readUrl },
            { expression(u"\\b(\\d{4})-(\\d\\d)-(\\d\\d)T(\\d\\d):(\\d\\d):\\d\\dZ"_s), readStamp },
            { expression(u"\\b(\\d{4})-(\\d\\d)-(\\d\\d)\\b"_s), readIsoDate },
            { expression(u"\\b(\\d{1,2})[./-](\\d{1,2})[./-](\\d{4}|\\d\\d)\\b"_s), readNumericDate },
            { expression(u"(?<![\\w$€£])(\\d{1,2})\\.\\s?(\\d{1,2})\\.(?!\\d)"_s), readDottedDate },
            { expression(u"\\b(?!24/7)(\\d{1,2})/(\\d{1,2})\\b"_s), readNumericDate },
            { expression(u"\\b(\\d{1,2})(?:st|nd|rd|th|er|\\.)?\\s+(?:of\\s+|de\\s+)?(%1)\\b\\.?"_s.arg(months) + year),
                readDayMonth },
            { expression(u"\\b(%1)\\.?\\s+(?:the\\s+)?(\\d{1,2})(?:st|nd|rd|th)?\\b(?![:.]\\d)"_s.arg(months) + year),
                readMonthDay },
            { expression(u"\\b(%1)\\.?\\s+((?:19|20)\\d\\d)\\b"_s.arg(months)), readMonth },
            { expression(u"\\b(?:in|by|until|till|of|early|mid|late|since|from|for|next|this|last|im|"
                         "anfang|mitte|ende|bis|ab|seit|en|fin|début|à)[ -](%1)\\b"_s.arg(months)),
                readMonth },
            { expression(u"\\b(\\d{1,2}):(\\d\\d)(?::\\d\\d)?(?:\\s?([ap]\\.?m\\b\\.?|uhr\\b))?"_s), readTime },
            { expression(u"\\b(\\d{1,2})(?:\\.(\\d\\d))?\\s?([ap]\\.?m\\b\\.?|uhr\\b|h\\b(?=\\s?\\D|$))"_s), readTime },
            { expression(u"\\b(\\d{1,2})\\s?h\\s?(\\d\\d)\\b"_s), readTime },
            { expression(u"(?<![\\w+])(?:\\+|\\(?0)\\d[\\d\\s()/-]{5,}\\d\\b"_s), readPhone },
            { expression(u"\\b\\p{L}++-?(\\d++)[\\w-]*"_s), readCode },
            { expression(u"(?<clock>\\b(?:at|around|by|before|after|until|till|from|um|gegen|ab|bis|à)\\s+)?"
                         "(?:(?<before>%1)\\s?)?"
                         "(?<digits>(?<![\\w.,])\\d{1,3}(?:[.,'’\u00A0\u202F ]\\d{3})+(?:[.,]\\d{1,2})?(?!\\d)"
                         "|(?<![\\w])\\d+(?:[.,]\\d+)?)"
                         "(?:\\s?(?<scale>k|tsd\\.?|thousand|tausend|mio\\.?|million(?:s|en)?)\\b)?"
                         "(?:\\s?(?<after>%1|%|euros?\\b|dollars?\\b|pounds?\\b|percent\\b|prozent\\b))?"_s.arg(unit)),
                readNumber },
            { expression(u"\\b(?:%1)\\b"_s.arg(weekdayPattern())), readWeekday },
            { expression(u"\\b(?:%1)\\b"_s.arg(numberWordPattern())), readNumberWord },
        };
    }();
    return all;
}

/// The numbers of a list, and what is always open.
void blankWhatIsNoFact(QString& text)
{
    static const QRegularExpression expression(u"(?:^|\\n)[ \\t]*\\d{1,2}[.)](?=\\s)|\\b24/7\\b"_s);
    for (const Match& match : expression.globalMatch(QString(text)))
        std::fill_n(text.begin() + match.capturedStart(), match.capturedLength(), u' ');
}

}

ScannedText scanFacts(const QString& text)
{
    ScannedText scanned { {}, text };
    blankWhatIsNoFact(scanned.rest);
    for (const Pattern& pattern : patterns()) {
        const QString before = scanned.rest;
        for (const Match& match : pattern.expression.globalMatch(before)) {
            std::optional<Fact> fact = pattern.read(match);
            if (!fact)
                continue;
            if (fact->text.isEmpty())
                fact->text = match.captured().trimmed();
            fact->start = match.capturedStart();
            scanned.facts.append(*fact);
            std::fill_n(scanned.rest.begin() + match.capturedStart(), match.capturedLength(),
                QChar::ObjectReplacementCharacter);
        }
    }
    std::ranges::sort(scanned.facts, {}, &Fact::start);
    return scanned;
}

}
