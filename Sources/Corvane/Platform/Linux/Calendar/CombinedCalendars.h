#pragma once

#include "Platform/CalendarSource.h"

#include <memory>

namespace corvane {

/// Folders of calendars and, if the user wants it, the desktop's calendar service. Events in both are shown once.
class CombinedCalendars final : public CalendarSource {
public:
    CombinedCalendars(std::unique_ptr<CalendarSource> folders, std::unique_ptr<CalendarSource> service);

    CalendarAccess access(const CalendarPlaces& places) const override;
    CalendarReading read(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) override;
    CalendarReading readKnown(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) override;
    Result<void> add(const CalendarPlaces& places, const QString& calendarId, const NewCalendarEntry& entry) override;
    Result<void> remove(const CalendarPlaces& places, const QString& calendarId, const QString& uid) override;
    Result<CalendarImport> import(
        const CalendarPlaces& places, const QString& calendarId, const QByteArray& ics) override;
    Result<QByteArray> exported(const CalendarPlaces& places, const QString& calendarId, const QString& uid) override;
    int openTasks(const CalendarPlaces& places) override;
    Result<void> makeCalendar(const QString& title) override;
    bool hasService() const override;
    void watch(const CalendarPlaces& places) override;

private:
    CalendarSource& of(const CalendarPlaces& places, const QString& calendarId) const;

    const std::unique_ptr<CalendarSource> m_folders;
    const std::unique_ptr<CalendarSource> m_service;
};

}
