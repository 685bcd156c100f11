#pragma once

#include "Foundation/Literals.h"
#include "Platform/Linux/Calendar/EvolutionService.h"
#include "Platform/Linux/Calendar/ExpandedIcs.h"

#include <atomic>
#include <mutex>

namespace corvane {

/// The calendars of Evolution Data Server, over D-Bus. Nothing is requested before `watch` was called with places that
/// include it; while it does not respond, its last answer is used.
class EvolutionCalendars final : public CalendarSource {
    Q_OBJECT
public:
    /// `answerMs`: how long one call waits.
    explicit EvolutionCalendars(const QDBusConnection& bus, int answerMs = 3000);

    CalendarAccess access(const CalendarPlaces& places) const override;
    CalendarReading read(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) override;
    CalendarReading readKnown(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) override;
    Result<void> add(const CalendarPlaces& places, const QString& calendarId, const NewCalendarEntry& entry) override;
    Result<void> remove(const CalendarPlaces& places, const QString& calendarId, const QString& uid) override;
    Result<CalendarImport> import(
        const CalendarPlaces& places, const QString& calendarId, const QByteArray& ics) override;
    Result<QByteArray> exported(const CalendarPlaces& places, const QString& calendarId, const QString& uid) override;
    int openTasks(const CalendarPlaces& places) override; ///< of its task lists
    Result<void> makeCalendar(const QString& title) override;
    bool hasService() const override;
    void watch(const CalendarPlaces& places) override;

    inline static const QString idPrefix = u"evolution:"_s; ///< of a calendar's id

private Q_SLOTS:
    void onChange();
    void onOwnerChanged(const QString& service, const QString& before, const QString& now);

private:
    struct Event {
        QByteArray text;
        ExpandedIcs calendar;
    };
    struct Calendar {
        QString revision;
        QHash<QByteArray, Event> events; ///< by UID
    };

    void begin();
    Result<void> update(const QString& source);
    QByteArrayList zonesOf(const QString& source, const QByteArray& text);

    QDBusConnection m_bus;
    bool m_watches = false;
    std::atomic<bool> m_restarted = false;
    QDeadlineTimer m_calm; ///< until then a service that exited is not started again

    std::mutex m_mutex; ///< for all below
    EvolutionService m_service;
    QDeadlineTimer m_pause { 0 }; ///< until then a service that did not answer is not called
    QHash<QString, CalendarInfo> m_sources;
    QHash<QString, Calendar> m_calendars; ///< by source
    QHash<QByteArray, QByteArray> m_zones; ///< from the service, by name; empty if it has none
    QByteArray m_zone; ///< the machine's zone when they were read
    QHash<QString, QString> m_written; ///< what `add` wrote, by calendar and event
};

}
