#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <optional>

namespace corvane {

/// Where the user's calendars are.
struct CalendarPlaces {
    QStringList folders; ///< in addition to the usual one; a leading "~/" is the user's home
    bool service = false; ///< the desktop's calendar service, too

    bool operator==(const CalendarPlaces&) const = default;
};

struct CalendarInfo {
    QString id; ///< stable as long as the calendar stays in its place
    QString title;
    QString colour {}; ///< "#rrggbb", or empty
    QString origin {}; ///< for the user: the folder, or the service's name
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
    std::optional<qint64> instanceMs; ///< of a series: when this instance was originally to start
    QString title;
    QString location;
    QString notes;
    qint64 startMs = 0;
    qint64 endMs = 0; ///< of an all-day event: the local midnight at its end
    bool allDay = false;
    QList<CalendarPerson> people {}; ///< the organizer first

    bool operator==(const CalendarEntry&) const = default;
};

struct CalendarReading {
    QList<CalendarInfo> calendars;
    QList<CalendarEntry> entries; ///< unordered; cancelled events are skipped
    QStringList troubles; ///< what could not be read, one sentence each
};

struct NewCalendarEntry {
    QString uid; ///< replaces an entry of the same id in that calendar
    QString title;
    QString location;
    QString notes;
    qint64 startMs = 0;
    qint64 endMs = 0;
    bool allDay = false; ///< from and to a local midnight
    qint64 stampMs = 0; ///< when it was made
};

/// The result of importing a file; a series counts once.
struct CalendarImport {
    int added = 0;
    int present = 0; ///< existed before and were left alone
};

enum class CalendarAccess { None, WriteOnly, Full };

/// The user's calendars. Reading and writing block on disk or service, so call them from another thread than the main
/// one; any thread will do. `watch` and the signal belong to the main thread.
class CalendarSource : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// Whether there is a calendar to read; answers at once.
    virtual CalendarAccess access(const CalendarPlaces& places) const = 0;

    /// Events that overlap [fromMs, toMs), in the machine's current time zone.
    virtual CalendarReading read(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) = 0;

    /// The same from the last reading, without checking for changes.
    virtual CalendarReading readKnown(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) = 0;

    /// Returns once the entry would survive a power cut. The error is for the user.
    virtual Result<void> add(const CalendarPlaces& places, const QString& calendarId, const NewCalendarEntry& entry)
        = 0;

    /// Undoes `add`; an error if the entry was changed since.
    virtual Result<void> remove(const CalendarPlaces& places, const QString& calendarId, const QString& uid) = 0;

    /// Imports the events of a calendar file into the calendar.
    virtual Result<CalendarImport> import(
        const CalendarPlaces& places, const QString& calendarId, const QByteArray& ics)
        = 0;

    /// A calendar file with the event, or with the whole series.
    virtual Result<QByteArray> exported(const CalendarPlaces& places, const QString& calendarId, const QString& uid)
        = 0;

    /// The number of open tasks beside the events.
    virtual int openTasks(const CalendarPlaces& places) = 0;

    /// Creates an empty calendar in the usual folder.
    virtual Result<void> makeCalendar(const QString& title) = 0;

    /// Whether the desktop has a calendar service, which `CalendarPlaces::service` then includes.
    virtual bool hasService() const = 0;

    /// Reports changes in these places from now on; replaces earlier places.
    virtual void watch(const CalendarPlaces& places) = 0;

Q_SIGNALS:
    void changed();
};

}
