#pragma once

#include "Foundation/Literals.h"
#include "Platform/CalendarSource.h"

#include <mutex>

namespace corvane {

/// Calendars filled by the test. They are read on other threads.
class FakeCalendarSource final : public CalendarSource {
public:
    using CalendarSource::CalendarSource;

    void set(const CalendarReading& reading)
    {
        const std::lock_guard lock(m_mutex);
        m_reading = reading;
    }

    CalendarAccess access(const CalendarPlaces&) const override { return given; }

    CalendarReading read(const CalendarPlaces&, qint64 fromMs, qint64 toMs) override
    {
        const std::lock_guard lock(m_mutex);
        CalendarReading reading = m_reading;
        reading.entries.removeIf(
            [&](const CalendarEntry& entry) { return entry.endMs <= fromMs || entry.startMs >= toMs; });
        return reading;
    }

    CalendarReading readKnown(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) override
    {
        return read(places, fromMs, toMs);
    }

    Result<void> add(const CalendarPlaces&, const QString&, const NewCalendarEntry&) override
    {
        return failure(u"It takes none."_s);
    }
    Result<void> remove(const CalendarPlaces&, const QString&, const QString&) override { return {}; }
    Result<CalendarImport> import(const CalendarPlaces&, const QString&, const QByteArray&) override
    {
        return CalendarImport();
    }
    Result<QByteArray> exported(const CalendarPlaces&, const QString&, const QString&) override
    {
        return failure(u"It holds none."_s);
    }
    int openTasks(const CalendarPlaces&) override { return 0; }
    Result<void> makeCalendar(const QString&) override { return {}; }
    bool hasService() const override { return true; }
    void watch(const CalendarPlaces&) override { }

    CalendarAccess given = CalendarAccess::Full;

private:
    std::mutex m_mutex;
    CalendarReading m_reading;
};

}
