#include "Calendar/CalendarSettings.h"

#include "Calendar/CalendarCommands.h"
#include "Calendar/CalendarEdits.h"
#include "Calendar/CalendarStore.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Platform/Desktop.h"

namespace corvane {

CalendarSettings::CalendarSettings(CalendarStore& store, CalendarCommands& commands, Desktop& desktop, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_commands(commands)
    , m_desktop(desktop)
{
    connect(&m_store, &CalendarStore::changed, this, &CalendarSettings::changed);
    connect(&m_commands, &CalendarCommands::changed, this, &CalendarSettings::changed);
}

bool CalendarSettings::isConnected() const
{
    return m_store.access() != CalendarStore::Access::Unknown;
}

QString CalendarSettings::stateText() const
{
    if (!isConnected())
        return u"Calendar not connected"_s;
    if (const auto& error = m_store.lastError())
        return *error;
    const qsizetype count = m_store.calendars().size();
    return count == 1 ? u"1 calendar connected"_s : u"%1 calendars connected"_s.arg(count);
}

QList<CalendarLine> CalendarSettings::calendars() const
{
    const auto writable = writableCalendar(m_store);
    QList<CalendarLine> lines;
    for (const CalendarInfo& calendar : m_store.calendars()) {
        const QString detail = calendar.writable ? calendar.origin : calendar.origin + u" · read-only"_s;
        lines.append({ calendar.id, calendar.title, detail, m_store.isCalendarIncluded(calendar.title),
            calendar.writable, writable && writable->id == calendar.id });
    }
    return lines;
}

QStringList CalendarSettings::folders() const
{
    return m_store.places().folders;
}

bool CalendarSettings::agentsMayAdd() const
{
    return m_commands.agentsMayAdd();
}

void CalendarSettings::setAgentsMayAdd(bool may)
{
    m_commands.setAgentsMayAdd(may);
}

QString CalendarSettings::addresses() const
{
    return m_store.extraAddresses();
}

void CalendarSettings::setAddresses(const QString& addresses)
{
    m_store.setExtraAddresses(addresses);
}

void CalendarSettings::connectCalendar()
{
    m_store.requestAccess();
}

void CalendarSettings::makeLocal()
{
    makeCalendar(m_store, u"Personal"_s);
}

void CalendarSettings::toggle(const QString& title)
{
    m_store.toggleCalendar(title);
}

void CalendarSettings::chooseForNew(const QString& id)
{
    setDefaultCalendar(m_store, id);
}

bool CalendarSettings::addFolder(const QString& path)
{
    const auto used = useFolder(m_store, path.trimmed());
    m_refusal = used ? QString() : used.error().message;
    Q_EMIT changed();
    return used.has_value();
}

void CalendarSettings::chooseFolder()
{
    m_desktop.chooseFolder(u"Folder of calendars"_s, this, [this](const Result<QList<QUrl>>& chosen) {
        if (chosen && !chosen->isEmpty()) {
            addFolder(chosen->first().toLocalFile());
            return;
        }
        m_refusal = chosen ? QString() : chosen.error().message;
        Q_EMIT changed();
    });
}

bool CalendarSettings::evolution() const
{
    return m_store.places().service;
}

void CalendarSettings::setEvolution(bool use)
{
    useService(m_store, use);
}

bool CalendarSettings::hasEvolution() const
{
    return evolution() || m_store.surroundings().source.hasService();
}

void CalendarSettings::removeFolder(const QString& path)
{
    CalendarPlaces places = m_store.places();
    places.folders.removeAll(path);
    m_store.setPlaces(places);
}

}
