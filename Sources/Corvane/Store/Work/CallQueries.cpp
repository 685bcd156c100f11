#include "Store/Work/CallQueries.h"

#include "Store/Core/Workspaces.h"

namespace corvane {

QList<CallRecordingRow> recentCallRecordings(LocalDB& db, int limit)
{
    return db.rows(
        R"(SELECT cr.id, COALESCE(cr.contact_id,''), COALESCE(cr.conversation_id,''), COALESCE(cr.title,'Call'),
       cr.started_at, COALESCE(cr.ended_at,0), COALESCE(cr.duration_ms,0), COALESCE(cr.audio_path,''),
       cr.capture_mode, cr.processing_status, COALESCE(cr.processing_error,''), COALESCE(cs.summary,'')
FROM call_recording cr
LEFT JOIN call_summary cs ON cs.call_id=cr.id
WHERE cr.workspace_id=? AND cr.deleted_at IS NULL
ORDER BY cr.started_at DESC LIMIT ?;)",
        { activeWorkspaceId(db), limit }, [](const SqlRow& row) {
            return CallRecordingRow { row.text(0), row.text(1), row.text(2), row.text(3), row.integer(4),
                row.integer(5), row.integer(6), row.text(7), row.text(8), row.text(9), row.text(10), row.text(11) };
        });
}

}
