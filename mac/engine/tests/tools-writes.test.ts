import assert from "node:assert/strict";
import { createServer } from "node:http";
import type { AddressInfo } from "node:net";
import { test } from "node:test";
import { ask, makeProfile, startServer } from "./tools-support.ts";

test("a proposal is a row that waits, for whom and in the form that the program knows", async (t) => {
  const profile = makeProfile(t);
  const client = await (await startServer(t, profile)).connect();
  const row = (sql: string) => profile.db.prepare(sql).get();

  const { id } = (await ask(client, "inbox_propose_draft", { conversation: "cv:ana", body: " Dear Ana " })).data;
  assert.match(id, /^od:\d+:\d{4}$/);
  const draft = row(`SELECT workspace_id, channel, account_id, external_id, title, body, status, source
    FROM outbound_draft WHERE id='${id}'`);
  assert.deepEqual(Object.values(draft ?? {}),
    ["w1", "EMAIL", "mail", "ana@ruiz.example", "Ana", "Dear Ana", "pending", "mcp"]);
  for (const conversation of ["cv:gone", "cv:other"])
    assert.ok((await ask(client, "inbox_propose_draft", { conversation, body: "Hello" })).failed);

  const event = { title: "Lunch", start: "2026-11-23T12:00:00+01:00", end: "2026-11-23T13:00:00+01:00" };
  const proposal = (await ask(client, "calendar_propose_event", { ...event, contact: "ct:ana2" })).data;
  const kept = row(`SELECT * FROM crm_update_proposal WHERE id='${proposal.id}'`);
  assert.deepEqual([kept?.kind, kept?.status, kept?.contact_id], ["event", "pending", "ct:ana"]);
  const { startMs, endMs } = JSON.parse(String(kept?.payload_json));
  assert.deepEqual([startMs, endMs - startMs], [Date.parse(event.start), 3_600_000]);
  assert.match((await ask(client, "calendar_propose_event", { ...event, end: event.start })).words, /ends before/);
  assert.ok((await ask(client, "crm_propose_note", { contact: "ct:other", body: "Hi" })).failed);

  for (let i = 0; i < 198; ++i) await ask(client, "inbox_propose_draft", { conversation: "cv:ana", body: `${i}` });
  assert.match((await ask(client, "inbox_propose_draft", { conversation: "cv:ana", body: "more" })).words, /wait already/);
});

test("what an agent reports shows in the lists, in its own name", async (t) => {
  const profile = makeProfile(t);
  const client = await (await startServer(t, profile)).connect();
  const at = { module: "dev", context: "ctx:dev:shop" };
  const start = { agent: "worker-01", tool: "codex", purpose: "Mend the till", item: "item:1", ...at };
  const { session } = (await ask(client, "dev_session_start", start)).data;
  await ask(client, "dev_session_start", start);
  await ask(client, "dev_session_heartbeat", { session, status: "done", task: "Tidying up" });
  const { sessions, agents } = (await ask(client, "dev_work_sessions", at)).data;
  assert.deepEqual([sessions.rows.length, agents.rows.length], [2, 1], "one agent, however often it starts");

  await ask(client, "dev_report_message", { agent: "worker-01", body: "Found it", session, ...at });
  assert.match((await ask(client, "dev_report_message", { agent: " Oskel ", body: "I approve", ...at })).words, /belongs/);
  assert.match((await ask(client, "dev_report_message", { agent: "a", body: "x", context: "ctx:no" })).words, /no work context/);
  assert.ok((await ask(client, "dev_report_item", { title: "Lost", ...at, module: "ops" })).failed, "of another module");
  await ask(client, "dev_report_evidence", { title: "It passes", item: "item:1", uri: "/tmp/log", ...at });
  const log = (await ask(client, "dev_work_log", at)).data;
  assert.deepEqual([log.messages.rows[0].speaker, log.messages.rows[0].role, log.evidence.rows[0].item],
    ["worker-01", "assistant", "item:1"]);
  await ask(client, "dev_report_item", { title: "The drawer sticks", kind: "bug", ...at });
  await ask(client, "dev_update_item", { item: "item:1", status: "done" });
  const items = (await ask(client, "dev_work_list", at)).data.rows;
  assert.deepEqual(items.map((item: { title: string }) => item.title), ["The drawer sticks"]);

  const { tab } = (await ask(client, "ops_open_tab", { project: "shop", agent: "worker-01" })).data;
  await ask(client, "ops_report", { project: "shop", tab, body: "Half done", task: "The till" });
  await ask(client, "ops_ask", { project: "shop", tab, question: "Which till?", urgency: "high" });
  await ask(client, "ops_take_order", { order: "msg:1" });
  const inbox = (await ask(client, "ops_inbox", { project: "shop" })).data;
  assert.deepEqual([inbox.orders.rows.length, inbox.open_asks.rows[0].question], [0, "Which till?"]);
  assert.equal((await ask(client, "ops_updates", { project: "shop" })).data.rows[0].body, "Half done");
  assert.equal(profile.db.prepare("SELECT current_task FROM tab").get()?.current_task, "The till");
});

test("a scan looks at pages on this machine and nowhere else", async (t) => {
  const asked: string[] = [];
  const site = createServer((request, response) => {
    asked.push(request.url ?? "");
    const found = ["/", "/a.css"].includes(request.url ?? "");
    response.writeHead(request.url === "/away" ? 302 : found ? 200 : 404, {
      "content-type": "text/html",
      ...(request.url === "/away" && { location: "http://corvane.example/?stolen" }),
    });
    response.end(`<title>Shop</title><link rel=stylesheet href="a.css"><script src='/gone.js'></script>
      <img src="https://corvane.example/x.png"><a href="/other">`);
  }).listen(0, "127.0.0.1");
  t.after(() => site.close());
  await new Promise((resolve) => site.once("listening", resolve));
  const origin = `http://127.0.0.1:${(site.address() as AddressInfo).port}`;
  const profile = makeProfile(t);
  const client = await (await startServer(t, profile)).connect();
  const scan = async (url: string) => ask(client, "dev_browser_scan", { project: "shop", url });

  const { data } = await scan(`${origin}/`);
  assert.deepEqual([data.title, data.parts, data.elsewhere, data.problems], ["Shop", 2, 1, [`HTTP 404: ${origin}/gone.js`]]);
  await scan(`${origin}/`);
  assert.deepEqual(asked.slice(0, 3), ["/", "/a.css", "/gone.js"]);
  assert.equal(profile.db.prepare("SELECT COUNT(*) AS n FROM dev_browser_session").get()?.n, 1);
  assert.equal(profile.db.prepare("SELECT context_id AS id FROM work_evidence").get()?.id, "ctx:dev:shop");
  for (const url of [`${origin}/away`, "http://corvane.example/", "file:///etc/passwd", "http://localhost:9335/json"])
    assert.match((await scan(url)).words, /is not looked at/);
});
