#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <optional>

namespace corvane {

/// Where the user keeps calendars.
struct CalendarPlaces {
    QStringList folders; ///< beside the usual one; "~/" at the start is the user's home
    bool service = false; ///< the desktop's calendar service, too

    bool operator==(const CalendarPlaces&) const = default;
};

struct CalendarInfo {
    QString id; ///< stays the same for as long as the calendar is where it is
    QString title;
    QString colour {}; ///< "#rrggbb", or empty
    QString origin {}; ///< in words: the folder, or the service's name
    bool writable = false;

    bool operator==(const CalendarInfo&) const = default;
};

struct CalendarPerson {
    QString name;
    QString email;
    bool room = false; ///< a room or another resource
    bool declined = false;

    bool operator==(const CalendarPerson&) const = default;
};

/// An event, or one instance of a series; times in milliseconds since the epoch.
struct CalendarEntry {
    QString calendarId;
    QString uid;
    std::optional<qint64> instanceMs; ///< of a series: when this instance was to start at first
    QString title;
    QString location;
    QString notes;
    qint64 startMs = 0;
    qint64 endMs = 0; ///< of one that lasts all day: the local midnight at its end
    bool allDay = false;
    QList<CalendarPerson> people {}; ///< the organizer first

    bool operator==(const CalendarEntry&) const = default;
};

struct CalendarReading {
    QList<CalendarInfo> calendars;
    QList<CalendarEntry> entries; ///< in no order; cancelled ones are left out
    QStringList troubles; ///< what could not be read, a sentence each
};

struct NewCalendarEntry {
    QString uid; ///< an entry of the same id in that calendar is replaced
    QString title;
    QString location;
    QString notes;
    qint64 startMs = 0;
    qint64 endMs = 0;
    bool allDay = false; ///< from and to a local midnight
    qint64 stampMs = 0; ///< when it was made
};

/// What became of the events of a file; a series counts once.
struct CalendarImport {
    int added = 0;
    int present = 0; ///< there before, and left as they are
};

enum class CalendarAccess { None, WriteOnly, Full };

/// The user's calendars. Whoever reads or writes waits for disk or service, and so does it away from the main
/// thread, where any thread will do; `watch` and the signal belong to the main thread.
class CalendarSource : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// Whether there is a calendar to read; the answer comes at once.
    virtual CalendarAccess access(const CalendarPlaces& places) const = 0;

    /// What touches [fromMs, toMs), in the time zone that this machine has now.
    virtual CalendarReading read(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) = 0;

    /// An entry counts as added once it would survive a power cut. The error is for the user.
    virtual Result<void> add(const CalendarPlaces& places, const QString& calendarId, const NewCalendarEntry& entry)
        = 0;

    /// Takes back what `add` wrote; an error where it was changed since.
    virtual Result<void> remove(const CalendarPlaces& places, const QString& calendarId, const QString& uid) = 0;

    /// Puts the events of a calendar file into the calendar.
    virtual Result<CalendarImport> import(
        const CalendarPlaces& places, const QString& calendarId, const QByteArray& ics)
        = 0;

    /// A calendar file of the event, a series whole.
    virtual Result<QByteArray> exported(const CalendarPlaces& places, const QString& calendarId, const QString& uid)
        = 0;

    /// How many tasks are to be done, of those that stand beside the events.
    virtual int openTasks(const CalendarPlaces& places) const = 0;

    /// Makes an empty calendar in the usual folder.
    virtual Result<void> makeCalendar(const QString& title) = 0;

    /// Whether the desktop keeps calendars in a service, which `CalendarPlaces::service` then reads, too.
    virtual bool hasService() const = 0;

    /// Tells from now on what changes in these places; the last call holds.
    virtual void watch(const CalendarPlaces& places) = 0;

Q_SIGNALS:
    void changed();
};

}
