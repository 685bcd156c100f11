-- The shared tables of the ops hub and the developer workspace. Run at every start, so every statement is
-- CREATE ... IF NOT EXISTS. Times are ISO 8601 text. docs/database.md tells what each table means.

CREATE TABLE IF NOT EXISTS project (
  id TEXT PRIMARY KEY,
  slug TEXT NOT NULL UNIQUE,
  name TEXT NOT NULL DEFAULT '',
  goal TEXT,
  status TEXT NOT NULL DEFAULT 'active',
  priority INTEGER,
  control_dir TEXT,
  repo_path TEXT,
  exec_host TEXT,
  created_at TEXT NOT NULL DEFAULT '',
  updated_at TEXT NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS tab (
  id TEXT PRIMARY KEY,
  current_project_id TEXT,
  name TEXT NOT NULL DEFAULT '',
  role TEXT,
  status TEXT NOT NULL DEFAULT '',
  pid INTEGER,
  cwd TEXT,
  model TEXT,
  interval_sec INTEGER,
  heartbeat_at TEXT,
  current_task TEXT,
  created_at TEXT NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS ask (
  id TEXT PRIMARY KEY,
  project_id TEXT,
  tab_id TEXT,
  ts TEXT NOT NULL DEFAULT '',
  question TEXT NOT NULL DEFAULT '',
  urgency TEXT NOT NULL DEFAULT 'normal',
  status TEXT NOT NULL DEFAULT 'open',
  answer TEXT,
  answered_by TEXT,
  answered_at TEXT
);

CREATE TABLE IF NOT EXISTS "update" (
  id TEXT PRIMARY KEY,
  project_id TEXT,
  tab_id TEXT,
  ts TEXT NOT NULL DEFAULT '',
  kind TEXT NOT NULL DEFAULT '',
  body TEXT NOT NULL DEFAULT '',
  created_at TEXT NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS message (
  id TEXT PRIMARY KEY,
  from_tab_id TEXT,
  to_tab_id TEXT,
  project_id TEXT,
  ts TEXT NOT NULL DEFAULT '',
  body TEXT NOT NULL DEFAULT '',
  status TEXT NOT NULL DEFAULT 'pending'
);

CREATE TABLE IF NOT EXISTS dev_srs (
  project_id TEXT PRIMARY KEY,
  overview TEXT NOT NULL DEFAULT '',
  users TEXT NOT NULL DEFAULT '',
  requirements TEXT NOT NULL DEFAULT '',
  modules TEXT NOT NULL DEFAULT '',
  flows TEXT NOT NULL DEFAULT '',
  acceptance TEXT NOT NULL DEFAULT '',
  constraints TEXT NOT NULL DEFAULT '',
  open_questions TEXT NOT NULL DEFAULT '',
  updated_at TEXT NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS dev_browser_session (
  id TEXT PRIMARY KEY,
  project_id TEXT,
  title TEXT NOT NULL DEFAULT '',
  url TEXT NOT NULL DEFAULT '',
  engine TEXT NOT NULL DEFAULT '',
  status TEXT NOT NULL DEFAULT '',
  last_capture_path TEXT,
  last_error TEXT,
  created_at TEXT NOT NULL DEFAULT '',
  updated_at TEXT NOT NULL DEFAULT ''
);

CREATE INDEX IF NOT EXISTS ix_tab_project ON tab(current_project_id);
CREATE INDEX IF NOT EXISTS ix_ask_project ON ask(project_id, status, ts);
CREATE INDEX IF NOT EXISTS ix_update_project ON "update"(project_id, ts);
CREATE INDEX IF NOT EXISTS ix_message_to ON message(to_tab_id, status, ts);
CREATE INDEX IF NOT EXISTS ix_dev_browser_session_project ON dev_browser_session(project_id, updated_at);
