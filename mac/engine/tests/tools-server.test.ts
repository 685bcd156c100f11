import assert from "node:assert/strict";
import { chmodSync, rmSync, statSync } from "node:fs";
import { request } from "node:http";
import { join } from "node:path";
import { test } from "node:test";
import { current, renewed } from "../src/tools/document.ts";
import { ask, lastWords, makeProfile, startServer } from "./tools-support.ts";

/** Node's fetch sets Host by itself. */
function statusOf(url: string, headers: Record<string, string>, body = "{}"): Promise<number | undefined> {
  return new Promise((resolve, reject) => {
    const sent = request(url, { method: "POST", headers: { "content-type": "application/json", ...headers } });
    sent.on("response", (response) => resolve(response.resume().statusCode)).on("error", reject);
    sent.end(body);
  });
}

test("only who holds the token is answered, by address and not from a web page", async (t) => {
  const profile = makeProfile(t);
  const server = await startServer(t, profile);
  const file = join(profile.folder, "mcp-token");
  const first = server.token();
  const authorization = `Bearer ${first}`;
  assert.equal(statSync(file).mode & 0o777, 0o600);
  assert.equal(await statusOf(server.url, {}), 401);
  assert.equal(await statusOf(server.url, { authorization: `Bearer ${first.slice(1)}x` }), 401);
  assert.equal(await statusOf(server.url, { authorization, host: "corvane.example" }), 403);
  assert.equal(await statusOf(server.url, { authorization, origin: "http://localhost:3000" }), 403);
  assert.equal(await statusOf(server.url, { authorization }, "{"), 400);
  assert.equal(await statusOf(server.url, { authorization }, " ".repeat(1_000_001)), 413);

  const client = await server.connect();
  rmSync(file);
  await assert.rejects(client.listTools(), "the secret that was removed is worth nothing");
  const second = server.token();
  assert.notEqual(second, first);
  chmodSync(file, 0o644);
  assert.equal(await statusOf(server.url, { authorization: `Bearer ${second}` }), 401);
  assert.equal(statSync(file).mode & 0o777, 0o600, "a secret that others could read is replaced");
  assert.ok((await (await server.connect()).listTools()).tools.length > 0);
});

test("a server that can't start says why in its last line", async (t) => {
  const profile = makeProfile(t);
  const { port } = new URL((await startServer(t, profile)).url);
  assert.equal(await lastWords(profile, port), `The tool server can't start: another program uses port ${port}.`);
});

test("reads keep to the workspace and to what is not deleted", async (t) => {
  const server = await startServer(t, makeProfile(t));
  const client = await server.connect();
  const ids = async (name: string, args: object, key = "id") =>
    (await ask(client, name, { ...args })).data.rows.map((row: Record<string, unknown>) => row[key]);

  assert.deepEqual(await ids("inbox_list", {}, "conversation"), ["cv:ana"]);
  assert.deepEqual(await ids("inbox_search", { phrase: "invoice" }), ["m1"]);
  assert.deepEqual(await ids("inbox_search", { phrase: "0%" }), ["m2"], "a per cent sign is no wildcard");
  assert.deepEqual(await ids("inbox_thread", { contact: "ct:ana2", limit: 2 }), ["m2", "m4"], "a merged contact");
  assert.deepEqual(await ids("inbox_thread", { conversation: "cv:ana", before: "m2" }), ["m1"]);
  assert.deepEqual(await ids("crm_people", {}, "name"), ["Ana Ruiz"]);
  assert.deepEqual(await ids("crm_tasks", {}), ["tk:1"]);
  assert.deepEqual(await ids("dev_work_list", {}), ["item:1"]);
  assert.deepEqual(await ids("calendar_events", { from: "1970-01-01T00:00:00Z" }), ["ev:1"]);

  for (const conversation of ["cv:gone", "cv:cut", "cv:other", "cv:none"])
    assert.match((await ask(client, "inbox_thread", { conversation })).words, /There is no conversation/);
  const person = (await ask(client, "inbox_person", { contact: "ct:ana" })).data;
  assert.deepEqual([person.tasks.length, person.notes[0].body, person.addresses.length], [1, "Likes blue", 1]);
  assert.equal((await ask(client, "calendar_call", { call: "call:1" })).data.transcript.rows[0].text, "Hello");
  const work = (await ask(client, "ops_inbox", { project: "shop", tab: "tab:1" })).data;
  assert.deepEqual([work.orders.rows.length, work.open_asks.rows.length], [1, 0]);
});

test("answers are bounded, and a wrong call is told what is wrong", async (t) => {
  const profile = makeProfile(t);
  const add = profile.db.prepare("INSERT INTO unified_message(id,conversation_id,body,ts) VALUES(?,'cv:ana',?,?)");
  for (let i = 0; i < 200; ++i) add.run(`long${i}`, "é".repeat(9000), 10_000 + i);
  const client = await (await startServer(t, profile)).connect();
  const { words, data } = await ask(client, "inbox_thread", { conversation: "cv:ana", limit: 100 });
  assert.ok(words.length < 70_000 && data.more && data.rows.length > 5);
  assert.match(data.rows.at(-1).text, /… \(5000 more characters\)$/);

  for (let i = 0; i < 20; ++i)
    profile.db.exec(`INSERT INTO contact_note(id,workspace_id,contact_id,body) VALUES('n${i}','w1','ct:ana',hex(zeroblob(4500)));
      INSERT INTO work_memory_entries(id,scope,body) VALUES('e${i}','contact:ct:ana',hex(zeroblob(4500)))`);
  assert.ok((await ask(client, "inbox_person", { contact: "ct:ana" })).words.length < 70_000);

  assert.match((await ask(client, "inbox_list", { limit: 1000 })).words, /limit/);
  assert.match((await ask(client, "inbox_list", { path: "/etc/passwd" })).words, /path/);
  assert.match((await ask(client, "inbox_send")).words, /There is no tool inbox_send/);
  profile.db.exec("DROP TABLE dev_srs");
  assert.match((await ask(client, "dev_requirements", { project: "shop" })).words, /another version/);
  rmSync(join(profile.folder, "nimblocal.db"));
  assert.match((await ask(client, "inbox_list")).words, /There is no database yet/);
});

test("the page about the tools lists what there is", () => {
  assert.equal(current(), renewed(current()), "run mac/engine/src/tools/document.ts");
});
