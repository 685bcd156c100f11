#include "Store/Work/CalendarQueries.h"

#include "Foundation/Literals.h"
#include "Store/Core/Table.h"
#include "Store/Core/Transaction.h"
#include "Store/Core/Workspaces.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace corvane {

namespace {

struct EventRow : CalEvent {
    QString attendeesJson;
};

const Table<EventRow> calendarEvents("calendar_event",
    {
        { "id", &EventRow::id },
        { "workspace_id" },
        { "title", &EventRow::title },
        { "start_ms", &EventRow::startMs },
        { "end_ms", &EventRow::endMs },
        { "all_day", &EventRow::allDay },
        { "calendar", &EventRow::calendar, "''" },
        { "location", &EventRow::location, "''" },
        { "attendees", &EventRow::attendees },
        { "attendees_json", &EventRow::attendeesJson, "'[]'" },
        { "notes", &EventRow::notes, "''" },
        { "updated_at" },
    });

const Table<CalCommand> calendarCommands("calendar_command",
    {
        { "id", &CalCommand::id },
        { "title", &CalCommand::title },
        { "start_ms", &CalCommand::startMs },
        { "end_ms", &CalCommand::endMs },
        { "notes", &CalCommand::notes, "''" },
        { "location", &CalCommand::location, "''" },
        { "calendar", &CalCommand::calendar, "''" },
        { "status", &CalCommand::status },
        { "error", &CalCommand::error, "''" },
    });

QString attendeesJson(const QList<CalAttendee>& attendees)
{
    QJsonArray array;
    for (const CalAttendee& attendee : attendees) {
        QJsonObject object { { u"name"_s, attendee.name }, { u"email"_s, attendee.email },
            { u"currentUser"_s, attendee.currentUser } };
        if (attendee.declined)
            object.insert(u"declined"_s, true);
        array.append(object);
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

CalEvent eventOf(EventRow row)
{
    for (const QJsonValue& value : QJsonDocument::fromJson(row.attendeesJson.toUtf8()).array()) {
        const QJsonObject attendee = value.toObject();
        row.attendeeDetails.append({ attendee.value(u"name"_s).toString(), attendee.value(u"email"_s).toString(),
            attendee.value(u"currentUser"_s).toBool(), attendee.value(u"declined"_s).toBool() });
    }
    return row;
}

bool writeEvents(LocalDB& db, const QString& workspace, const QList<CalEvent>& events)
{
    static const QString sql = u"INSERT OR REPLACE"_s + calendarEvents.insertion().sliced(6) + u';';
    const qint64 now = db.nowMs();
    for (const CalEvent& event : events) {
        const EventRow row { event, attendeesJson(event.attendeeDetails) };
        if (!db.run(sql, calendarEvents.values(row, { { "workspace_id", workspace }, { "updated_at", now } })))
            return false;
    }
    return true;
}

}

QList<CalEvent> fetchCalendarEvents(LocalDB& db, qint64 endingFromMs, int limit)
{
    QList<CalEvent> events;
    for (EventRow& row :
        calendarEvents.rows(db, u"WHERE workspace_id=? AND end_ms >= ? ORDER BY start_ms ASC LIMIT ?;"_s,
            { activeWorkspaceId(db), endingFromMs, limit }))
        events.append(eventOf(std::move(row)));
    return events;
}

bool replaceCalendarEvents(LocalDB& db, const QList<CalEvent>& events)
{
    const QString workspace = activeWorkspaceId(db);
    Transaction transaction(db);
    return transaction.begun() && db.run(u"DELETE FROM calendar_event WHERE workspace_id=?;"_s, { workspace })
        && writeEvents(db, workspace, events) && transaction.commit();
}

CalendarChange calendarChange(const QList<CalEvent>& before, const QList<CalEvent>& after)
{
    QHash<QString, const CalEvent*> known;
    for (const CalEvent& event : before)
        known.insert(event.id, &event);
    CalendarChange change;
    for (const CalEvent& event : after) {
        const CalEvent* const old = known.take(event.id);
        if (!old || *old != event)
            change.written.append(event);
    }
    change.gone = known.keys();
    return change;
}

bool changeCalendarEvents(LocalDB& db, const CalendarChange& change)
{
    if (change.isEmpty())
        return true;
    const QString workspace = activeWorkspaceId(db);
    Transaction transaction(db);
    if (!transaction.begun())
        return false;
    for (const QString& id : change.gone) {
        if (!db.run(u"DELETE FROM calendar_event WHERE id=? AND workspace_id=?;"_s, { id, workspace }))
            return false;
    }
    return writeEvents(db, workspace, change.written) && transaction.commit();
}

QList<CalCommand> fetchPendingCalendarCommands(LocalDB& db, int limit)
{
    return calendarCommands.rows(db, u"WHERE workspace_id=? AND status='pending' ORDER BY created_at ASC LIMIT ?;"_s,
        { activeWorkspaceId(db), limit });
}

std::optional<CalCommand> fetchCalendarCommand(LocalDB& db, const QString& id)
{
    return calendarCommands.first(db, u"WHERE id=? LIMIT 1;"_s, { id });
}

bool endCalendarCommand(LocalDB& db, const QString& id, const QString& from, const QString& status,
    const std::optional<QString>& eventId, const std::optional<QString>& error)
{
    return db.changedRows(
               u"UPDATE calendar_command SET status=?, event_id=?, error=?, updated_at=? WHERE id=? AND status=?;"_s,
               { status, eventId, error, db.nowMs(), id, from })
        == 1;
}

}
