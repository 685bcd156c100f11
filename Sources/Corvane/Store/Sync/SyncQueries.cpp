#include "Store/Sync/SyncQueries.h"

#include "Foundation/Ids.h"
#include "Store/Core/Table.h"
#include "Store/Core/Workspaces.h"

namespace corvane {

namespace {

const Table<SyncHealthRow> health("sync_health",
    {
        { "source", &SyncHealthRow::source },
        { "status", &SyncHealthRow::status },
        { "last_started_at", &SyncHealthRow::lastStartedAt },
        { "last_finished_at", &SyncHealthRow::lastFinishedAt },
        { "cursor", &SyncHealthRow::cursor },
        { "counts_json", &SyncHealthRow::countsJson },
        { "last_error", &SyncHealthRow::lastError, "''" },
    });

}

QList<SyncHealthRow> fetchSyncHealthRows(LocalDB& db)
{
    return health.rows(db, R"(ORDER BY CASE source WHEN 'bootstrap' THEN 0 WHEN 'inbox' THEN 1
  WHEN 'outbound_drafts' THEN 2 WHEN 'crm' THEN 3 WHEN 'corvane_ingest' THEN 4 ELSE 9 END;)",
        {});
}

QString queueWebPullSync(LocalDB& db, const QString& source)
{
    const qint64 now = db.nowMs();
    const QString id = stampedId(QStringLiteral("sync"), now);
    db.run(R"(INSERT INTO sync_command(id, workspace_id, kind, status, source, requested_at)
VALUES(?, ?, 'web_pull', 'pending', ?, ?);)",
        { id, activeWorkspaceId(db), source, now });
    return id;
}

}
