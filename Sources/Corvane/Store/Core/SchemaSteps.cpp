#include "Store/Core/SchemaSteps.h"

namespace corvane::schema {

const char* const aiRequestsTable = R"(CREATE TABLE IF NOT EXISTS ai_requests (
  id TEXT PRIMARY KEY, instructions TEXT NOT NULL DEFAULT '', prompt TEXT NOT NULL,
  status TEXT NOT NULL DEFAULT 'pending' CHECK(status IN ('pending','processing','done','error')),
  response TEXT, error TEXT, created_at INTEGER NOT NULL, claimed_at INTEGER, claimed_by TEXT,
  completed_at INTEGER);)";

const QList<Step>& steps()
{
    // clang-format off
    static const QList<Step> all = {
        // Descending by time; replaced by `ix_unified_message_thread`.
        Statement { "DROP INDEX IF EXISTS ix_unified_message_conversation;" },
        AddedColumn { "project", "category TEXT NOT NULL DEFAULT ''" },
        AddedColumn { "unified_message", "media_type TEXT" },
        AddedColumn { "unified_message", "media_path TEXT" },
        AddedColumn { "contact", "avatar_path TEXT" },
        AddedColumn { "unified_message", "status INTEGER" },
        AddedColumn { "unified_conversation", "archived_at INTEGER" },
        AddedColumn { "unified_conversation", "muted INTEGER NOT NULL DEFAULT 0" },
        AddedColumn { "unified_message", "reaction TEXT" },
        AddedColumn { "unified_message", "reactions TEXT" },
        AddedColumn { "unified_message", "source TEXT" },
        AddedColumn { "deal", "title TEXT" },
        AddedColumn { "crm_deal", "contact_id TEXT" },
        AddedColumn { "crm_task", "contact_id TEXT" },
        // The list of people walks conversations newest first, then reaches their people and conversations without
        // touching either table. The last one is for every ingested message: whether the workspace is empty, and how
        // many messages are unread.
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_contact_workspace
  ON contact(workspace_id, deleted_at, id, display_name, avatar_path);)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_unified_conversation_newest
  ON unified_conversation(last_ts DESC, contact_id) WHERE deleted_at IS NULL AND archived_at IS NULL;)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_unified_conversation_archived
  ON unified_conversation(last_ts DESC, contact_id) WHERE deleted_at IS NULL AND archived_at IS NOT NULL;)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_unified_conversation_contact
  ON unified_conversation(contact_id, deleted_at, archived_at, last_ts, unread, muted, channel, account_id,
    external_id, id);)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_unified_conversation_unread
  ON unified_conversation(workspace_id, deleted_at, archived_at, unread);)" },
        Statement { "CREATE INDEX IF NOT EXISTS idx_crm_deal_contact ON crm_deal(contact_id, updated_at);" },
        Statement { "CREATE INDEX IF NOT EXISTS idx_crm_task_contact_status ON crm_task(contact_id, status, updated_at);" },
        AddedColumn { "contact_identity", "email TEXT" },
        AddedColumn { "contact_identity", "phone TEXT" },
        Statement { R"(CREATE TABLE IF NOT EXISTS contact_merge (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL, primary_contact_id TEXT NOT NULL,
  merged_contact_id TEXT NOT NULL, signal TEXT, conv_ids_json TEXT NOT NULL,
  created_at INTEGER NOT NULL, undone_at INTEGER);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS calendar_event (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL, title TEXT NOT NULL,
  start_ms INTEGER NOT NULL, end_ms INTEGER NOT NULL, all_day INTEGER NOT NULL DEFAULT 0,
  calendar TEXT, location TEXT, attendees INTEGER NOT NULL DEFAULT 0,
  attendees_json TEXT NOT NULL DEFAULT '[]', notes TEXT, updated_at INTEGER NOT NULL);)" },
        AddedColumn { "calendar_event", "attendees_json TEXT NOT NULL DEFAULT '[]'" },
        Statement { "CREATE INDEX IF NOT EXISTS ix_calevent_start ON calendar_event(start_ms);" },
        Statement { R"(CREATE TABLE IF NOT EXISTS meeting_prep_cache (
  event_id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', title TEXT NOT NULL,
  raw_brief TEXT NOT NULL, ai_summary TEXT NOT NULL, model TEXT NOT NULL, generated_at INTEGER NOT NULL);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS cloud_sync_cursor (
  conversation_id TEXT PRIMARY KEY, cloud_chat_id TEXT, last_synced_ms INTEGER NOT NULL DEFAULT 0,
  last_message_id TEXT, synced_at INTEGER);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS sync_health (
  source TEXT PRIMARY KEY, status TEXT NOT NULL, last_started_at INTEGER, last_finished_at INTEGER,
  cursor INTEGER NOT NULL DEFAULT 0, counts_json TEXT NOT NULL DEFAULT '{}', last_error TEXT,
  updated_at INTEGER NOT NULL);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS engine_info (
  id TEXT PRIMARY KEY DEFAULT 'engine', version TEXT NOT NULL, git_sha TEXT,
  started_at INTEGER NOT NULL, updated_at INTEGER NOT NULL);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS sync_command (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', kind TEXT NOT NULL DEFAULT 'web_pull',
  status TEXT NOT NULL DEFAULT 'pending', source TEXT NOT NULL DEFAULT 'ui', requested_at INTEGER NOT NULL,
  started_at INTEGER, finished_at INTEGER, error TEXT);)" },
        Statement { "CREATE INDEX IF NOT EXISTS idx_sync_command_status ON sync_command(status, requested_at);" },
        Statement { R"(CREATE TABLE IF NOT EXISTS engine_settings (
  key TEXT PRIMARY KEY, value TEXT NOT NULL DEFAULT '', updated_at TEXT NOT NULL);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS outbound_draft (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', conversation_id TEXT NOT NULL,
  channel TEXT NOT NULL, account_id TEXT NOT NULL, external_id TEXT NOT NULL, title TEXT,
  body TEXT NOT NULL, status TEXT NOT NULL DEFAULT 'pending', source TEXT DEFAULT 'mcp',
  created_at INTEGER NOT NULL, updated_at INTEGER NOT NULL);)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS idx_outbound_draft_status
  ON outbound_draft(workspace_id, status, created_at);)" },
        Statement { aiRequestsTable },
        Migration { migrateAIRequestsSchemaIfNeeded },
        Statement { "CREATE INDEX IF NOT EXISTS idx_ai_requests_status_created ON ai_requests(status, created_at);" },
        AddedColumn { "outbound_draft", "web_message_id TEXT" },
        AddedColumn { "outbound_draft", "web_ack_status TEXT" },
        AddedColumn { "outbound_draft", "web_ack_at INTEGER" },
        AddedColumn { "outbound_draft", "web_ack_error TEXT" },
        AddedColumn { "outbound_draft", "provider_msg_id TEXT" },
        AddedColumn { "outbound_draft", "error TEXT" },
        Statement { R"(CREATE TABLE IF NOT EXISTS sync_workspace (
  workspace_id TEXT PRIMARY KEY, workspace_name TEXT NOT NULL, workspace_slug TEXT,
  org_id TEXT NOT NULL, org_name TEXT NOT NULL, org_slug TEXT,
  is_default INTEGER NOT NULL DEFAULT 0, updated_at INTEGER NOT NULL);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS sync_workspace_selection (
  key TEXT PRIMARY KEY, workspace_id TEXT NOT NULL, org_id TEXT, updated_at INTEGER NOT NULL);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS draft_metadata (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', contact_id TEXT, conversation_id TEXT,
  intent TEXT NOT NULL, model TEXT, prompt_ref TEXT, result_ref TEXT, used_message_ids TEXT, warnings TEXT,
  created_at INTEGER NOT NULL);)" },
        AddedColumn { "draft_metadata", "contact_id TEXT" },
        AddedColumn { "draft_metadata", "conversation_id TEXT" },
        AddedColumn { "draft_metadata", "intent TEXT NOT NULL DEFAULT 'draft'" },
        AddedColumn { "draft_metadata", "model TEXT" },
        AddedColumn { "draft_metadata", "prompt_ref TEXT" },
        AddedColumn { "draft_metadata", "result_ref TEXT" },
        AddedColumn { "draft_metadata", "used_message_ids TEXT" },
        AddedColumn { "draft_metadata", "warnings TEXT" },
        AddedColumn { "draft_metadata", "created_at INTEGER NOT NULL DEFAULT 0" },
        Statement { "CREATE INDEX IF NOT EXISTS idx_draft_metadata_contact ON draft_metadata(contact_id, created_at);" },
        Statement { R"(CREATE TABLE IF NOT EXISTS audio_transcript (
  message_id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', audio_path TEXT,
  transcript TEXT NOT NULL, model TEXT, created_at INTEGER NOT NULL, updated_at INTEGER NOT NULL);)" },
        AddedColumn { "audio_transcript", "workspace_id TEXT NOT NULL DEFAULT 'local'" },
        AddedColumn { "audio_transcript", "audio_path TEXT" },
        AddedColumn { "audio_transcript", "transcript TEXT NOT NULL DEFAULT ''" },
        AddedColumn { "audio_transcript", "model TEXT" },
        AddedColumn { "audio_transcript", "created_at INTEGER NOT NULL DEFAULT 0" },
        AddedColumn { "audio_transcript", "updated_at INTEGER NOT NULL DEFAULT 0" },
        Statement { "CREATE INDEX IF NOT EXISTS idx_audio_transcript_updated ON audio_transcript(updated_at);" },
        Statement { R"(CREATE TABLE IF NOT EXISTS call_recording (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', calendar_event_id TEXT,
  contact_id TEXT, conversation_id TEXT, title TEXT, source_app TEXT, source_bundle_id TEXT,
  capture_backend TEXT NOT NULL DEFAULT 'avaudiorecorder', capture_mode TEXT NOT NULL DEFAULT 'mic_only',
  started_at INTEGER NOT NULL, ended_at INTEGER, duration_ms INTEGER,
  audio_path TEXT, mic_audio_path TEXT, system_audio_path TEXT, mixed_audio_path TEXT,
  consent_required INTEGER NOT NULL DEFAULT 1, consent_granted INTEGER NOT NULL DEFAULT 0, consent_note TEXT,
  disclosure_mode TEXT, processing_status TEXT NOT NULL DEFAULT 'queued', processing_error TEXT,
  created_at INTEGER NOT NULL, updated_at INTEGER NOT NULL, deleted_at INTEGER,
  FOREIGN KEY(contact_id) REFERENCES contact(id),
  FOREIGN KEY(conversation_id) REFERENCES unified_conversation(id));)" },
        AddedColumn { "call_recording", "calendar_event_id TEXT" },
        Statement { R"(CREATE INDEX IF NOT EXISTS idx_call_calendar_event
  ON call_recording(workspace_id, calendar_event_id);)" },
        Statement { "CREATE INDEX IF NOT EXISTS idx_call_contact_started ON call_recording(contact_id, started_at DESC);" },
        Statement { R"(CREATE INDEX IF NOT EXISTS idx_call_conversation_started
  ON call_recording(conversation_id, started_at DESC);)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS idx_call_status
  ON call_recording(workspace_id, processing_status, updated_at);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS call_recording_rule (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local',
  scope TEXT NOT NULL DEFAULT 'calendar_meetings', enabled INTEGER NOT NULL DEFAULT 0,
  start_lead_seconds INTEGER NOT NULL DEFAULT 60, stop_grace_seconds INTEGER NOT NULL DEFAULT 120,
  require_meeting_app INTEGER NOT NULL DEFAULT 0, consent_required INTEGER NOT NULL DEFAULT 1,
  disclosure_mode TEXT NOT NULL DEFAULT 'manual', created_at INTEGER NOT NULL, updated_at INTEGER NOT NULL);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS call_auto_record_state (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', calendar_event_id TEXT NOT NULL,
  title TEXT NOT NULL, status TEXT NOT NULL, call_id TEXT, source_app TEXT, reason TEXT,
  started_at INTEGER, stopped_at INTEGER, updated_at INTEGER NOT NULL);)" },
        Statement { R"(CREATE UNIQUE INDEX IF NOT EXISTS ux_call_auto_state_event
  ON call_auto_record_state(workspace_id, calendar_event_id);)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS idx_call_auto_state_status
  ON call_auto_record_state(workspace_id, status, updated_at);)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS call_transcript (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', call_id TEXT NOT NULL,
  segment_index INTEGER NOT NULL, speaker_label TEXT, speaker_kind TEXT NOT NULL DEFAULT 'unknown',
  track TEXT NOT NULL DEFAULT 'mixed', start_ms INTEGER, end_ms INTEGER, text TEXT NOT NULL,
  confidence REAL, model TEXT, created_at INTEGER NOT NULL, updated_at INTEGER NOT NULL,
  FOREIGN KEY(call_id) REFERENCES call_recording(id));)" },
        Statement { R"(CREATE UNIQUE INDEX IF NOT EXISTS ux_call_transcript_segment
  ON call_transcript(call_id, segment_index);)" },
        Statement { "CREATE INDEX IF NOT EXISTS idx_call_transcript_call_time ON call_transcript(call_id, start_ms);" },
        Statement { "CREATE INDEX IF NOT EXISTS idx_call_transcript_text ON call_transcript(text);" },
        Statement { R"(CREATE TABLE IF NOT EXISTS call_summary (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', call_id TEXT NOT NULL,
  summary TEXT NOT NULL, key_points_json TEXT NOT NULL DEFAULT '[]',
  decisions_json TEXT NOT NULL DEFAULT '[]', action_items_json TEXT NOT NULL DEFAULT '[]',
  followups_json TEXT NOT NULL DEFAULT '[]', who_said_what_json TEXT NOT NULL DEFAULT '[]',
  warnings_json TEXT NOT NULL DEFAULT '[]', model TEXT, prompt_ref TEXT, transcript_hash TEXT,
  created_at INTEGER NOT NULL, updated_at INTEGER NOT NULL,
  FOREIGN KEY(call_id) REFERENCES call_recording(id));)" },
        Statement { "CREATE UNIQUE INDEX IF NOT EXISTS ux_call_summary_call ON call_summary(call_id);" },
        Statement { R"(CREATE TABLE IF NOT EXISTS crm_update_proposal (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local', call_id TEXT, contact_id TEXT,
  deal_id TEXT, kind TEXT NOT NULL, title TEXT NOT NULL, payload_json TEXT NOT NULL, confidence REAL,
  status TEXT NOT NULL DEFAULT 'pending', created_at INTEGER NOT NULL, updated_at INTEGER NOT NULL,
  applied_at INTEGER, rejected_at INTEGER, error TEXT,
  FOREIGN KEY(call_id) REFERENCES call_recording(id),
  FOREIGN KEY(contact_id) REFERENCES contact(id),
  FOREIGN KEY(deal_id) REFERENCES deal(id));)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_crm_update_proposal_status
  ON crm_update_proposal(workspace_id, status, created_at);)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_crm_update_proposal_newest
  ON crm_update_proposal(workspace_id, created_at DESC, status);)" },
        Statement { "CREATE INDEX IF NOT EXISTS ix_crm_update_proposal_call ON crm_update_proposal(call_id, status);" },
        Statement { R"(CREATE TABLE IF NOT EXISTS crm_mutation_queue (
  id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL, entity_type TEXT NOT NULL, entity_id TEXT NOT NULL,
  action TEXT NOT NULL, origin TEXT NOT NULL, payload_json TEXT NOT NULL, idempotency_key TEXT NOT NULL,
  status TEXT NOT NULL DEFAULT 'pending', attempts INTEGER NOT NULL DEFAULT 0, error TEXT,
  created_at INTEGER NOT NULL, updated_at INTEGER NOT NULL);)" },
        Statement { R"(CREATE UNIQUE INDEX IF NOT EXISTS ux_crm_mutation_pending_key
ON crm_mutation_queue(idempotency_key) WHERE status='pending';)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS idx_crm_mutation_status
  ON crm_mutation_queue(workspace_id, status, created_at);)" },
        // Finds people who share an address or a number without comparing all pairs; and every opened thread looks up a
        // live merge of its contact.
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_contact_identity_email
  ON contact_identity(email, contact_id, deleted_at, workspace_id) WHERE email IS NOT NULL;)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_contact_identity_phone
  ON contact_identity(phone, contact_id, deleted_at, workspace_id) WHERE phone IS NOT NULL;)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_contact_merge_merged
  ON contact_merge(merged_contact_id) WHERE undone_at IS NULL;)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_contact_merge_primary
  ON contact_merge(primary_contact_id, created_at) WHERE undone_at IS NULL;)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS draft_approval (
  draft_id TEXT PRIMARY KEY, content_hash TEXT NOT NULL, approved_at INTEGER NOT NULL);)" },
        // The decision log is append-only. REPLACE deletes without firing the delete trigger, so the insert trigger
        // checks the position of a new entry, too.
        Statement { R"(CREATE TABLE IF NOT EXISTS approval_record (
  seq INTEGER PRIMARY KEY, at INTEGER NOT NULL, kind TEXT NOT NULL, subject_id TEXT NOT NULL,
  action TEXT NOT NULL, content_hash TEXT NOT NULL, previous_hash TEXT NOT NULL, hash TEXT NOT NULL);)" },
        Statement { R"(CREATE TRIGGER IF NOT EXISTS approval_record_continues BEFORE INSERT ON approval_record
WHEN NEW.seq <> COALESCE((SELECT MAX(seq) FROM approval_record), 0) + 1
  OR NEW.previous_hash <> COALESCE((SELECT hash FROM approval_record ORDER BY seq DESC LIMIT 1), '')
BEGIN SELECT RAISE(ABORT, 'a new line stands behind the last one'); END;)" },
        Statement { R"(CREATE TRIGGER IF NOT EXISTS approval_record_keeps BEFORE UPDATE ON approval_record
BEGIN SELECT RAISE(ABORT, 'the record of decisions only grows'); END;)" },
        Statement { R"(CREATE TRIGGER IF NOT EXISTS approval_record_holds BEFORE DELETE ON approval_record
BEGIN SELECT RAISE(ABORT, 'the record of decisions only grows'); END;)" },
        AddedColumn { "unified_message", "subject TEXT" },
        AddedColumn { "outbound_draft", "subject TEXT" },
        AddedColumn { "outbound_draft", "files TEXT" },
        Statement { R"(CREATE TABLE IF NOT EXISTS account_features (
  account_id TEXT PRIMARY KEY, files INTEGER NOT NULL, max_bytes INTEGER, subject INTEGER NOT NULL,
  updated_at INTEGER NOT NULL);)" },
        // What a push passed over, and what never leaves this machine.
        Statement { R"(CREATE TABLE IF NOT EXISTS cloud_left_out (
  conversation_id TEXT NOT NULL, from_ms INTEGER NOT NULL, from_id TEXT NOT NULL, to_ms INTEGER NOT NULL,
  PRIMARY KEY(conversation_id, from_ms, from_id));)" },
        Statement { R"(CREATE TABLE IF NOT EXISTS cloud_keep_local (
  conversation_id TEXT NOT NULL DEFAULT '', account_id TEXT NOT NULL DEFAULT '', kept_at INTEGER NOT NULL,
  PRIMARY KEY(conversation_id, account_id));)" },
        // A context of the work console is one among hundreds.
        Statement { "CREATE INDEX IF NOT EXISTS ix_work_item_context ON work_item(module, context_id, status);" },
        Statement { "CREATE INDEX IF NOT EXISTS ix_work_item_counts ON work_item(context_id, status);" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_work_message_context
  ON work_message(module, context_id, created_at);)" },
        Statement { R"(CREATE INDEX IF NOT EXISTS ix_work_evidence_context
  ON work_evidence(module, context_id, created_at);)" },
        Statement { "CREATE INDEX IF NOT EXISTS ix_work_evidence_item ON work_evidence(item_id);" },
        Statement { "CREATE INDEX IF NOT EXISTS ix_work_decision_context ON work_decision(module, context_id);" },
    };
    // clang-format on
    return all;
}

}
