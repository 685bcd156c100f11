#include "Store/Sync/SyncQueries.h"

#include "Foundation/Ids.h"
#include "Store/Core/Workspaces.h"

namespace corvane {

QList<SyncHealthRow> fetchSyncHealthRows(LocalDB& db)
{
    return db.rows(R"(SELECT source, status, last_started_at, last_finished_at, cursor, counts_json,
       COALESCE(last_error,'')
FROM sync_health
ORDER BY CASE source WHEN 'bootstrap' THEN 0 WHEN 'inbox' THEN 1 WHEN 'outbound_drafts' THEN 2 WHEN 'crm' THEN 3 WHEN 'corvane_ingest' THEN 4 ELSE 9 END;)",
        {}, [](const SqlRow& row) {
            return SyncHealthRow { row.text(0), row.text(1), row.optionalInteger(2), row.optionalInteger(3),
                row.integer(4), row.text(5), row.text(6) };
        });
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
