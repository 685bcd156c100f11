#include "Calendar/CalendarCommands.h"

#include "Calendar/CalendarEdits.h"
#include "Calendar/CalendarStore.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Presentation/DateWords.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds period { 5000 };
constexpr int mostAtOnce = 20;
const QString mayAddKey = u"nimb.agentsMayAddEvents"_s;
const QString pending = u"pending"_s;
const QString done = u"done"_s;
const QString failed = u"failed"_s;

}

CalendarCommands::CalendarCommands(CalendarStore& store, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_undo(store.surroundings().scheduler, [this] { Q_EMIT changed(); })
{
    connect(&m_store, &CalendarStore::changed, this, [this] {
        if (!m_timer && m_store.access() == CalendarStore::Access::Granted && !m_store.calendars().isEmpty())
            m_timer = m_store.surroundings().scheduler.every(period, [this] { processPendingCommands(); });
    });
}

bool CalendarCommands::agentsMayAdd() const
{
    return m_store.surroundings().defaults.boolean(mayAddKey).value_or(true);
}

void CalendarCommands::setAgentsMayAdd(bool may)
{
    m_store.surroundings().defaults.setBoolean(mayAddKey, may);
    processPendingCommands();
    Q_EMIT changed();
}

void CalendarCommands::processPendingCommands()
{
    if (m_running > 0 || m_store.access() != CalendarStore::Access::Granted || !m_store.surroundings().db.isSound())
        return;
    LocalDB& db = m_store.surroundings().db;
    const bool may = agentsMayAdd();
    QList<CalCommand> commands;
    QList<CalCommand> waiting;
    for (const CalCommand& command : fetchPendingCalendarCommands(db, mostAtOnce))
        (may || isApproved(db, command) ? commands : waiting).append(command);
    setWaiting(waiting);
    run(commands);
}

void CalendarCommands::run(const QList<CalCommand>& commands)
{
    m_running += int(commands.size());
    for (const CalCommand& command : commands) {
        const auto calendar = writableCalendar(m_store, command.calendar);
        if (!calendar || command.startMs <= 0 || command.endMs < command.startMs) {
            end(command, {},
                failure(calendar ? u"The event has no time, or ends before it starts."_s
                                 : u"There is no calendar for new events."_s));
            continue;
        }
        // The file name is derived from the command, so that an event written before a crash is not added twice.
        const NewCalendarEntry entry { command.id + u"@corvane"_s, command.title, command.location, command.notes,
            command.startMs, command.endMs, false, m_store.surroundings().scheduler.nowMs() };
        addEvent(m_store, calendar->id, entry, this,
            [this, command, calendar](const Result<QString>& eventId) { end(command, calendar->id, eventId); });
    }
}

void CalendarCommands::end(const CalCommand& command, const QString& calendarId, const Result<QString>& eventId)
{
    const CalendarStore::Surroundings& at = m_store.surroundings();
    if (eventId) {
        endCalendarCommand(at.db, command.id, pending, done, *eventId, std::nullopt);
        const DateWords dates(at.scheduler.nowMs());
        m_added.append({ command.id, calendarId, command.id + u"@corvane"_s,
            u"“%1” was added: %2, %3."_s.arg(command.title.simplified(), dates.mediumDate(dates.dayOf(command.startMs)),
                dates.clockTime(command.startMs)) });
    } else {
        endCalendarCommand(at.db, command.id, pending, failed, std::nullopt, eventId.error().message);
    }
    if (m_letIn.remove(command.id) && !eventId)
        Q_EMIT refused(command.title, eventId.error().message);
    if (--m_running == 0 && !m_added.isEmpty())
        offerUndo();
}

void CalendarCommands::offerUndo()
{
    const QList<Added> added = std::exchange(m_added, {});
    const QString words
        = added.size() == 1 ? added.first().words : u"%1 events were added for agents."_s.arg(added.size());
    m_undo.offer(words, [this, added] {
        for (const Added& one : added) {
            takeBackEvent(m_store, one.calendarId, one.uid, this, [this, one](const Result<void>& gone) {
                if (gone)
                    endCalendarCommand(
                        m_store.surroundings().db, one.command, done, failed, std::nullopt, u"Undone."_s);
            });
        }
    });
}

Decided CalendarCommands::add(const QString& id, const QString& seenHash)
{
    if (m_store.access() != CalendarStore::Access::Granted || m_letIn.contains(id))
        return Decided::Refused;
    LocalDB& db = m_store.surroundings().db;
    const Decided decided = approveEvent(db, id, seenHash);
    const auto command = fetchCalendarCommand(db, id);
    if (decided == Decided::Taken && command) {
        m_letIn.insert(id);
        run({ *command });
    }
    forget(id, decided);
    return decided;
}

Decided CalendarCommands::reject(const QString& id)
{
    const Decided decided = m_letIn.contains(id) ? Decided::Refused : rejectEvent(m_store.surroundings().db, id);
    forget(id, decided);
    return decided;
}

/// Decided events are removed; one whose row differs by now is read again.
void CalendarCommands::forget(const QString& id, Decided decided)
{
    if (decided != Decided::Taken)
        return processPendingCommands();
    m_waiting.removeIf([&](const CalCommand& command) { return command.id == id; });
    Q_EMIT changed();
}

void CalendarCommands::setWaiting(const QList<CalCommand>& waiting)
{
    if (waiting == m_waiting)
        return;
    m_waiting = waiting;
    Q_EMIT changed();
}

}
