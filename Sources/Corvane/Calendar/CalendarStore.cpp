#include "Calendar/CalendarStore.h"

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"

#include <QDateTime>
#include <QPointer>
#include <QSet>
#include <QTimeZone>
#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 second = 1000;
constexpr qint64 pastWindow = 86'400 * second;
constexpr qint64 futureWindow = 5'184'000 * second;
constexpr int storedAtStart = 5000;
constexpr Milliseconds clockPeriod { 800 }; ///< a new day, zone or clock is noticed within a second
constexpr Milliseconds retryPeriod { 5000 };
constexpr Milliseconds pauseBetweenChanges { 200 };
constexpr qint64 clockJump = 2 * second;

const QString connectedKey = u"nimb.calendarConnected"_s;
const QString foldersKey = u"nimb.calendarFolders"_s;
const QString serviceKey = u"nimb.calendarService"_s;
const QString excludedKey = u"nimb.excludedCalendars"_s;
const QString addressesKey = u"nimb.calendarAddresses"_s;

constexpr QChar betweenNames = u'\n'; // never part of a calendar's name

QString eventId(const CalendarEntry& entry)
{
    const QString id = entry.calendarId + u':' + entry.uid;
    return entry.instanceMs
        ? id + QDateTime::fromMSecsSinceEpoch(*entry.instanceMs, Qt::UTC).toString(u":yyyyMMdd'T'HHmmss'Z'"_s)
        : id;
}

QString dayAndZone(qint64 nowMs)
{
    return QDateTime::fromMSecsSinceEpoch(nowMs).date().toString(Qt::ISODate)
        + QString::fromLatin1(QTimeZone::systemTimeZoneId());
}

}

CalendarPlaces calendarPlaces(const UserDefaults& defaults)
{
    return { defaults.text(foldersKey).value_or(QString()).split(u':', Qt::SkipEmptyParts),
        defaults.boolean(serviceKey).value_or(false) };
}

CalendarStore::CalendarStore(Surroundings surroundings, QObject* parent)
    : QObject(parent)
    , m_at(std::move(surroundings))
    , m_places(calendarPlaces(m_at.defaults))
    , m_changes(m_at.scheduler, pauseBetweenChanges, [this] { refresh(); })
{
    m_excluded = m_at.defaults.text(excludedKey).value_or(QString()).split(betweenNames, Qt::SkipEmptyParts);
    connect(&m_at.source, &CalendarSource::changed, this, [this] { m_changes.request(); });
    m_workspaceChanged = m_at.notifications.observe(notifications::activeWorkspaceChanged, [this](const auto&) {
        m_mirrored = false;
        refresh();
    });
}

CalendarStore::~CalendarStore() = default;

void CalendarStore::bootstrap()
{
    if (m_events.isEmpty()) {
        m_events = fetchCalendarEvents(m_at.db, m_at.scheduler.nowMs(), storedAtStart);
        if (!m_events.isEmpty())
            Q_EMIT changed();
    }
    if (m_at.defaults.boolean(connectedKey).value_or(false))
        requestAccess();
}

void CalendarStore::requestAccess()
{
    m_at.defaults.setBoolean(connectedKey, true);
    m_at.source.watch(m_places); // calendars missing now are noticed when they appear
    switch (m_at.source.access(m_places)) {
    case CalendarAccess::Full:
        return grant();
    case CalendarAccess::WriteOnly:
        return deny(u"Corvane has write-only Calendar access. Connect Calendar to grant full read access."_s);
    case CalendarAccess::None:
        return deny(u"No calendar was found. Make a local calendar, or add a folder of calendar files in the "
                    "settings."_s);
    }
}

void CalendarStore::grant()
{
    if (m_access != Access::Granted) {
        m_access = Access::Granted;
        m_lastError.reset();
        Q_EMIT changed();
    }
    if (!m_clock) {
        (void)clockMoved();
        m_clock = m_at.scheduler.every(clockPeriod, [this] {
            if (clockMoved())
                refresh();
        });
        m_retries = m_at.scheduler.every(retryPeriod, [this] {
            if (!m_mirrored)
                refresh();
        });
    }
    refresh();
}

/// Keeps the events of the last reading: a folder may be missing only for a moment.
void CalendarStore::deny(const QString& reason)
{
    m_access = Access::Denied;
    m_lastError = reason;
    Q_EMIT changed();
}

void CalendarStore::refresh()
{
    if (m_access == Access::Unknown)
        return;
    const bool readable = m_at.source.access(m_places) == CalendarAccess::Full;
    if (readable != (m_access == Access::Granted))
        requestAccess(); // a calendar appeared or disappeared
    else if (!readable)
        m_at.source.watch(m_places);
    else if (m_reading)
        m_again = true;
    else
        read();
}

void CalendarStore::read()
{
    m_reading = true;
    const qint64 now = m_at.scheduler.nowMs();
    m_at.source.watch(m_places);
    const auto work = [&source = m_at.source, places = m_places, own = ownAddresses(), before = m_events, now] {
        CalendarReading raw = source.read(places, now - pastWindow, now + futureWindow);
        Reading reading { mapped(raw, own), raw.calendars, raw.troubles, {} };
        reading.change = calendarChange(before, reading.events);
        return reading;
    };
    m_at.background.run<Reading>(work, [self = QPointer(this)](Reading reading) {
        if (self)
            self->finish(std::move(reading));
    });
}

