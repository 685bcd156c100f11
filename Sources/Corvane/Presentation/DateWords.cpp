#include "Presentation/DateWords.h"

#include "Foundation/Literals.h"

#include <QRegularExpression>
#include <array>

namespace corvane {

namespace {

// Qt has only short and long date formats; the medium one is the long one without the weekday and with an abbreviated
// month.
QString mediumPattern(const QLocale& locale)
{
    static const QRegularExpression weekday(u"[,،、]?\\s*dddd[,،、]?\\s*"_s);
    QString pattern = locale.dateFormat(QLocale::LongFormat);
    pattern.replace(weekday, u" "_s);
    pattern.replace(u"MMMM"_s, u"MMM"_s);
    return pattern.trimmed();
}

QString counted(qint64 count, const QString& unit)
{
    return count == 1 ? u"1 %1 ago"_s.arg(unit) : u"%1 %2s ago"_s.arg(count).arg(unit);
}

}

DateWords::DateWords(qint64 nowMs, const QLocale& locale)
    : m_nowMs(nowMs)
    , m_zone(QTimeZone::systemTimeZone())
    , m_today(dayOf(nowMs))
    , m_locale(locale)
    , m_mediumPattern(mediumPattern(locale))
{
}

// Local time without an explicit zone would check the file system for zone changes at each call.
QDateTime DateWords::localTime(qint64 ms) const
{
    return m_zone.isValid() ? QDateTime::fromMSecsSinceEpoch(ms, m_zone) : QDateTime::fromMSecsSinceEpoch(ms);
}

QDate DateWords::dayOf(qint64 ms) const
{
    return localTime(ms).date();
}

QString DateWords::listTime(qint64 ms) const
{
    if (ms < 1)
        return {};
    const QDate day = dayOf(ms);
    switch (day.daysTo(m_today)) {
    case 0:
        return clockTime(ms);
    case 1:
        return u"Yesterday"_s;
    case 2:
    case 3:
    case 4:
    case 5:
    case 6:
        return m_locale.dayName(day.dayOfWeek());
    default:
        return m_locale.toString(day, QLocale::ShortFormat);
    }
}

QString DateWords::clockTime(qint64 ms) const
{
    const QTime time = localTime(ms).time();
    const auto digit = [](int value) {
        return QChar(u'0' + value);
    };
    const std::array text { digit(time.hour() / 10), digit(time.hour() % 10), QChar(u':'), digit(time.minute() / 10),
        digit(time.minute() % 10) };
    return QString(text.data(), text.size());
}

QString DateWords::mediumDate(const QDate& day) const
{
    return m_locale.toString(day, m_mediumPattern);
}

QString DateWords::group(qint64 ms) const
{
    if (ms < 1)
        return u"No date"_s;
    const QDate day = dayOf(ms);
    const qint64 days = day.daysTo(m_today);
    if (days == 0)
        return u"Today"_s;
    if (days == 1)
        return u"Yesterday"_s;
    return mediumDate(day);
}

QString DateWords::ago(qint64 ms) const
{
    const qint64 minutes = (m_nowMs - ms) / 60'000;
    if (minutes < 1)
        return u"just now"_s;
    if (minutes < 60)
        return counted(minutes, u"minute"_s);
    if (minutes < 48 * 60)
        return counted(minutes / 60, u"hour"_s);
    return counted(minutes / (24 * 60), u"day"_s);
}

qint64 nextMidnightMs(qint64 nowMs)
{
    return DateWords(nowMs).dayOf(nowMs).addDays(1).startOfDay().toMSecsSinceEpoch();
}

}
