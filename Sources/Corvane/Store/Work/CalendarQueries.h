#pragma once

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"

namespace corvane {

struct CalAttendee {
    QString name;
    QString email;
    bool currentUser = false;
    bool declined = false;

    bool operator==(const CalAttendee&) const = default;
};

/// An event of the calendar mirror, or an instance of a series; times in milliseconds since the epoch.
struct CalEvent {
    QString id; ///< stable across readings of the calendars
    QString title;
    qint64 startMs = 0;
    qint64 endMs = 0;
    bool allDay = false;
    QString calendar; ///< the title of the calendar that holds it
    QString location;
    int attendees = 0; ///< the number of participants, including the organizer
    QList<CalAttendee> attendeeDetails;
    QString notes;

    bool operator==(const CalEvent&) const = default;
};

/// Events of the active workspace that end at `endingFromMs` or later, by start.
QList<CalEvent> fetchCalendarEvents(LocalDB& db, qint64 endingFromMs, int limit);

/// Replaces all events of the active workspace in the mirror, in one transaction. On failure it returns false and the
/// mirror is unchanged.
bool replaceCalendarEvents(LocalDB& db, const QList<CalEvent>& events);

/// The difference between two readings of the calendars.
struct CalendarChange {
    QStringList gone; ///< ids
    QList<CalEvent> written; ///< new and changed ones

    bool isEmpty() const { return gone.isEmpty() && written.isEmpty(); }
};

CalendarChange calendarChange(const QList<CalEvent>& before, const QList<CalEvent>& after);

/// Updates a mirror that holds the earlier reading, in one transaction. False if that failed.
bool changeCalendarEvents(LocalDB& db, const CalendarChange& change);

/// An event that another process requested.
struct CalCommand {
    QString id;
    QString title;
    qint64 startMs = 0;
    qint64 endMs = 0;
    QString notes;
    QString location;
    QString calendar; ///< a title; may be empty
    QString status; ///< "pending", "done" or "failed"
    QString error; ///< why it failed

    bool operator==(const CalCommand&) const = default;
};

inline const QString eventRejected = u"Rejected."_s; ///< the error of one that the user rejected

QList<CalCommand> fetchPendingCalendarCommands(LocalDB& db, int limit); ///< oldest first
std::optional<CalCommand> fetchCalendarCommand(LocalDB& db, const QString& id);

/// Finishes a command that has the status `from`; false if its status changed, or the write failed.
bool endCalendarCommand(LocalDB& db, const QString& id, const QString& from, const QString& status,
    const std::optional<QString>& eventId, const std::optional<QString>& error);

}
