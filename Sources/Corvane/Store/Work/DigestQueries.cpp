#include "Store/Work/DigestQueries.h"

#include "Store/Core/Table.h"
#include "Store/Core/Workspaces.h"

#include <algorithm>

namespace corvane {

namespace {

// Selects the few rows first, then their details.
const Table<InboxGlanceRow> glance(R"((SELECT * FROM unified_conversation c
   WHERE c.workspace_id=? AND c.deleted_at IS NULL AND c.archived_at IS NULL
   ORDER BY (c.unread > 0) DESC, c.last_ts DESC LIMIT ?) c)",
    {
        { "c.id", &InboxGlanceRow::conversationId },
        { "c.contact_id", &InboxGlanceRow::contactId, "''" },
        { "COALESCE(NULLIF(ct.display_name,''), NULLIF(c.title,''), c.external_id, c.id)", &InboxGlanceRow::title },
        { "c.channel", &InboxGlanceRow::channel },
        { R"((SELECT m.body FROM unified_message m
     WHERE m.conversation_id=c.id AND m.deleted_at IS NULL ORDER BY m.ts DESC LIMIT 1))",
            &InboxGlanceRow::snippet, "''" },
        { "c.unread", &InboxGlanceRow::unread },
        { "c.last_ts", &InboxGlanceRow::lastTs },
    });

}

TodayDigest todayDigest(LocalDB& db, qint64 dayStartMs, qint64 dayEndMs, const QString& dayStartISO)
{
    const auto count = [&](const char* sql, const QList<SqlValue>& parameters) {
        return db.scalar(QString::fromLatin1(sql), parameters).value_or(QString()).toInt();
    };
    TodayDigest digest;
    digest.meetingsToday = count(R"(SELECT COUNT(*) FROM calendar_event
WHERE start_ms >= ? AND start_ms < ? AND all_day=0;)",
        { dayStartMs, dayEndMs });
    digest.nextMeetingTitle = db.scalar(R"(SELECT title FROM calendar_event
WHERE start_ms >= ? AND start_ms < ? AND all_day=0 ORDER BY start_ms ASC LIMIT 1;)",
        { std::max(dayStartMs, db.nowMs()), dayEndMs });
    digest.openWorkItems
        = count("SELECT COUNT(*) FROM work_item WHERE status NOT IN ('done','closed','rejected');", {});
    digest.agentActionsToday = count("SELECT COUNT(*) FROM work_evidence WHERE created_at >= ?;", { dayStartISO })
        + count("SELECT COUNT(*) FROM work_message WHERE created_at >= ?;", { dayStartISO });
    digest.latestUpdate = db.scalar(
        R"(SELECT body FROM "update" WHERE created_at >= ? ORDER BY created_at DESC LIMIT 1;)", { dayStartISO });
    return digest;
}

bool hasCalendar(LocalDB& db)
{
    return db.scalar("SELECT 1 FROM calendar_event LIMIT 1;").has_value();
}

QList<InboxGlanceRow> fetchInboxGlance(LocalDB& db, int limit)
{
    return glance.rows(db, R"(LEFT JOIN contact ct ON ct.id=c.contact_id AND ct.deleted_at IS NULL
ORDER BY (c.unread > 0) DESC, c.last_ts DESC;)",
        { activeWorkspaceId(db), limit });
}

}
