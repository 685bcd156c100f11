// A demo agent: another process that leaves work for the user in the database and does nothing else.

import { randomUUID } from "node:crypto";
import { readdirSync, statSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { DatabaseSync } from "node:sqlite";
import { parseArgs } from "node:util";
import { stamp } from "./work.ts";

function fail(message: string): never {
  console.error(message);
  process.exit(1);
}

/** The database of the demo that was started last. */
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

/** The customer who asks whether his plates stack; if he has not written, the last person who wrote. */
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

/** Two agents at work: a row every few seconds, as described in docs/work-records.md. */
async function playDay(db: DatabaseSync, pause: number): Promise<string> {
  const tag = randomUUID().slice(0, 8);
  const context = "ctx:ops:november-invoices";
  const own = { context_id: context, module: "ops" };
  const write = (table: string, row: Record<string, string>): void => {
    db.prepare(`INSERT INTO ${table}(${Object.keys(row)}) VALUES(${Object.keys(row).map(() => "?")})`).run(...Object.values(row));
    db.prepare("UPDATE work_context SET updated_at=? WHERE id=?").run(stamp(Date.now()), context);
  };
  const at = (): { created_at: string; updated_at: string } => ({ created_at: stamp(Date.now()), updated_at: stamp(Date.now()) });
  const begin = (name: string, tool: string, task: string): void => {
    const alive = { status: "running", heartbeat_at: stamp(Date.now()), ...at() };
    write("work_session", { id: `sess:day:${tag}:${name}`, ...own, purpose: task, owner: name, tool, ...alive });
    write("work_agent", { id: `agent:day:${tag}:${name}`, ...own, name, tool, role: "worker", current_task: task, session_id: `sess:day:${tag}:${name}`, ...alive });
  };
  const beat = (name: string, task: string, status = "running"): void => {
    db.prepare("UPDATE work_agent SET heartbeat_at=?, updated_at=?, current_task=?, status=? WHERE id=?")
      .run(stamp(Date.now()), stamp(Date.now()), task, status, `agent:day:${tag}:${name}`);
    db.prepare("UPDATE work_session SET heartbeat_at=?, updated_at=?, status=? WHERE id=?")
      .run(stamp(Date.now()), stamp(Date.now()), status, `sess:day:${tag}:${name}`);
  };
  const say = (speaker: string, body: string): void =>
    write("work_message", { id: `msg:day:${randomUUID()}`, ...own, speaker, role: "agent", kind: "message", body, status: "posted", created_at: stamp(Date.now()) });
  const move = (status: string): void => {
    db.prepare("UPDATE work_item SET status=?, updated_at=? WHERE id=?").run(status, stamp(Date.now()), `item:day:${tag}`);
  };
  const clerk = `Clerk ${tag.slice(0, 2)}`;
  const reader = `Reader ${tag.slice(0, 2)}`;
  const steps: (() => void)[] = [
    () => begin(clerk, "codex", "Files the invoices of the week"),
    () => write("work_item", { id: `item:day:${tag}`, ...own, kind: "finance", title: "Check invoice 2231 of the carrier", status: "open", priority: "normal", owner: clerk, source: "demo", summary: "Three parcels to London.", ...at() }),
    () => begin(reader, "claude", "Reads the mails of the carrier"),
    () => move("in_progress"),
    () => say(reader, "The carrier counted four parcels. Our list says three."),
    () => write("work_evidence", { id: `ev:day:${tag}`, ...own, item_id: `item:day:${tag}`, kind: "note", title: "Parcel list of the 14th", source: "mail", uri: "", summary: "Three numbers, three weights.", created_at: stamp(Date.now()) }),
    () => write("ask", { id: `ask:day:${tag}`, ts: stamp(Date.now()), question: "The carrier bills four parcels, we sent three. Refuse the whole invoice, or ask for a new one?", urgency: "high", status: "open" }),
    () => beat(clerk, "Waits for an answer about the carrier"),
    () => write("work_memory", { id: `mem:day:${tag}`, ...own, kind: "fact", body: "The carrier bills by the label, also where a label was printed twice.", source: reader, confidence: "medium", status: "proposed", owner: reader, ...at() }),
    () => move("approval"),
    () => beat(reader, "Done for today", "done"),
  ];
  for (const step of steps) {
    step();
    await new Promise((resolve) => setTimeout(resolve, pause));
  }
  return `a question about the carrier's invoice, asked by ${clerk}`;
}

const { values, positionals } = parseArgs({ options: { database: { type: "string" }, pause: { type: "string", default: "3" } }, allowPositionals: true });
const [kind = "", text] = positionals;
const isDay = kind === "day" && positionals.length === 1;
if ((!isDay && !Object.hasOwn(actions, kind)) || positionals.length > 2)
  fail(`Usage: demo/agent ${Object.keys(actions).join("|")} [TEXT] [--database FILE]\n       demo/agent day [--pause SECONDS] [--database FILE]`);
const path = values.database ?? newestDemonstration();
if (!statSync(path, { throwIfNoEntry: false })?.isFile()) fail(`There is no database at ${path}.`);
const db = new DatabaseSync(path);
db.exec("PRAGMA busy_timeout=5000; PRAGMA foreign_keys=ON;");
const waits = isDay ? await playDay(db, Number(values.pause) * 1000) : actions[kind as keyof typeof actions](db, text);
console.log(`Waits for you: ${waits}`);
db.close();
