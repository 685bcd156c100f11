-- The shared tables of the inbox, the CRM and the work console. Run at every start by the desktop process and
-- by whoever else opens the file first, so every statement is CREATE ... IF NOT EXISTS. Columns that came
-- later are added by the desktop process, and with them the indexes that hold such a column.
-- Times are integer milliseconds since the epoch, but for the work_* tables: ISO 8601 text.
-- docs/database.md tells what each table means and who writes it.

CREATE TABLE IF NOT EXISTS unified_conversation (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  channel TEXT NOT NULL DEFAULT '',
  account_id TEXT NOT NULL DEFAULT '',
  external_id TEXT NOT NULL DEFAULT '',
  title TEXT,
  contact_id TEXT,
  last_ts INTEGER NOT NULL DEFAULT 0,
  unread INTEGER NOT NULL DEFAULT 0,
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS unified_message (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  conversation_id TEXT NOT NULL,
  direction TEXT NOT NULL DEFAULT 'IN',
  body TEXT,
  sender TEXT,
  ts INTEGER NOT NULL DEFAULT 0,
  provider_msg_id TEXT,
  attachments TEXT,
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS contact (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  display_name TEXT,
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS contact_identity (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  contact_id TEXT NOT NULL,
  channel TEXT NOT NULL DEFAULT '',
  handle TEXT NOT NULL DEFAULT '',
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS contact_note (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  contact_id TEXT NOT NULL,
  body TEXT NOT NULL DEFAULT '',
  ts INTEGER NOT NULL DEFAULT 0,
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS contact_tag (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  contact_id TEXT NOT NULL,
  tag TEXT NOT NULL,
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS pipeline (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  name TEXT NOT NULL DEFAULT '',
  stages_json TEXT NOT NULL DEFAULT '[]',
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS company (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  name TEXT NOT NULL DEFAULT '',
  domain TEXT,
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS deal (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  contact_id TEXT,
  company_id TEXT,
  pipeline_id TEXT,
  stage TEXT,
  value TEXT,
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS crm_deal (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  name TEXT NOT NULL DEFAULT '',
  company TEXT,
  stage TEXT,
  value TEXT,
  close_date TEXT,
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS crm_task (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  title TEXT NOT NULL DEFAULT '',
  due TEXT,
  priority TEXT,
  status TEXT NOT NULL DEFAULT 'To do',
  updated_at INTEGER NOT NULL DEFAULT 0,
  deleted_at INTEGER
);

CREATE TABLE IF NOT EXISTS calendar_command (
  id TEXT PRIMARY KEY,
  workspace_id TEXT NOT NULL DEFAULT 'local',
  title TEXT NOT NULL DEFAULT '',
  start_ms INTEGER NOT NULL DEFAULT 0,
  end_ms INTEGER NOT NULL DEFAULT 0,
  notes TEXT,
  location TEXT,
  calendar TEXT,
  status TEXT NOT NULL DEFAULT 'pending',
  event_id TEXT,
  error TEXT,
  created_at INTEGER NOT NULL DEFAULT 0,
  updated_at INTEGER NOT NULL DEFAULT 0
);

CREATE TABLE IF NOT EXISTS _sync_state (
  table_name TEXT PRIMARY KEY,
  last_pulled INTEGER,
  last_pushed INTEGER
);

CREATE TABLE IF NOT EXISTS work_context (
  id TEXT PRIMARY KEY,
  module TEXT NOT NULL,
  kind TEXT NOT NULL DEFAULT '',
  slug TEXT NOT NULL,
  title TEXT NOT NULL DEFAULT '',
  subtitle TEXT,
  status TEXT NOT NULL DEFAULT '',
  owner TEXT,
  external_ref TEXT,
  metadata_json TEXT NOT NULL DEFAULT '{}',
  created_at TEXT NOT NULL DEFAULT '',
  updated_at TEXT NOT NULL DEFAULT '',
  UNIQUE (module, slug)
);

CREATE TABLE IF NOT EXISTS work_item (
  id TEXT PRIMARY KEY,
  context_id TEXT,
  module TEXT NOT NULL DEFAULT '',
  kind TEXT NOT NULL DEFAULT '',
  title TEXT NOT NULL DEFAULT '',
  status TEXT NOT NULL DEFAULT '',
  priority TEXT NOT NULL DEFAULT 'normal',
  owner TEXT,
  session_id TEXT,
  source TEXT,
  summary TEXT,
  due_at TEXT,
  metadata_json TEXT NOT NULL DEFAULT '{}',
  created_at TEXT NOT NULL DEFAULT '',
  updated_at TEXT NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS work_session (
  id TEXT PRIMARY KEY,
  context_id TEXT,
  module TEXT NOT NULL DEFAULT '',
  purpose TEXT,
  owner TEXT,
  tool TEXT,
  status TEXT NOT NULL DEFAULT '',
  pid INTEGER,
  cwd TEXT,
  endpoint TEXT,
  current_item_id TEXT,
  heartbeat_at TEXT,
  metadata_json TEXT NOT NULL DEFAULT '{}',
  created_at TEXT NOT NULL DEFAULT '',
  updated_at TEXT NOT NULL DEFAULT ''
);

-- The context is part of the key, so it is the empty text, not NULL, where there is none.
CREATE TABLE IF NOT EXISTS work_agent (
  id TEXT PRIMARY KEY,
  context_id TEXT DEFAULT '',
  module TEXT NOT NULL DEFAULT '',
  name TEXT NOT NULL DEFAULT '',
  tool TEXT NOT NULL DEFAULT '',
  role TEXT,
  status TEXT NOT NULL DEFAULT '',
  current_task TEXT,
  session_id TEXT,
  heartbeat_at TEXT,
  created_at TEXT NOT NULL DEFAULT '',
  updated_at TEXT NOT NULL DEFAULT '',
  UNIQUE (module, context_id, name, tool)
);

CREATE TABLE IF NOT EXISTS work_evidence (
  id TEXT PRIMARY KEY,
  context_id TEXT,
  module TEXT NOT NULL DEFAULT '',
  item_id TEXT,
  session_id TEXT,
  kind TEXT NOT NULL DEFAULT '',
  title TEXT NOT NULL DEFAULT '',
  source TEXT,
  uri TEXT,
  summary TEXT,
  metadata_json TEXT NOT NULL DEFAULT '{}',
  created_at TEXT NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS work_decision (
  id TEXT PRIMARY KEY,
  context_id TEXT,
  module TEXT NOT NULL DEFAULT '',
  title TEXT NOT NULL DEFAULT '',
  status TEXT NOT NULL DEFAULT 'proposed',
  proposal TEXT,
  rationale TEXT,
  risk TEXT,
  decided_by TEXT,
  created_at TEXT NOT NULL DEFAULT '',
  updated_at TEXT NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS work_memory (
  id TEXT PRIMARY KEY,
  context_id TEXT,
  module TEXT NOT NULL DEFAULT '',
  kind TEXT NOT NULL DEFAULT '',
  body TEXT NOT NULL DEFAULT '',
  source TEXT,
  confidence NUMERIC,
  status TEXT NOT NULL DEFAULT 'proposed',
  owner TEXT,
  verified_at TEXT,
  created_at TEXT NOT NULL DEFAULT '',
  updated_at TEXT NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS work_message (
  id TEXT PRIMARY KEY,
  context_id TEXT,
  module TEXT NOT NULL DEFAULT '',
  session_id TEXT,
  agent_id TEXT,
  speaker TEXT NOT NULL DEFAULT '',
  role TEXT,
  kind TEXT NOT NULL DEFAULT '',
  body TEXT NOT NULL DEFAULT '',
  status TEXT NOT NULL DEFAULT '',
  metadata_json TEXT NOT NULL DEFAULT '{}',
  created_at TEXT NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS work_memory_entries (
  id TEXT PRIMARY KEY,
  scope TEXT NOT NULL,
  body TEXT NOT NULL DEFAULT '',
  created_at TEXT NOT NULL DEFAULT ''
);

-- A conversation's messages in the order of time, deleted ones apart. Ascending, so that those of the same
-- millisecond stand in the order in which they were stored, whichever way the index is walked.
CREATE INDEX IF NOT EXISTS ix_unified_message_thread ON unified_message(conversation_id, deleted_at, ts);
-- A search walks from the newest message down and stops when it has enough.
CREATE INDEX IF NOT EXISTS ix_unified_message_time ON unified_message(ts) WHERE deleted_at IS NULL;
CREATE INDEX IF NOT EXISTS ix_unified_message_provider ON unified_message(provider_msg_id);
-- Finds what still has to move when a workspace takes over the rows of "local"; empty afterwards.
CREATE INDEX IF NOT EXISTS ix_unified_message_local ON unified_message(workspace_id) WHERE workspace_id='local';
-- The newest message of a channel.
CREATE INDEX IF NOT EXISTS ix_unified_conversation_channel
  ON unified_conversation(workspace_id, channel, last_ts) WHERE deleted_at IS NULL;
-- Nearly always empty: the status pseudo-conversation is looked for at every start.
CREATE INDEX IF NOT EXISTS ix_unified_conversation_status
  ON unified_conversation(external_id) WHERE external_id='status@broadcast' AND deleted_at IS NULL;
CREATE INDEX IF NOT EXISTS ix_contact_identity_contact ON contact_identity(contact_id);
CREATE INDEX IF NOT EXISTS ix_contact_note_contact ON contact_note(contact_id, ts);
CREATE INDEX IF NOT EXISTS ix_contact_tag_contact ON contact_tag(contact_id);
CREATE INDEX IF NOT EXISTS ix_calendar_command_status ON calendar_command(status, created_at);
CREATE INDEX IF NOT EXISTS ix_work_item_context ON work_item(module, context_id, updated_at);
CREATE INDEX IF NOT EXISTS ix_work_session_context ON work_session(module, context_id);
CREATE INDEX IF NOT EXISTS ix_work_evidence_context ON work_evidence(module, context_id, created_at);
CREATE INDEX IF NOT EXISTS ix_work_decision_context ON work_decision(module, context_id, updated_at);
CREATE INDEX IF NOT EXISTS ix_work_memory_context ON work_memory(module, context_id, updated_at);
CREATE INDEX IF NOT EXISTS ix_work_message_context ON work_message(module, context_id, created_at);
CREATE INDEX IF NOT EXISTS ix_work_memory_entries_scope ON work_memory_entries(scope, created_at);
-- What waits for a person, in the order of its risk: asked for every few seconds.
CREATE INDEX IF NOT EXISTS ix_work_decision_waiting ON work_decision(
  CASE risk WHEN 'money' THEN 0 WHEN 'credential' THEN 1 WHEN 'external' THEN 2 WHEN 'high' THEN 3 ELSE 4 END,
  updated_at DESC) WHERE status='proposed';
