#include "Store/Work/BrowserSessions.h"

#include "Foundation/Literals.h"
#include "Store/Core/Table.h"

namespace corvane {

namespace {

const Table<DevBrowserSessionRow> sessions("dev_browser_session",
    {
        { "id", &DevBrowserSessionRow::id },
        { "project_id", &DevBrowserSessionRow::projectId, "''" },
        { "title", &DevBrowserSessionRow::title },
        { "url", &DevBrowserSessionRow::url },
        { "engine", &DevBrowserSessionRow::engine },
        { "status", &DevBrowserSessionRow::status },
        { "last_capture_path", &DevBrowserSessionRow::lastCapturePath, "''" },
        { "last_error", &DevBrowserSessionRow::lastError, "''" },
        { "created_at", &DevBrowserSessionRow::createdAt },
        { "updated_at", &DevBrowserSessionRow::updatedAt },
    });

}

bool upsertDevBrowserSession(LocalDB& db, const DevBrowserSessionRow& row)
{
    const QString now = isoTime(db.nowMs());
    const char* const keepAnEarlierPath = R"(
ON CONFLICT(id) DO UPDATE SET project_id=excluded.project_id, title=excluded.title, url=excluded.url,
  engine=excluded.engine, status=excluded.status,
  last_capture_path=CASE WHEN excluded.last_capture_path='' THEN dev_browser_session.last_capture_path ELSE excluded.last_capture_path END,
  last_error=excluded.last_error, updated_at=excluded.updated_at)";
    return db.tableExists(sessions.name())
        && sessions.insert(db, row, { { "created_at", now }, { "updated_at", now } }, keepAnEarlierPath);
}

QList<DevBrowserSessionRow> fetchDevBrowserSessions(LocalDB& db, const QString& projectId, int limit)
{
    if (!db.tableExists(sessions.name()))
        return {};
    return sessions.rows(db, u"WHERE project_id=? ORDER BY updated_at DESC LIMIT ?;"_s, { projectId, qint64(limit) });
}

}
