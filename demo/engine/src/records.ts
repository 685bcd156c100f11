// Records beside the messages: people merged from several channels, deals, notes, tasks, a call, and what agents
// remember. They are written directly to the database, as any program on this machine may do, once the messages of
// everyone they mention are there.

import { existsSync } from "node:fs";
import { homedir } from "node:os";
import { dirname, join } from "node:path";
import type { DatabaseSync } from "node:sqlite";
import { writeCall, type RecordedCall } from "./calls.ts";
import { day, minute } from "./clock.ts";
import { contentOf } from "./content.ts";
import { readScript } from "./script.ts";
import { emit } from "./wire.ts";
import { writeWork } from "./work.ts";

export interface Person {
  contact: string;
  /** The person's other contacts, whose conversations are moved to this one. */
  same: string[];
  memory: string[];
  deals: { name: string; company: string; stage: string; value: string; days: number }[];
  notes: { body: string; days: number }[];
  tasks: { title: string; due: string; priority: string }[];
  calls: RecordedCall[];
}

const patience = minute;
const period = 200;

/** The accounts whose conversations are simulated; with a real mailbox, mail is not. */
const channels = ["whatsapp", "telegram", ...(process.env.CORVANE_MAIL_AUTOCONFIG ? [] : ["email"])];

function isPlayed(contact: string): boolean {
  return channels.includes(contact.split(":")[1].toLowerCase());
}

export function readRecords(): Person[] {
  const people = JSON.parse(contentOf("records.json")) as Person[];
  return people
    .filter(({ contact }) => isPlayed(contact))
    .map((person) => ({ ...person, same: person.same.filter(isPlayed) }));
}

/** Calls `done` after the records were written; never if there is no database, or no messages within a minute. */
export function writeRecords(since: number, done: () => void): void {
  const path = join(process.env.XDG_DATA_HOME || join(homedir(), ".local", "share"), "Corvane", "nimblocal.db");
  if (!existsSync(path)) return;
  const people = readRecords();
  const expected = newestMessages(people, since);
  const until = performance.now() + patience;
  import("node:sqlite").then(
    (sqlite) => {
      const database = new sqlite.DatabaseSync(path);
      database.exec("PRAGMA busy_timeout=5000;");
      const attempt = (): void => {
        try {
          if (expected.every((id) => holdsMessage(database, id))) {
            write(database, people, since, join(dirname(path), "media", "calls"));
            done();
          } else if (performance.now() < until) {
            setTimeout(attempt, period);
            return;
          }
        } catch (error) {
          emit({ type: "log", msg: `The records could not be written: ${(error as Error).message}` });
        }
        database.close();
      };
      attempt();
    },
    () => undefined, // a Node without SQLite: the demo continues without the records
  );
}

/** The last history message of each conversation that the records mention. */
function newestMessages(people: Person[], since: number): string[] {
  const wanted = new Set(people.flatMap(({ contact, same }) => [contact, ...same]));
  return channels.flatMap((channel) =>
    readScript(channel, contentOf(`${channel}.chat`), since)
      .filter(({ handle }) => wanted.has(`ct:${channel.toUpperCase()}:${handle}`))
      .map(({ history }) => history[history.length - 1].id),
  );
}

function holdsMessage(database: DatabaseSync, id: string): boolean {
  return database.prepare("SELECT 1 FROM unified_message WHERE provider_msg_id=?;").get(id) !== undefined;
}

/** All or nothing; running it again changes nothing. */
function write(database: DatabaseSync, people: Person[], since: number, callFolder: string): void {
  const workspace = String(
    database.prepare("SELECT workspace_id FROM contact WHERE id=?;").get(people[0].contact)?.workspace_id ?? "local",
  );
  const insert = (table: string, row: Record<string, string | number>): void => {
    const columns = Object.keys(row);
    database
      .prepare(`INSERT OR IGNORE INTO ${table}(${columns}) VALUES(${columns.map(() => "?")});`)
      .run(...Object.values(row));
  };
  database.exec("BEGIN IMMEDIATE;");
  let number = 1000;
  for (const { contact, same, memory, deals, notes, tasks, calls } of people) {
    const ago = (days: number): number => since - days * day;
    const own = { workspace_id: workspace, contact_id: contact };
    for (const other of same) merge(database, workspace, contact, other, `mg:${ago(3)}:${number++}`, ago(3));
    memory.forEach((body, index) =>
      insert("work_memory_entries", {
        id: `demo-memory-${number++}`,
        scope: `contact:${contact}`,
        body,
        created_at: new Date(ago(4 - index)).toISOString(),
      }),
    );
    for (const { days, ...deal } of deals)
      insert("crm_deal", { id: `dl:${ago(days)}:${number++}`, ...own, ...deal, updated_at: ago(days) });
    for (const { days, body } of notes)
      insert("contact_note", { id: `note:${ago(days)}:${contact}`, ...own, body, ts: ago(days), updated_at: ago(days) });
    for (const task of tasks)
      insert("crm_task", { id: `tk:${since}:${number++}`, ...own, ...task, status: "To do", updated_at: since - number });
    for (const call of calls) writeCall(callFolder, `call-demo-${number++}`, call, ago(call.days), own, insert);
  }
  writeWork(since, insert);
  database.exec("COMMIT;");
}

function merge(database: DatabaseSync, workspace: string, primary: string, merged: string, id: string, at: number): void {
  if (database.prepare("SELECT 1 FROM contact_merge WHERE merged_contact_id=?;").get(merged) !== undefined) return;
  const rows = database.prepare("SELECT id FROM unified_conversation WHERE contact_id=?;").all(merged);
  const conversations = rows.map((row) => String(row.id));
  database
    .prepare(
      `INSERT INTO contact_merge(id, workspace_id, primary_contact_id, merged_contact_id, signal, conv_ids_json, created_at)
       VALUES(?,?,?,?,'name',?,?);`,
    )
    .run(id, workspace, primary, merged, JSON.stringify(conversations), at);
  database.prepare("UPDATE unified_conversation SET contact_id=? WHERE contact_id=?;").run(primary, merged);
}
