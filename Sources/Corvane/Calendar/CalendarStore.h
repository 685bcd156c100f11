#pragma once

#include "Foundation/Coalescer.h"
#include "Foundation/NotificationCentre.h"
#include "Platform/CalendarSource.h"
#include "Store/Work/CalendarQueries.h"

namespace corvane {

class BackgroundQueue;
class UserDefaults;

CalendarPlaces calendarPlaces(const UserDefaults& defaults); ///< as the user chose them

/// The mirror of the user's calendars, from one day back to sixty days ahead: in memory, and in the database for other
/// programs.
class CalendarStore : public QObject {
    Q_OBJECT
public:
    enum class Access { Unknown, Granted, Denied };

    /// All references outlive the store.
    struct Surroundings {
        LocalDB& db;
        CalendarSource& source;
        BackgroundQueue& background;
        Scheduler& scheduler;
        UserDefaults& defaults;
        NotificationCentre& notifications;
        std::function<QStringList()> ownAddresses; ///< of the user's accounts, in upper or lower case
    };

    explicit CalendarStore(Surroundings surroundings, QObject* parent = nullptr);
    ~CalendarStore() override;

    void bootstrap(); ///< may be called again
    void refresh(); ///< reads the calendars in the background; does nothing without access
    void requestAccess(); ///< the user pressed Connect: the calendars found are read from now on

    Access access() const { return m_access; }
    const std::optional<QString>& lastError() const { return m_lastError; } ///< for the user
    const QList<CalEvent>& events() const { return m_events; } ///< of all calendars, by start
    const QList<CalendarInfo>& calendars() const { return m_calendars; } ///< empty until the first reading

    QStringList calendarNames() const; ///< of the events, without duplicates, sorted
    void toggleCalendar(const QString& name); ///< shows or hides its events
    bool isCalendarIncluded(const QString& name) const;
    QList<CalEvent> visible(const QList<CalEvent>& events) const;

    /// Events outside the mirror, not stored. No callback once `context` or the store is destroyed.
    void eventsBetween(
        qint64 fromMs, qint64 toMs, QObject* context, const std::function<void(const QList<CalEvent>&)>& done);

    const CalendarPlaces& places() const { return m_places; }
    void setPlaces(const CalendarPlaces& places);

    QString extraAddresses() const; ///< the user's addresses besides those of the accounts, separated by commas
    void setExtraAddresses(const QString& addresses);

    const Surroundings& surroundings() const { return m_at; }

Q_SIGNALS:
    void changed(); ///< access, error, events, calendars, or which of them are shown

private:
    struct Reading {
        QList<CalEvent> events;
        QList<CalendarInfo> calendars;
        QStringList troubles;
        CalendarChange change; ///< since the previous reading
    };
    static QList<CalEvent> mapped(const CalendarReading& reading, const QStringList& own);

    void grant();
    void deny(const QString& reason);
    void read();
    void finish(Reading reading);
    bool clockMoved(); ///< since the last call
    QStringList ownAddresses() const;

    const Surroundings m_at;
    CalendarPlaces m_places;
    Access m_access = Access::Unknown;
    std::optional<QString> m_lastError;
    QList<CalEvent> m_events;
    QList<CalendarInfo> m_calendars;
    QStringList m_excluded;
    bool m_reading = false;
    bool m_again = false; ///< requested during a reading
    bool m_mirrored = false; ///< the database holds `m_events` of the active workspace
    Coalescer m_changes;
    std::unique_ptr<Timer> m_clock;
    std::unique_ptr<Timer> m_retries;
    QString m_day; ///< date and zone
    qint64 m_asleepMs = 0; ///< the difference between the clock and the time awake
    NotificationCentre::Observation m_workspaceChanged;
};

}
