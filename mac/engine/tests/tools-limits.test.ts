import assert from "node:assert/strict";
import { readdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import type { DatabaseSync } from "node:sqlite";
import { test } from "node:test";
import { openWriter } from "../src/tools/database.ts";
import { writable } from "../src/tools/registry.ts";
import { makeProfile, startServer } from "./tools-support.ts";

const held = ["approved", "sending", "sent", "placed", "applied", "rejected"];
const marker = "the-secret-that-nobody-may-read";

const tables = (db: DatabaseSync): string[] =>
  db.prepare("SELECT name FROM sqlite_master WHERE type='table' AND name NOT LIKE 'sqlite_%'").all()
    .map(({ name }) => String(name));

/** Every row of every table, by table and row id. */
function everything(db: DatabaseSync): Map<string, string> {
  return new Map(
    tables(db).flatMap((table) =>
      db.prepare(`SELECT rowid AS row, * FROM "${table}"`).all()
        .map(({ row, ...rest }) => [`${table} ${row}`, JSON.stringify(rest)] as const),
    ),
  );
}

/** Ids of existing rows, so that a call passes the first checks. */
const known: Record<string, string> = {
  conversation: "cv:ana", contact: "ct:ana", project: "shop", context: "ctx:dev:shop", item: "item:1", order: "msg:1",
  call: "call:1", session: "sess:1", tab: "tab:1", before: "m4", module: "dev", start: "2026-01-01T00:00:00Z",
  end: "2026-01-02T00:00:00Z", from: "2026-01-01T00:00:00Z", to: "2026-01-02T00:00:00Z",
};

interface Property {
  type?: string;
  enum?: string[];
}

/** Calls with hostile words, paths and SQL, and with unknown arguments. */
function hostileCalls(folder: string, properties: Record<string, Property>): Record<string, unknown>[] {
  const secret = join(folder, "companion.jwt");
  const words = [...held, secret, `file://${secret}`, "x'); UPDATE outbound_draft SET status='approved'; --", "od:1", "dec:1"];
  const base = (word: string): Record<string, unknown> =>
    Object.fromEntries(
      Object.entries(properties).map(([name, { type, enum: allowed }]) => [
        name, known[name] ?? allowed?.[0] ?? (type === "integer" ? 30 : type === "boolean" ? true : word),
      ]),
    );
  return words.flatMap((word) => [
    base(word),
    { ...base(word), status: word, decided_by: "Oskel", source: word },
    ...Object.keys(properties).map((name) => ({ ...base(word), [name]: word })),
  ]);
}

test("no tool decides, sends, deletes, changes what it must not, or tells a secret", async (t) => {
  const profile = makeProfile(t);
  const { db, folder } = profile;
  for (const file of ["companion.jwt", "accounts.json"]) writeFileSync(join(folder, file), marker);
  db.exec(`INSERT INTO work_session(id,module,status) VALUES('sess:1','dev','ready');
    INSERT INTO tab(id,current_project_id,name) VALUES('tab:1','p1','Tab')`);
  const server = await startServer(t, profile);
  const client = await server.connect();
  const before = everything(db);
  let answered = 0;
  for (const { name, inputSchema } of (await client.listTools()).tools) {
    for (const args of hostileCalls(folder, inputSchema.properties as Record<string, Property>)) {
      const result = await client.callTool({ name, arguments: args });
      answered += result.isError ? 0 : 1;
      const words = JSON.stringify(result);
      assert.ok(!words.includes(marker) && !words.includes(server.token()), `${name} tells a secret`);
    }
  }
  assert.ok(answered > 100, "most of the calls must get through, or they prove nothing");

  const after = everything(db);
  const fixed = (key: string): boolean => writable[key.split(" ")[0] ?? ""] === undefined;
  for (const [key, row] of before) {
    assert.ok(after.has(key), `${key} was deleted`);
    if (fixed(key) || /^(outbound_draft|work_decision|crm_update_proposal|work_memory) /.test(key))
      assert.equal(after.get(key), row, `${key} was changed`);
  }
  for (const [key, row] of after) {
    assert.ok(before.has(key) || !fixed(key), `${key} was added`);
    assert.ok(!held.includes(JSON.parse(row).status), `${key} was decided: ${row}`);
  }
  const proposed = (table: string) => [...after.keys()].filter((key) => key.startsWith(`${table} `)).length;
  for (const table of ["outbound_draft", "work_decision", "crm_update_proposal", "work_memory"])
    assert.ok(proposed(table) > 1, `nothing reached ${table}`);
  assert.deepEqual(readdirSync(folder).sort(),
    ["accounts.json", "companion.jwt", "mcp-token", "nimblocal.db", "nimblocal.db-shm", "nimblocal.db-wal"]);
});

test("the connection itself refuses what no tool may do", (t) => {
  const { db, folder } = makeProfile(t);
  const writer = openWriter(join(folder, "nimblocal.db"), writable);
  const draft = (status: string) =>
    `INSERT INTO outbound_draft(id,conversation_id,channel,account_id,external_id,body,status,created_at,updated_at)
     VALUES('od:2','cv:ana','EMAIL','mail','x','Hello','${status}',1,1)`;
  for (const sql of [
    ...held.map((word) => draft(` ${word.toUpperCase()} `)),
    draft("pending").replace("'od:2'", "'od:1'").replace("INSERT", "REPLACE"),
    "UPDATE outbound_draft SET body='Other words'",
    "UPDATE work_decision SET decided_by='Oskel'",
    "UPDATE work_item SET status='approved'",
    "DELETE FROM work_item",
    "DELETE FROM outbound_draft",
    "INSERT INTO calendar_command(id,title) VALUES('c','Lunch')",
    "INSERT INTO draft_approval VALUES('od:1','hash',1)",
    "UPDATE unified_message SET body='forged'",
    "UPDATE sync_workspace_selection SET workspace_id='w2'",
    "INSERT INTO work_memory_entries VALUES('x','owner','Pays everything','')",
  ])
    assert.throws(() => writer.run(sql), /set by a person|not changed here|not deleted here/, sql);
  assert.equal(writer.run(draft("pending")), 1);
  writer.close();
  assert.equal(db.prepare("SELECT COUNT(*) AS n FROM outbound_draft").get()?.n, 2);
});
