#pragma once

#include <QDate>
#include <QLocale>

namespace corvane {

/// Times in the words of the screen, as seen from `nowMs`. All times are milliseconds since the epoch, shown in
/// the user's time zone.
class DateWords {
public:
    explicit DateWords(qint64 nowMs, const QLocale& locale = QLocale());

    /// "14:20" today, "Yesterday", the weekday within the last six days, else the short date; empty below 1.
    QString listTime(qint64 ms) const;

    QString mediumDate(qint64 ms) const; ///< such as "8 Oct 2025", in the order of the locale
    QString group(qint64 ms) const; ///< "No date" below 1, "Today", "Yesterday", else the medium date
    QString ago(qint64 ms) const; ///< such as "3 hours ago"

private:
    qint64 m_nowMs;
    QDate m_today;
    QLocale m_locale;
    QString m_mediumPattern;
};

QString clockTime(qint64 ms); ///< "14:20"
qint64 nextMidnightMs(qint64 nowMs); ///< when tomorrow begins

}