void CalendarStore::finish(Reading reading)
{
    m_reading = false;
    if (m_access == Access::Granted)
        m_lastError = reading.troubles.isEmpty() ? std::nullopt : std::optional(reading.troubles.join(u'\n'));
    m_events = std::move(reading.events);
    m_calendars = std::move(reading.calendars);
    m_mirrored = m_at.db.isSound()
        && (m_mirrored ? changeCalendarEvents(m_at.db, reading.change) : replaceCalendarEvents(m_at.db, m_events));
    Q_EMIT changed();
    if (std::exchange(m_again, false))
        refresh();
}

QList<CalEvent> CalendarStore::mapped(const CalendarReading& reading, const QStringList& own)
{
    QHash<QString, QString> titles;
    for (const CalendarInfo& calendar : reading.calendars)
        titles.insert(calendar.id, calendar.title);
    QList<CalEvent> events;
    events.reserve(reading.entries.size());
    for (const CalendarEntry& entry : reading.entries) {
        CalEvent event { eventId(entry), entry.title, entry.startMs, entry.endMs, entry.allDay,
            titles.value(entry.calendarId), entry.location, 0, {}, entry.notes };
        if (event.title.isEmpty())
            event.title = u"(no title)"_s;
        if (event.calendar.isEmpty())
            event.calendar = u"Calendar"_s;
        for (const CalendarPerson& person : entry.people) {
            if (!person.room)
                event.attendeeDetails.append(
                    { person.name, person.email, own.contains(person.email, Qt::CaseInsensitive), person.declined });
        }
        event.attendees = int(event.attendeeDetails.size());
        events.append(std::move(event));
    }
    std::ranges::sort(events, {}, [](const CalEvent& event) { return std::tie(event.startMs, event.id); });
    return events;
}

QStringList CalendarStore::ownAddresses() const
{
    QStringList own = m_at.ownAddresses ? m_at.ownAddresses() : QStringList();
    own += extraAddresses().split(u',', Qt::SkipEmptyParts);
    for (QString& address : own)
        address = address.trimmed();
    own.removeAll(QString());
    return own;
}

QString CalendarStore::extraAddresses() const
{
    return m_at.defaults.text(addressesKey).value_or(QString());
}

void CalendarStore::setExtraAddresses(const QString& addresses)
{
    m_at.defaults.setText(addressesKey, addresses);
    refresh();
    Q_EMIT changed();
}

/// A new day, a wake-up, and a change of clock or time zone each move the mirrored range.
bool CalendarStore::clockMoved()
{
    const qint64 now = m_at.scheduler.nowMs();
    const qint64 asleep = now - m_at.scheduler.monotonicMs();
    const bool jumped = qAbs(asleep - std::exchange(m_asleepMs, asleep)) > clockJump;
    const QString day = dayAndZone(now);
    return std::exchange(m_day, day) != day || jumped;
}

void CalendarStore::eventsBetween(
    qint64 fromMs, qint64 toMs, QObject* context, const std::function<void(const QList<CalEvent>&)>& done)
{
    if (m_access != Access::Granted)
        return;
    const auto work = [&source = m_at.source, places = m_places, own = ownAddresses(), fromMs, toMs] {
        return mapped(source.readKnown(places, fromMs, toMs), own);
    };
    m_at.background.run<QList<CalEvent>>(
        work, [self = QPointer(this), context = QPointer(context), done](const QList<CalEvent>& events) {
            if (self && context)
                done(events);
        });
}

QStringList CalendarStore::calendarNames() const
{
    QSet<QString> names;
    for (const CalEvent& event : m_events)
        names.insert(event.calendar);
    QStringList sorted = names.values();
    sorted.sort();
    return sorted;
}

bool CalendarStore::isCalendarIncluded(const QString& name) const
{
    return !m_excluded.contains(name);
}

void CalendarStore::toggleCalendar(const QString& name)
{
    if (!m_excluded.removeOne(name))
        m_excluded.append(name);
    m_excluded.sort();
    m_at.defaults.setText(excludedKey, m_excluded.join(betweenNames));
    Q_EMIT changed();
}

QList<CalEvent> CalendarStore::visible(const QList<CalEvent>& events) const
{
    if (m_excluded.isEmpty())
        return events;
    QList<CalEvent> shown;
    std::ranges::copy_if(events, std::back_inserter(shown),
        [this](const CalEvent& event) { return isCalendarIncluded(event.calendar); });
    return shown;
}

void CalendarStore::setPlaces(const CalendarPlaces& places)
{
    if (places == m_places)
        return;
    m_places = places;
    m_at.defaults.setText(foldersKey, places.folders.join(u':'));
    m_at.defaults.setBoolean(serviceKey, places.service);
    if (m_access != Access::Unknown)
        requestAccess();
}

}
