#include "Platform/Linux/Calendar/EvolutionCalendars.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Calendar/IcsText.h"
#include "Platform/Linux/Calendar/IcsValues.h"

#include <QDBusServiceWatcher>
#include <QRegularExpression>
#include <QSet>
#include <QTimeZone>

namespace corvane {

namespace {

constexpr int pauseMs = 60'000;
constexpr int lookUpMs = 500;
const QString everything = u"#t"_s;
const QString openTasksOnly = u"(not (is-completed?))"_s;

const BusObject daemon { u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s };

QString sourceOf(const QString& calendarId)
{
    return calendarId.sliced(EvolutionCalendars::idPrefix.size());
}

QByteArray fileOf(const QByteArray& content)
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Corvane//EN\r\n" + content + "END:VCALENDAR\r\n";
}

QByteArray joined(const QStringList& components)
{
    QByteArray text;
    for (const QString& component : components)
        text += component.trimmed().toUtf8() + "\r\n";
    return text;
}

QString uidQuery(QString uid)
{
    return u"(uid? \"%1\")"_s.arg(uid.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s));
}

}

EvolutionCalendars::EvolutionCalendars(const QDBusConnection& bus, int answerMs)
    : m_bus(bus)
    , m_service(bus, answerMs)
{
}

/// Answered by the bus itself, so at once.
bool EvolutionCalendars::hasService() const
{
    if (!m_bus.isConnected())
        return false;
    const QDBusMessage names = m_bus.call(daemon.method(u"ListActivatableNames"_s), QDBus::Block, lookUpMs);
    if (firstValue(names).toStringList().contains(evolution::calendars))
        return true;
    const QDBusMessage owned
        = m_bus.call(daemon.method(u"NameHasOwner"_s, { evolution::calendars }), QDBus::Block, lookUpMs);
    return firstValue(owned).toBool();
}

CalendarAccess EvolutionCalendars::access(const CalendarPlaces& places) const
{
    return places.service && hasService() ? CalendarAccess::Full : CalendarAccess::None;
}

