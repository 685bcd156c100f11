#include "Store/People/CrmQueue.h"

#include "Foundation/Ids.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Store/Core/Workspaces.h"

namespace corvane {

void recordCRMMutation(LocalDB& db, const QString& entityType, const QString& entityId, const QString& action,
    const QString& origin, const QJsonObject& payload)
{
    const qint64 now = db.nowMs();
    const QString workspace = activeWorkspaceId(db);
    const QString idempotencyKey = QStringList { workspace, entityType, entityId, action, origin }.join(u':');
    db.run(R"(INSERT INTO crm_mutation_queue
  (id, workspace_id, entity_type, entity_id, action, origin, payload_json,
   idempotency_key, status, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,'pending',?,?)
ON CONFLICT(idempotency_key) WHERE status='pending' DO UPDATE SET
  payload_json=excluded.payload_json,
  updated_at=excluded.updated_at,
  error=NULL;)",
        { stampedId(u"crm_mut"_s, now), workspace, entityType, entityId, action, origin,
            QString::fromUtf8(compactJson(payload)), idempotencyKey, now, now });
}

}
