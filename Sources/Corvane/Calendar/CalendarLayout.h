#pragma once

#include "Store/Work/CalendarQueries.h"

#include <QDate>
#include <QMetaType>

namespace corvane {

class DateWords;

/// A day's column.
class DayHead {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString number MEMBER number)
    Q_PROPERTY(bool today MEMBER today)
public:
    QString name; ///< "Mon"
    QString number; ///< "23"
    bool today = false;

    bool operator==(const DayHead&) const = default;
};

/// An event, or the part of it within one day, positioned in the grid.
class EventBlock {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString timeText MEMBER timeText)
    Q_PROPERTY(QString spoken MEMBER spoken)
    Q_PROPERTY(QString colour MEMBER colour)
    Q_PROPERTY(int day MEMBER day)
    Q_PROPERTY(double top MEMBER top)
    Q_PROPERTY(double height MEMBER height)
    Q_PROPERTY(int lane MEMBER lane)
    Q_PROPERTY(int lanes MEMBER lanes)
    Q_PROPERTY(int days MEMBER days)
    Q_PROPERTY(bool past MEMBER past)
    Q_PROPERTY(bool declined MEMBER declined)
    Q_PROPERTY(bool joinable MEMBER joinable)
public:
    QString id;
    QString title;
    QString timeText; ///< "10:00–11:00"
    QString spoken; ///< the whole as one sentence
    QString colour; ///< of the calendar; may be empty
    int day = 0; ///< the column
    double top = 0; ///< hours after the start of the grid
    double height = 0; ///< hours
    int lane = 0; ///< next to events at the same time; for all-day events: the row
    int lanes = 1;
    int days = 1; ///< for all-day events: the number of columns
    bool past = false;
    bool declined = false;
    bool joinable = false; ///< starts within ten minutes or is running, and has a link
    double end = 0; ///< hours; a short event ends before its tile does
    QString place {}; ///< its index: the next page's tiles move from this page's tiles

    static constexpr const char* role = "event";
    const QString& key() const { return place; }
    bool operator==(const EventBlock&) const = default;
};

/// Free time between two events of a day.
class FreeGap {
    Q_GADGET
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(int day MEMBER day)
    Q_PROPERTY(double top MEMBER top)
    Q_PROPERTY(double height MEMBER height)
public:
    QString text; ///< "1 h 30 min free"
    int day = 0;
    double top = 0;
    double height = 0;

    bool operator==(const FreeGap&) const = default;
};

/// A page of the calendar, with one column per day.
struct CalendarLayout {
    QList<DayHead> days;
    int firstHour = 8; ///< covers all events, and at least working hours
    int lastHour = 18; ///< end of the grid
    QList<EventBlock> blocks; ///< by day and time
    QList<EventBlock> allDay;
    int allDayRows = 0;
    QList<FreeGap> gaps;

    bool operator==(const CalendarLayout&) const = default;
};

/// `colours` by the title of a calendar.
CalendarLayout calendarLayout(
    const QList<CalEvent>& events, const QDate& first, int days, qint64 nowMs, const QHash<QString, QString>& colours);

bool isJoinable(const CalEvent& event, qint64 nowMs);

/// The time of an event: "Mon 23 Nov, 10:00–11:00", "all day".
QString whenText(const CalEvent& event, qint64 nowMs);
QString whenText(const CalEvent& event, const DateWords& dates); ///< for many events

}
