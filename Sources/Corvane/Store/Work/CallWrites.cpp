#include "Store/Work/CallWrites.h"

#include "Foundation/Literals.h"
#include "Store/Core/Transaction.h"
#include "Store/Core/Workspaces.h"

namespace corvane {

namespace {

/// A reference to another table's row; an empty text becomes NULL.
std::optional<QString> reference(const QString& id)
{
    return id.isEmpty() ? std::nullopt : std::optional(id);
}

bool isMixed(const QString& captureMode)
{
    return captureMode == "mic_and_system"_L1;
}

}

bool insertCall(LocalDB& db, const NewCall& call)
{
    const qint64 now = db.nowMs();
    return db.run(R"(INSERT INTO call_recording
  (id, workspace_id, calendar_event_id, contact_id, conversation_id, title, source_app, source_bundle_id,
   capture_backend, capture_mode, started_at, audio_path, mic_audio_path, system_audio_path,
   consent_required, consent_granted, consent_note, disclosure_mode,
   processing_status, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?);)",
        { call.id, activeWorkspaceId(db), call.calendarEventId, reference(call.contactId),
            reference(call.conversationId), call.title, call.sourceApp, call.sourceBundleId, call.captureBackend,
            call.captureMode, call.startedAtMs, call.audioPath, call.micPath, call.systemPath,
            call.consentRequired ? 1 : 0, call.consentGranted ? 1 : 0, call.consentNote, call.disclosureMode,
            u"recording"_s, now, now });
}

bool endCall(LocalDB& db, const QString& id, qint64 startedAtMs, qint64 endedAtMs, const QString& status)
{
    return db.run(R"(UPDATE call_recording
SET ended_at=?, duration_ms=?, processing_status=?, updated_at=?, processing_error=NULL
WHERE id=? AND workspace_id=?;)",
        { endedAtMs, endedAtMs - startedAtMs, status, db.nowMs(), id, activeWorkspaceId(db) });
}

bool updateCallProcessing(LocalDB& db, const QString& id, const QString& status, const std::optional<QString>& error)
{
    return db.run(R"(UPDATE call_recording
SET processing_status=?, processing_error=?, updated_at=?
WHERE id=? AND workspace_id=?;)",
        { status, error, db.nowMs(), id, activeWorkspaceId(db) });
}

bool replaceCallTranscript(LocalDB& db, const NewTranscript& transcript)
{
    const QString workspace = activeWorkspaceId(db);
    const bool mixed = isMixed(transcript.captureMode);
    const qint64 now = db.nowMs();
    Transaction transaction(db);
    return transaction.begun()
        && db.run("DELETE FROM call_transcript WHERE call_id=? AND workspace_id=?;", { transcript.callId, workspace })
        && db.run(R"(INSERT INTO call_transcript
  (id, workspace_id, call_id, segment_index, speaker_label, speaker_kind, track,
   start_ms, end_ms, text, model, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?);)",
            { u"ctseg:%1:0"_s.arg(transcript.callId), workspace, transcript.callId, 0,
                mixed ? u"Meeting audio"_s : u"Me"_s, mixed ? u"mixed"_s : u"me"_s, mixed ? u"system"_s : u"mic"_s, 0,
                0, transcript.text, transcript.model, now, now })
        && transaction.commit();
}

bool storeCallSummary(
    LocalDB& db, const QString& callId, const QString& summary, const QString& model, const QStringList& warnings)
{
    const qint64 now = db.nowMs();
    const QString marker = QString::number(qHash(transcriptText(db, callId)));
    return db.run(R"(INSERT INTO call_summary
  (id, workspace_id, call_id, summary, warnings_json, model, prompt_ref, transcript_hash, created_at, updated_at)
VALUES(?,?,?,?,?,?,'call-summary-v1',?,?,?)
ON CONFLICT(call_id) DO UPDATE SET summary=excluded.summary, warnings_json=excluded.warnings_json,
  model=excluded.model, prompt_ref=excluded.prompt_ref, transcript_hash=excluded.transcript_hash,
  updated_at=excluded.updated_at;)",
        { u"csum:"_s + callId, activeWorkspaceId(db), callId, summary, jsonString(warnings), model, marker, now, now });
}

bool upsertCallProposal(LocalDB& db, const NewCallProposal& proposal)
{
    const qint64 now = db.nowMs();
    return db.run(R"(INSERT INTO crm_update_proposal
  (id, workspace_id, call_id, contact_id, deal_id, kind, title, payload_json, confidence, status, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,?,'pending',?,?)
ON CONFLICT(id) DO UPDATE SET contact_id=excluded.contact_id, title=excluded.title,
  payload_json=excluded.payload_json, confidence=excluded.confidence, updated_at=excluded.updated_at
WHERE crm_update_proposal.status='pending';)",
        { proposal.id, activeWorkspaceId(db), proposal.callId, reference(proposal.contactId), SqlValue(), proposal.kind,
            proposal.title, proposal.payloadJson, proposal.confidence, now, now });
}

QString callContact(LocalDB& db, const QString& callId)
{
    return db
        .scalar(R"(SELECT COALESCE(contact_id,'') FROM call_recording
WHERE workspace_id=? AND id=? LIMIT 1;)",
            { activeWorkspaceId(db), callId })
        .value_or(QString());
}

bool renameCall(LocalDB& db, const QString& id, const QString& title)
{
    return db.run("UPDATE call_recording SET title=?, updated_at=? WHERE id=? AND workspace_id=?;",
        { title, db.nowMs(), id, activeWorkspaceId(db) });
}

bool linkCall(LocalDB& db, const QString& id, const QString& contactId)
{
    const QString workspace = activeWorkspaceId(db);
    const qint64 now = db.nowMs();
    Transaction transaction(db);
    return transaction.begun()
        && db.run("UPDATE call_recording SET contact_id=?, updated_at=? WHERE id=? AND workspace_id=?;",
            { reference(contactId), now, id, workspace })
        && db.run(R"(UPDATE crm_update_proposal
SET contact_id=?, title=CASE WHEN kind='note' AND title LIKE 'Link contact,%' THEN 'Add call note' ELSE title END,
  confidence=MAX(COALESCE(confidence,0), 0.98), error=NULL, updated_at=?
WHERE workspace_id=? AND call_id=? AND status='pending';)",
            { reference(contactId), now, workspace, id })
        && transaction.commit();
}

bool deleteCall(LocalDB& db, const QString& id)
{
    const QString workspace = activeWorkspaceId(db);
    const qint64 now = db.nowMs();
    Transaction transaction(db);
    return transaction.begun()
        && db.run("UPDATE call_recording SET deleted_at=?, updated_at=? WHERE id=? AND workspace_id=?;",
            { now, now, id, workspace })
        && db.run(R"(UPDATE crm_update_proposal SET status='rejected', rejected_at=?, updated_at=?
WHERE workspace_id=? AND call_id=? AND status='pending';)",
            { now, now, workspace, id })
        && transaction.commit();
}

}
