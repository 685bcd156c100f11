#include "Store/Assistant/AIRequestQueries.h"

#include "Store/Core/LocalDB.h"

namespace corvane {

QList<AIRequest> fetchPendingAIRequests(LocalDB& db, int limit)
{
    return db.rows(R"(SELECT id, COALESCE(instructions,''), prompt
FROM ai_requests
WHERE status='pending'
ORDER BY created_at ASC
LIMIT ?;)",
        { limit }, [](const SqlRow& row) { return AIRequest { row.text(0), row.text(1), row.text(2) }; });
}

bool claimAIRequest(LocalDB& db, const QString& id, const QString& owner)
{
    return db.changedRows(R"(UPDATE ai_requests
SET status='processing',
    claimed_at=?,
    claimed_by=?,
    error=NULL
WHERE id=? AND status='pending';)",
               { db.nowMs(), owner, id })
        == 1;
}

void completeAIRequest(LocalDB& db, const QString& id, const QString& response)
{
    db.run(R"(UPDATE ai_requests
SET status='done', response=?, error=NULL, completed_at=?
WHERE id=? AND status='processing';)",
        { response, db.nowMs(), id });
}

void failAIRequest(LocalDB& db, const QString& id, const QString& error)
{
    db.run(R"(UPDATE ai_requests
SET status='error', error=?, completed_at=?
WHERE id=? AND status='processing';)",
        { error, db.nowMs(), id });
}

void failStaleAIRequests(LocalDB& db, qint64 olderThanMs)
{
    const qint64 now = db.nowMs();
    const qint64 cutoff = now - olderThanMs;
    db.run(R"(UPDATE ai_requests
SET status='error',
    error='LumoAI request expired before the app could complete it. Retry the request.',
    completed_at=?
WHERE status='pending' AND created_at < ?;)",
        { now, cutoff });
    db.run(R"(UPDATE ai_requests
SET status='pending',
    claimed_at=NULL,
    claimed_by=NULL,
    error=NULL
WHERE status='processing' AND COALESCE(claimed_at, created_at) < ?;)",
        { cutoff });
}

}
