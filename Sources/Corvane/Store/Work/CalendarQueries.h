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

/// An event of the calendar mirror, or one instance of a series; times in milliseconds since the epoch.
struct CalEvent {
    QString id; ///< the same in each reading of the calendars
    QString title;
    qint64 startMs = 0;
    qint64 endMs = 0;
    bool allDay = false;
    QString calendar; ///< the title of the calendar that holds it
    QString location;
    int attendees = 0; ///< how many take part, the organizer among them
    QList<CalAttendee> attendeeDetails;
    QString notes;

    bool operator==(const CalEvent&) const = default;
};

/// Events of the active workspace that end at `endingFromMs` or later, by their start.
QList<CalEvent> fetchCalendarEvents(LocalDB& db, qint64 endingFromMs, int limit);

std::optional<CalEvent> fetchCalendarEvent(LocalDB& db, const QString& id);

/// Puts the events in place of all that the mirror holds of the active workspace, in one transaction. False where
/// that failed; the mirror is then as it was.
bool replaceCalendarEvents(LocalDB& db, const QList<CalEvent>& events);

/// What sets one reading of the calendars apart from the one before.
struct CalendarChange {
    QStringList gone; ///< ids
    QList<CalEvent> written; ///< new ones and those that are not as before

    bool isEmpty() const { return gone.isEmpty() && written.isEmpty(); }
};

CalendarChange calendarChange(const QList<CalEvent>& before, const QList<CalEvent>& after);

/// Brings a mirror that held the one reading to the other, in one transaction. False where that failed.
bool changeCalendarEvents(LocalDB& db, const CalendarChange& change);

/// An event that another process asks for.
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

inline const QString eventRejected = u"Rejected."_s; ///< the error of one that a person refused

QList<CalCommand> fetchPendingCalendarCommands(LocalDB& db, int limit); ///< oldest first
std::optional<CalCommand> fetchCalendarCommand(LocalDB& db, const QString& id);

/// Ends a command that has the status `from`; false where it has another by now, or the write failed.
bool endCalendarCommand(LocalDB& db, const QString& id, const QString& from, const QString& status,
    const std::optional<QString>& eventId, const std::optional<QString>& error);

}
