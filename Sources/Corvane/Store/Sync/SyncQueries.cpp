#include "Store/Sync/SyncQueries.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
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
        { "updated_at" },
    });

const Table<SyncStateCursorRow> cursors("_sync_state",
    {
        { "table_name", &SyncStateCursorRow::tableName },
        { "last_pulled", &SyncStateCursorRow::lastPulled },
        { "last_pushed", &SyncStateCursorRow::lastPushed },
    });

const Table<EngineInfoRow> engine("engine_info",
    {
        { "version", &EngineInfoRow::version },
        { "git_sha", &EngineInfoRow::gitSha },
        { "started_at", &EngineInfoRow::startedAt },
        { "updated_at", &EngineInfoRow::updatedAt },
    });

}

QList<SyncHealthRow> fetchSyncHealthRows(LocalDB& db)
{
    return health.rows(db, R"(ORDER BY CASE source WHEN 'bootstrap' THEN 0 WHEN 'inbox' THEN 1
  WHEN 'outbound_drafts' THEN 2 WHEN 'crm' THEN 3 WHEN 'corvane_ingest' THEN 4 ELSE 9 END;)",
        {});
}

void recordSyncHealth(LocalDB& db, const SyncHealthRow& row)
{
    const qint64 now = db.nowMs();
    health.insert(db, row, { { "last_started_at", now }, { "last_finished_at", now }, { "updated_at", now } }, R"(
ON CONFLICT(source) DO UPDATE SET
  status=excluded.status,
  last_started_at=CASE WHEN excluded.status='running' THEN excluded.last_started_at ELSE sync_health.last_started_at END,
  last_finished_at=CASE WHEN excluded.status!='running' THEN excluded.last_finished_at ELSE sync_health.last_finished_at END,
  cursor=excluded.cursor,
  counts_json=excluded.counts_json,
  last_error=excluded.last_error,
  updated_at=excluded.updated_at)");
}

std::optional<SyncStateCursorRow> fetchSyncStateCursor(LocalDB& db, const QString& tableName)
{
    if (!db.tableExists(cursors.name()))
        return std::nullopt;
    return cursors.first(db, "WHERE table_name=?;", { tableName });
}

std::optional<EngineInfoRow> fetchEngineInfo(LocalDB& db)
{
    if (!db.tableExists(engine.name()))
        return std::nullopt;
    return engine.first(db, "WHERE id='engine';", {});
}

QString queueWebPullSync(LocalDB& db, const QString& source)
{
    const qint64 now = db.nowMs();
    const QString id = stampedId(u"sync"_s, now);
    db.run(R"(INSERT INTO sync_command(id, workspace_id, kind, status, source, requested_at)
VALUES(?, ?, 'web_pull', 'pending', ?, ?);)",
        { id, activeWorkspaceId(db), source, now });
    return id;
}

}
