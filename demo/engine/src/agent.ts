// An agent of the demonstration: another process that leaves work for a person in the database and acts on nothing.

import { randomUUID } from "node:crypto";
import { readdirSync, statSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { DatabaseSync } from "node:sqlite";
import { parseArgs } from "node:util";

function fail(message: string): never {
  console.error(message);
  process.exit(1);
}

/** The database of the demonstration that was started last. */
function newestDemonstration(): string {
  const found = readdirSync(tmpdir())
    .filter((name) => name.startsWith("corvane-demo."))
    .map((name) => join(tmpdir(), name, "share", "Corvane", "nimblocal.db"))
    .map((path) => ({ path, made: statSync(path, { throwIfNoEntry: false })?.birthtimeMs }))
    .filter(({ made }) => made !== undefined)
    .sort((a, b) => b.made! - a.made!);
  return found[0]?.path ?? fail("No demonstration runs: start ./run --demo first.");
}

function activeWorkspace(db: DatabaseSync): string {
  const row = db.prepare("SELECT workspace_id FROM sync_workspace_selection WHERE key='active'").get();
  return row ? String(row.workspace_id) : "local";
}

/** The customer who asks whether his plates stack; where he has not written, whoever wrote last. */
function somebody(db: DatabaseSync, workspace: string) {
  return (
    db
      .prepare(
        `SELECT c.id, c.channel, c.account_id, c.external_id, c.contact_id,
           COALESCE(NULLIF(ct.display_name,''), c.title, c.external_id) AS name
         FROM unified_conversation c LEFT JOIN contact ct ON ct.id=c.contact_id
         WHERE c.workspace_id=? AND c.deleted_at IS NULL AND c.external_id NOT LIKE '%@g.us'
         ORDER BY (c.external_id='447700900112@s.whatsapp.net') DESC, c.last_ts DESC LIMIT 1`,
      )
      .get(workspace) ?? fail("No conversation yet: the engines of the demonstration need a moment.")
  );
}

const actions = {
  draft(db: DatabaseSync, text = "They do: twelve side plates stand 31 cm high, so 40 is plenty. I'll pack them that way.") {
    const workspace = activeWorkspace(db);
    const to = somebody(db, workspace);
    const now = Date.now();
    const id = `od:${now}:${1000 + Math.floor(Math.random() * 9000)}`;
    db.prepare(
      `INSERT INTO outbound_draft(id, workspace_id, conversation_id, channel, account_id, external_id, title, body,
         status, source, created_at, updated_at) VALUES(?,?,?,?,?,?,?,?,'pending','mcp',?,?)`,
    ).run(id, workspace, to.id, to.channel, to.account_id, to.external_id, to.name, text, now, now);
    return `${id}, a message to ${to.name}`;
  },

  proposal(db: DatabaseSync, text = "The side plates must stack: 40 cm between the shelves of the second place.") {
    const workspace = activeWorkspace(db);
    const about = somebody(db, workspace);
    const now = Date.now();
    const id = `prop:${randomUUID()}`;
    db.prepare(
      `INSERT INTO crm_update_proposal(id, workspace_id, contact_id, kind, title, payload_json, confidence, status,
         created_at, updated_at) VALUES(?,?,?,'note',?,?,0.9,'pending',?,?)`,
    ).run(id, workspace, about.contact_id, `Add a note on ${about.name}`, JSON.stringify({ body: text }), now, now);
    return `${id}, a note on ${about.name}`;
  },

  decision(db: DatabaseSync, text = "Pay the invoice of 340 euros for the clay of Okafor's plates.") {
    db.exec(`CREATE TABLE IF NOT EXISTS work_decision(id TEXT PRIMARY KEY, context_id TEXT, module TEXT, title TEXT,
      status TEXT, proposal TEXT, rationale TEXT, risk TEXT, decided_by TEXT, created_at TEXT, updated_at TEXT)`);
    const now = new Date().toISOString().replace(/\.\d+Z$/, "Z");
    const id = `dec:demo:${randomUUID()}`;
    db.prepare(
      `INSERT INTO work_decision(id, context_id, module, title, status, proposal, rationale, risk, decided_by,
         created_at, updated_at) VALUES(?,NULL,'ops','Review a payment','proposed',?,?,'money','',?,?)`,
    ).run(id, text, "It is due on Friday, and paying moves money.", now, now);
    return `${id}, an action that moves money`;
  },
};

const { values, positionals } = parseArgs({ options: { database: { type: "string" } }, allowPositionals: true });
const [kind = "", text] = positionals;
if (!Object.hasOwn(actions, kind) || positionals.length > 2)
  fail(`Usage: demo/agent ${Object.keys(actions).join("|")} [TEXT] [--database FILE]`);
const path = values.database ?? newestDemonstration();
if (!statSync(path, { throwIfNoEntry: false })?.isFile()) fail(`There is no database at ${path}.`);
const db = new DatabaseSync(path);
db.exec("PRAGMA busy_timeout=5000; PRAGMA foreign_keys=ON;");
console.log(`Waits for you: ${actions[kind as keyof typeof actions](db, text)}`);
db.close();
