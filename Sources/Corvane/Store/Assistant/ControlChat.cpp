#include "Store/Assistant/ControlChat.h"

#include "Store/Core/Workspaces.h"

namespace corvane {

QList<ApprovalControlChat> fetchApprovalControlChats(LocalDB& db, int limit)
{
    return db.rows(
        R"(SELECT c.id, COALESCE(NULLIF(ct.display_name,''), NULLIF(c.title,''), c.external_id, c.id), c.channel, c.account_id
FROM unified_conversation c LEFT JOIN contact ct ON ct.id=c.contact_id AND ct.deleted_at IS NULL
WHERE c.workspace_id=? AND c.deleted_at IS NULL
ORDER BY c.last_ts DESC LIMIT ?;)",
        { activeWorkspaceId(db), limit },
        [](const SqlRow& row) { return ApprovalControlChat { row.text(0), row.text(1), row.text(2), row.text(3) }; });
}

QString approvalsControlChatId(LocalDB& db)
{
    return db.scalar("SELECT COALESCE(value,'') FROM engine_settings WHERE key='approvals.control_chat_id' LIMIT 1;")
        .value_or(QString());
}

bool setApprovalsControlChatId(LocalDB& db, const QString& id)
{
    return db.run(R"(INSERT INTO engine_settings(key, value, updated_at)
VALUES('approvals.control_chat_id', ?, ?)
ON CONFLICT(key) DO UPDATE SET value=excluded.value, updated_at=excluded.updated_at;)",
        { id, isoTime(db.nowMs()) });
}

}
