#pragma once

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

namespace corvane {

/// Formats times for display, relative to `nowMs`. All times are milliseconds since the epoch, shown in the user's time
/// zone.
class DateWords {
public:
    explicit DateWords(qint64 nowMs, const QLocale& locale = QLocale());

    /// "14:20" today, "Yesterday", the weekday within the last six days, else the short date; empty below 1.
    QString listTime(qint64 ms) const;

    QDate today() const { return m_today; }
    QDateTime localTime(qint64 ms) const;
    QDate dayOf(qint64 ms) const;
    QString clockTime(qint64 ms) const; ///< "14:20"
    QString mediumDate(const QDate& day) const; ///< such as "8 Oct 2025", in the locale's order
    QString group(qint64 ms) const; ///< "No date" below 1, "Today", "Yesterday", else the medium date
    QString ago(qint64 ms) const; ///< such as "3 hours ago"

private:
    qint64 m_nowMs;
    QTimeZone m_zone;
    QDate m_today;
    QLocale m_locale;
    QString m_mediumPattern;
};

qint64 nextMidnightMs(qint64 nowMs); ///< the start of tomorrow

}