void EvolutionCalendars::watch(const CalendarPlaces& places)
{
    if (!places.service || m_watches || !m_bus.isConnected())
        return;
    m_watches = true;
    m_bus.connect({}, {}, evolution::propertiesInterface, u"PropertiesChanged"_s, { evolution::calendarInterface }, {},
        this, SLOT(onChange()));
    for (const QString& signal : { u"InterfacesAdded"_s, u"InterfacesRemoved"_s })
        m_bus.connect(evolution::sources, {}, u"org.freedesktop.DBus.ObjectManager"_s, signal, this, SLOT(onChange()));
    const auto* const owners
        = new QDBusServiceWatcher(evolution::calendars, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(owners, &QDBusServiceWatcher::serviceOwnerChanged, this, &EvolutionCalendars::onOwnerChanged);
}

void EvolutionCalendars::onChange()
{
    Q_EMIT changed();
}

/// The next reading restarts a service that exited, but not too often.
void EvolutionCalendars::onOwnerChanged(const QString&, const QString& before, const QString&)
{
    m_restarted = true;
    if (before.isEmpty() || !m_calm.hasExpired())
        return;
    m_calm.setRemainingTime(pauseMs);
    Q_EMIT changed();
}

void EvolutionCalendars::begin()
{
    m_service.begin();
    if (m_restarted.exchange(false)) {
        m_service.forget();
        m_pause.setRemainingTime(0);
    }
}

CalendarReading EvolutionCalendars::read(const CalendarPlaces&, qint64 fromMs, qint64 toMs)
{
    const std::lock_guard lock(m_mutex);
    begin();
    const QByteArray zone = QTimeZone::systemTimeZoneId();
    if (std::exchange(m_zone, zone) != zone)
        m_calendars.clear();
    CalendarReading reading;
    const auto paused = [this] {
        return !m_pause.hasExpired();
    };
    if (!paused()) {
        if (const auto sources = m_service.calendars())
            m_sources = *sources;
        else
            reading.troubles.append(sources.error().message);
    }
    for (auto source = m_sources.begin(); source != m_sources.end(); ++source) {
        if (!paused() && !m_service.isSilent()) {
            if (const auto updated = update(source.key()); !updated)
                reading.troubles.append(
                    u"The calendar “%1” could not be read. %2"_s.arg(source->title, updated.error().message));
            source->writable = m_service.isWritable(source.key());
        }
        CalendarInfo info = *source;
        info.id = idPrefix + source.key();
        for (Event& event : m_calendars[source.key()].events)
            event.calendar.addTo(reading.entries, info.id, fromMs, toMs);
        reading.calendars.append(info);
    }
    if (m_service.isSilent())
        m_pause.setRemainingTime(pauseMs);
    if (paused())
        reading.troubles = { u"Evolution's calendars do not answer. They stand as they were."_s };
    m_calendars.removeIf([this](const auto& calendar) { return !m_sources.contains(calendar.key()); });
    std::ranges::sort(reading.calendars, {}, [](const CalendarInfo& info) { return std::tie(info.title, info.id); });
    return reading;
}

CalendarReading EvolutionCalendars::readKnown(const CalendarPlaces&, qint64 fromMs, qint64 toMs)
{
    const std::lock_guard lock(m_mutex);
    CalendarReading reading;
    for (auto source = m_sources.cbegin(); source != m_sources.cend(); ++source) {
        CalendarInfo info = *source;
        info.id = idPrefix + source.key();
        for (Event& event : m_calendars[source.key()].events)
            event.calendar.addPageTo(reading.entries, info.id, fromMs, toMs);
        reading.calendars.append(info);
    }
    return reading;
}

/// Only changed events are parsed again.
Result<void> EvolutionCalendars::update(const QString& source)
{
    const auto revision = m_service.revision(source);
    if (!revision)
        return std::unexpected(revision.error());
    Calendar& calendar = m_calendars[source];
    if (!revision->isEmpty() && calendar.revision == *revision)
        return {};
    const auto objects = m_service.objects(source, everything);
    if (!objects)
        return std::unexpected(objects.error());
    const IcsParts parts = icsParts(fileOf(joined(*objects)));
    QHash<QByteArray, Event> events;
    for (auto event = parts.events.cbegin(); event != parts.events.cend(); ++event) {
        const QByteArray text = event->join();
        Event known = calendar.events.take(event.key());
        if (known.text != text || !known.calendar.file())
            known = { text, ExpandedIcs(IcsFile::read(fileOf(zonesOf(source, text).join() + text), m_zone)) };
        events.insert(event.key(), std::move(known));
    }
    calendar = { *revision, std::move(events) };
    return {};
}

/// The time zones that the events use and this machine does not know.
QByteArrayList EvolutionCalendars::zonesOf(const QString& source, const QByteArray& text)
{
    static const QRegularExpression named(u";TZID=\"?([^\":;\\r\\n]+)"_s);
    QByteArrayList zones;
    QSet<QString> seen;
    for (auto match = named.globalMatch(QString::fromUtf8(text)); match.hasNext();) {
        const QString name = match.next().captured(1);
        if (seen.contains(name))
            continue;
        seen.insert(name);
        const QByteArray key = name.toUtf8();
        if (!m_zones.contains(key)) {
            const auto isKnown = [&key] {
                const std::lock_guard lock(ics::library());
                return ics::knownZone(key.constData()) != nullptr;
            };
            const auto told = isKnown() ? Result<QString>() : m_service.zone(source, name);
            m_zones.insert(key, told.value_or(QString()).toUtf8());
        }
        zones.append(m_zones.value(key));
    }
    return zones;
}

Result<void> EvolutionCalendars::add(const CalendarPlaces&, const QString& calendarId, const NewCalendarEntry& entry)
{
    const std::lock_guard lock(m_mutex);
    begin();
    const QString source = sourceOf(calendarId);
    const IcsParts parts = icsParts(icsOf(entry));
    const QString component = QString::fromUtf8(parts.events.value(entry.uid.toUtf8()).join());
    const bool present = m_service.object(source, entry.uid).has_value();
    if (const auto done = present ? m_service.modify(source, component) : m_service.create(source, component); !done)
        return done;
    if (const auto written = m_service.object(source, entry.uid))
        m_written.insert(calendarId + u'\n' + entry.uid, *written);
    return {};
}

Result<void> EvolutionCalendars::remove(const CalendarPlaces&, const QString& calendarId, const QString& uid)
{
    const std::lock_guard lock(m_mutex);
    begin();
    const auto stands = m_service.object(sourceOf(calendarId), uid);
    const QString key = calendarId + u'\n' + uid;
    if (!stands || !m_written.contains(key) || m_written.value(key) != *stands)
        return failure(u"The event was changed meanwhile, so it was kept."_s);
    m_written.remove(key);
    return m_service.remove(sourceOf(calendarId), uid);
}

Result<CalendarImport> EvolutionCalendars::import(
    const CalendarPlaces&, const QString& calendarId, const QByteArray& ics)
{
    const IcsParts parts = icsParts(ics);
    if (parts.events.isEmpty() || !IcsFile::read(ics, QTimeZone::systemTimeZoneId()))
        return failure(u"There is no event in this file."_s);
    const std::lock_guard lock(m_mutex);
    CalendarImport result;
    for (auto event = parts.events.cbegin(); event != parts.events.cend(); ++event) {
        begin();
        if (m_service.object(sourceOf(calendarId), QString::fromUtf8(event.key()))) {
            ++result.present;
            continue;
        }
        const QByteArray file = fileOf("METHOD:PUBLISH\r\n" + parts.zones.join() + event->join());
        if (const auto added = m_service.receive(sourceOf(calendarId), QString::fromUtf8(file)); !added)
            return std::unexpected(added.error());
        ++result.added;
    }
    return result;
}

Result<QByteArray> EvolutionCalendars::exported(const CalendarPlaces&, const QString& calendarId, const QString& uid)
{
    const std::lock_guard lock(m_mutex);
    begin();
    const auto objects = m_service.objects(sourceOf(calendarId), uidQuery(uid));
    if (!objects)
        return std::unexpected(objects.error());
    if (objects->isEmpty())
        return failure(u"The event no longer exists."_s);
    const QByteArray text = joined(*objects);
    return fileOf(zonesOf(sourceOf(calendarId), text).join() + text);
}

int EvolutionCalendars::openTasks(const CalendarPlaces& places)
{
    if (!places.service)
        return 0;
    const std::lock_guard lock(m_mutex);
    begin();
    int open = 0;
    for (const QString& list : m_service.taskLists().value_or(QStringList())) {
        if (const auto tasks = m_service.objects(list, openTasksOnly))
            open += corvane::openTasks(joined(*tasks));
    }
    return open;
}

Result<void> EvolutionCalendars::makeCalendar(const QString&)
{
    return failure(u"Create Evolution's calendars in Evolution."_s);
}

}
