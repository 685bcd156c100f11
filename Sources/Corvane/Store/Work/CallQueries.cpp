#include "Store/Work/CallQueries.h"

#include "Foundation/Literals.h"
#include "Store/Core/LikePattern.h"
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

const Table<CallDetails> details("call_recording cr",
    {
        { "cr.id", &CallDetails::id },
        { "cr.title", &CallDetails::title, "'Call'" },
        { "cr.contact_id", &CallDetails::contactId, "''" },
        { "c.display_name", &CallDetails::contactName, "''" },
        { "cr.started_at", &CallDetails::startedAt },
        { "cr.ended_at", &CallDetails::endedAt, "0" },
        { "cr.duration_ms", &CallDetails::durationMs, "0" },
        { "cr.mic_audio_path", &CallDetails::micPath, "''" },
        { "cr.system_audio_path", &CallDetails::systemPath, "''" },
        { "cr.capture_mode", &CallDetails::captureMode },
        { "cr.processing_status", &CallDetails::processingStatus },
        { "cr.processing_error", &CallDetails::processingError, "''" },
        { "cr.consent_note", &CallDetails::consentNote, "''" },
        { "ct.text", &CallDetails::transcript, "''" },
        { "ct.model", &CallDetails::model, "''" },
        { "cs.summary", &CallDetails::summary, "''" },
    });

const QString detailJoins = uR"(LEFT JOIN contact c ON c.id=cr.contact_id AND c.deleted_at IS NULL
LEFT JOIN call_transcript ct ON ct.call_id=cr.id AND ct.segment_index=0
LEFT JOIN call_summary cs ON cs.call_id=cr.id
)"_s;

}

QList<CallRecordingRow> recentCallRecordings(LocalDB& db, int limit)
{
    return recordings.rows(db, R"(LEFT JOIN call_summary cs ON cs.call_id=cr.id
WHERE cr.workspace_id=? AND cr.deleted_at IS NULL
ORDER BY cr.started_at DESC LIMIT ?;)",
        { activeWorkspaceId(db), limit });
}

QList<CallRecordingRow> findCallRecordings(SqlConnection& db, const QString& workspace, const QString& text, int limit)
{
    const QString pattern = containing(text);
    return recordings.rows(db, R"(LEFT JOIN call_summary cs ON cs.call_id=cr.id
WHERE cr.workspace_id=? AND cr.deleted_at IS NULL AND (cr.title LIKE ? ESCAPE '\' OR cs.summary LIKE ? ESCAPE '\'
  OR EXISTS (SELECT 1 FROM call_transcript ct WHERE ct.call_id=cr.id AND ct.text LIKE ? ESCAPE '\')
  OR EXISTS (SELECT 1 FROM contact c WHERE c.id=cr.contact_id AND c.deleted_at IS NULL AND c.display_name LIKE ? ESCAPE '\'))
ORDER BY cr.started_at DESC LIMIT ?;)",
        { workspace, pattern, pattern, pattern, pattern, limit });
}

std::optional<CallDetails> fetchCall(LocalDB& db, const QString& id)
{
    return details.first(db, detailJoins + u"WHERE cr.workspace_id=? AND cr.id=? AND cr.deleted_at IS NULL LIMIT 1;"_s,
        { activeWorkspaceId(db), id });
}

QString transcriptText(LocalDB& db, const QString& callId)
{
    return db
        .rows("SELECT text FROM call_transcript WHERE workspace_id=? AND call_id=? ORDER BY segment_index;",
            { activeWorkspaceId(db), callId }, [](const SqlRow& row) { return row.text(0); })
        .join(u'\n');
}

QList<CallDetails> callsWithSoundBefore(LocalDB& db, qint64 endedBeforeMs)
{
    return details.rows(db, detailJoins + uR"(WHERE cr.workspace_id=? AND cr.deleted_at IS NULL
  AND cr.ended_at IS NOT NULL AND cr.ended_at<? AND ct.text IS NOT NULL
  AND (COALESCE(cr.mic_audio_path,'')!='' OR COALESCE(cr.system_audio_path,'')!='')
ORDER BY cr.started_at;)"_s,
        { activeWorkspaceId(db), endedBeforeMs });
}

QList<NamedContact> namedContacts(LocalDB& db, int limit)
{
    return db.rows(R"(SELECT id, COALESCE(display_name,'') FROM contact
WHERE workspace_id=? AND deleted_at IS NULL AND COALESCE(display_name,'')!=''
ORDER BY updated_at DESC LIMIT ?;)",
        { activeWorkspaceId(db), limit }, [](const SqlRow& row) { return NamedContact { row.text(0), row.text(1) }; });
}

QString contactWithEmail(LocalDB& db, const QString& email)
{
    return db
        .scalar(R"(SELECT contact_id FROM contact_identity
WHERE workspace_id=? AND deleted_at IS NULL AND LOWER(COALESCE(email,''))=?
ORDER BY updated_at DESC LIMIT 1;)",
            { activeWorkspaceId(db), email.toLower() })
        .value_or(QString());
}

}
