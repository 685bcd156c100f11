#include "Store/Work/CallQueries.h"

#include "Store/Core/Table.h"
#include "Store/Core/Workspaces.h"

namespace corvane {

namespace {

const Table<CallRecordingRow> recordings("call_recording cr",
    {
        { "cr.id", &CallRecordingRow::id },
        { "cr.contact_id", &CallRecordingRow::contactId, "''" },
        { "cr.conversation_id", &CallRecordingRow::conversationId, "''" },
        { "cr.title", &CallRecordingRow::title, "'Call'" },
        { "cr.started_at", &CallRecordingRow::startedAt },
        { "cr.ended_at", &CallRecordingRow::endedAt, "0" },
        { "cr.duration_ms", &CallRecordingRow::durationMs, "0" },
        { "cr.audio_path", &CallRecordingRow::audioPath, "''" },
        { "cr.capture_mode", &CallRecordingRow::captureMode },
        { "cr.processing_status", &CallRecordingRow::processingStatus },
        { "cr.processing_error", &CallRecordingRow::processingError, "''" },
        { "cs.summary", &CallRecordingRow::summary, "''" },
    });

}

QList<CallRecordingRow> recentCallRecordings(LocalDB& db, int limit)
{
    return recordings.rows(db, R"(LEFT JOIN call_summary cs ON cs.call_id=cr.id
WHERE cr.workspace_id=? AND cr.deleted_at IS NULL
ORDER BY cr.started_at DESC LIMIT ?;)",
        { activeWorkspaceId(db), limit });
}

}
