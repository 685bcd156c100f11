#include "Store/Work/LensQueries.h"

#include "Foundation/Literals.h"
#include "Store/Core/Table.h"
#include "Store/Core/Workspaces.h"
#include "Store/Messages/InboxQueries.h"

#include <QHash>
#include <algorithm>

namespace corvane {

namespace {

constexpr int peopleLookedAt = 1000;
const QString messagesOf = uR"(FROM unified_conversation c
JOIN unified_message m ON m.conversation_id=c.id AND m.deleted_at IS NULL
WHERE c.contact_id=? AND c.deleted_at IS NULL)"_s;

const Table<DealLensRow> deals("crm_deal d",
    {
        { "d.id", &DealLensRow::id },
        { "d.contact_id", &DealLensRow::contactId, "''" },
        { "ct.display_name", &DealLensRow::contactName, "''" },
        { "d.name", &DealLensRow::name },
        { "d.company", &DealLensRow::company, "''" },
        { "d.stage", &DealLensRow::stage, "''" },
        { "d.value", &DealLensRow::value, "''" },
        { "d.updated_at", &DealLensRow::updatedAt },
        { R"((SELECT MAX(c.last_ts) FROM unified_conversation c WHERE c.contact_id=d.contact_id
     AND c.deleted_at IS NULL))",
            &DealLensRow::touchedAt, "0" },
    });

}

QList<DealLensRow> fetchDealLens(LocalDB& db, int limit)
{
    return deals.rows(db,
        u"LEFT JOIN contact ct ON ct.id=d.contact_id\n"
        "WHERE d.workspace_id=? AND d.deleted_at IS NULL\nORDER BY d.updated_at DESC LIMIT ?;"_s,
        { activeWorkspaceId(db), limit });
}

QList<WaitingPerson> fetchWaitingPeople(LocalDB& db, qint64 notBeforeMs, int limit)
{
    QList<ContactRow> people = fetchContacts(db, InboxFilter::All, {}, peopleLookedAt);
    people.removeIf([&](const ContactRow& row) { return row.isGroup || row.isMuted || row.lastTs < notBeforeMs; });
    QStringList ids;
    for (const ContactRow& row : std::as_const(people))
        ids.append(row.id);
    const QHash<QString, LastMessage> last = fetchLastMessages(db, ids);
    QList<WaitingPerson> waiting;
    for (const ContactRow& row : std::as_const(people)) {
        const LastMessage newest = last.value(row.id);
        if (newest.direction != "IN"_L1)
            continue;
        WaitingPerson person { row.id, row.name, newest.channel, row.snippet };
        person.handles = db.rows(u"SELECT handle FROM contact_identity WHERE contact_id=? AND deleted_at IS NULL;"_s,
            { row.id }, [](const SqlRow& identity) { return identity.text(0); });
        const auto answered = db.scalar(u"SELECT MAX(m.ts) "_s + messagesOf + u" AND m.direction='OUT';"_s, { row.id });
        person.everAnswered = answered && !answered->isEmpty();
        db.visitRows(u"SELECT MIN(m.ts), COUNT(*) "_s + messagesOf + u" AND m.direction='IN' AND m.ts > ?;"_s,
            { row.id, answered.value_or(QString()).toLongLong() }, [&](const SqlRow& since) {
                person.sinceMs = since.integer(0);
                person.unanswered = int(since.integer(1));
                return true;
            });
        waiting.append(person);
    }
    std::ranges::sort(waiting, {}, &WaitingPerson::sinceMs);
    return waiting.mid(0, limit);
}

}
