#include "Platform/Linux/Calendar/CombinedCalendars.h"

#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Calendar/EvolutionCalendars.h"
#include "Platform/Linux/Calendar/FolderCalendars.h"
#include "Platform/Linux/Services.h"

#include <QFileInfo>
#include <algorithm>

namespace corvane {

namespace {

/// Events that are also in a folder are shown once.
CalendarReading joined(CalendarReading reading, CalendarReading further)
{
    QSet<QString> uids;
    for (const CalendarEntry& entry : std::as_const(reading.entries))
        uids.insert(entry.uid);
    QSet<QString> titles;
    for (const CalendarInfo& calendar : std::as_const(reading.calendars))
        titles.insert(calendar.title);
    for (CalendarInfo& calendar : further.calendars) {
        if (titles.contains(calendar.title))
            calendar.title += u" (%1)"_s.arg(calendar.origin);
    }
    further.entries.removeIf([&](const CalendarEntry& entry) { return uids.contains(entry.uid); });
    reading.calendars += further.calendars;
    reading.entries += further.entries;
    reading.troubles += further.troubles;
    return reading;
}

}

CombinedCalendars::CombinedCalendars(std::unique_ptr<CalendarSource> folders, std::unique_ptr<CalendarSource> service)
    : m_folders(std::move(folders))
    , m_service(std::move(service))
{
    for (CalendarSource* const source : { m_folders.get(), m_service.get() })
        connect(source, &CalendarSource::changed, this, &CalendarSource::changed);
}

CalendarAccess CombinedCalendars::access(const CalendarPlaces& places) const
{
    const CalendarAccess access = m_folders->access(places);
    return access == CalendarAccess::Full || !places.service ? access : std::max(access, m_service->access(places));
}

CalendarReading CombinedCalendars::read(const CalendarPlaces& places, qint64 fromMs, qint64 toMs)
{
    CalendarReading reading = m_folders->read(places, fromMs, toMs);
    return places.service ? joined(std::move(reading), m_service->read(places, fromMs, toMs)) : reading;
}

CalendarReading CombinedCalendars::readKnown(const CalendarPlaces& places, qint64 fromMs, qint64 toMs)
{
    CalendarReading reading = m_folders->readKnown(places, fromMs, toMs);
    return places.service ? joined(std::move(reading), m_service->readKnown(places, fromMs, toMs)) : reading;
}

CalendarSource& CombinedCalendars::of(const CalendarPlaces& places, const QString& calendarId) const
{
    return places.service && calendarId.startsWith(EvolutionCalendars::idPrefix) ? *m_service : *m_folders;
}

Result<void> CombinedCalendars::add(
    const CalendarPlaces& places, const QString& calendarId, const NewCalendarEntry& entry)
{
    return of(places, calendarId).add(places, calendarId, entry);
}

Result<void> CombinedCalendars::remove(const CalendarPlaces& places, const QString& calendarId, const QString& uid)
{
    return of(places, calendarId).remove(places, calendarId, uid);
}

Result<CalendarImport> CombinedCalendars::import(
    const CalendarPlaces& places, const QString& calendarId, const QByteArray& ics)
{
    return of(places, calendarId).import(places, calendarId, ics);
}

Result<QByteArray> CombinedCalendars::exported(
    const CalendarPlaces& places, const QString& calendarId, const QString& uid)
{
    return of(places, calendarId).exported(places, calendarId, uid);
}

int CombinedCalendars::openTasks(const CalendarPlaces& places)
{
    return m_folders->openTasks(places) + m_service->openTasks(places);
}

Result<void> CombinedCalendars::makeCalendar(const QString& title)
{
    return m_folders->makeCalendar(title);
}

bool CombinedCalendars::hasService() const
{
    return m_service->hasService();
}

void CombinedCalendars::watch(const CalendarPlaces& places)
{
    m_folders->watch(places);
    m_service->watch(places);
}

std::unique_ptr<CalendarSource> makeCalendarSource(const AppPaths& paths)
{
    return std::make_unique<CombinedCalendars>(
        std::make_unique<FolderCalendars>(QFileInfo(paths.applicationSupport).path(), paths.home),
        std::make_unique<EvolutionCalendars>(QDBusConnection::sessionBus()));
}

}
