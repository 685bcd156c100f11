import assert from "node:assert/strict";
import { mkdirSync, writeFileSync } from "node:fs";
import { createServer } from "node:http";
import type { AddressInfo } from "node:net";
import { join } from "node:path";
import { test, type TestContext } from "node:test";
import { Store } from "../src/tools/database.ts";
import { PullWorker } from "../src/tools/pull.ts";
import { makeProfile } from "./tools-support.ts";

interface Answer {
  status?: number;
  body?: unknown;
}

/** A web service that answers as told, and the worker of a profile that is signed in to it. */
async function makeWorld(t: TestContext, answers: (path: string, since: number) => Answer) {
  const asked: string[] = [];
  const service = createServer((request, response) => {
    const url = new URL(request.url ?? "", "http://service");
    asked.push(`${url.pathname} ${url.searchParams.get("since") ?? ""} ${request.headers.authorization ?? ""}`);
    const { status = 200, body = {} } = answers(url.pathname, Number(url.searchParams.get("since")));
    response.writeHead(status).end(typeof body === "string" ? body : JSON.stringify(body));
  }).listen(0, "127.0.0.1");
  await new Promise((resolve) => service.once("listening", resolve));
  const profile = makeProfile(t);
  const { db, home, folder } = profile;
  const paths = { database: join(folder, "nimblocal.db"), token: "", webToken: join(folder, "companion.jwt"),
    defaults: join(home, "defaults.ini") };
  mkdirSync(home, { recursive: true });
  const setBase = (base: string) => writeFileSync(paths.defaults, `[General]\nnimb.apiBaseUrl=${base}\n`);
  setBase(`http://127.0.0.1:${(service.address() as AddressInfo).port}`);
  writeFileSync(paths.webToken, "a.b.c\n");
  const store = new Store(paths.database, {});
  const worker = new PullWorker(paths, store);
  t.after(() => {
    store.close();
    service.close();
  });
  let pulls = 0;
  return {
    db, asked, paths, setBase,
    /** Status and error of a request, once it was worked off. */
    async pull() {
      const id = `sync:${++pulls}`;
      db.prepare("INSERT INTO sync_command(id, workspace_id, requested_at) VALUES(?,'w1',1)").run(id);
      await worker.look();
      return Object.values(db.prepare("SELECT status, error FROM sync_command WHERE id=?").get(id) ?? {});
    },
    health: () => Object.fromEntries(
      db.prepare("SELECT source, status, cursor, last_error FROM sync_health").all()
        .map(({ source, status, cursor, last_error }) => [source, [status, cursor, last_error]]),
    ),
  };
}

const workspaces = { data: { organizations: [{ id: "o1", name: "Taller", workspaces: [{ id: "w1", name: "Shop" }] }] } };
const chat = { channel: "EMAIL", externalId: "bo@lind.example" };

test("a pull brings the web's rows once, page by page, and releases nothing", async (t) => {
  const world = await makeWorld(t, (path, since) => {
    if (path.endsWith("bootstrap")) return { body: workspaces };
    if (path.endsWith("crm"))
      return { body: { data: { cursor: 5, contacts: [{ id: "c9", name: "Bo Lind",
        identities: [{ channel: "EMAIL", handle: "bo@lind.example", email: "Bo@Lind.example" }] }] } } };
    if (path.endsWith("outbound_drafts"))
      return { body: { cursor: 3, drafts: [{ id: "d1", ...chat, body: "Hello Bo", status: "approved" }] } };
    return since === 0
      ? { body: { cursor: 7, more: true, conversations: [
          { ...chat, accountId: "mail", contactId: "c9", lastTs: 9, unread: 1 },
          { channel: "EMAIL", externalId: "own@own.example", lastTs: 9 } ] } }
      : { body: { cursor: 8, messages: [
          { id: "m1", ...chat, direction: "IN", body: "Hi", ts: 9, providerMsgId: "p1" },
          { id: "m2", channel: "EMAIL", externalId: "own@own.example", direction: "IN", body: "Twice", ts: 9, providerMsgId: "own" } ] } };
  });
  world.db.exec(`INSERT INTO unified_conversation(id,workspace_id,channel,account_id,external_id) VALUES('wa:mail:own','w1','EMAIL','mail','own@own.example');
    INSERT INTO unified_message(id,workspace_id,conversation_id,provider_msg_id) VALUES('wa:msg:own','w1','wa:mail:own','own')`);
  assert.deepEqual(await world.pull(), ["done", null]);
  assert.deepEqual(world.health(), { bootstrap: ["ok", 0, ""], crm: ["ok", 5, ""], inbox: ["ok", 8, ""], outbound_drafts: ["ok", 3, ""] });
  assert.deepEqual(world.asked.slice(2, 4), ["/corvane/api/v1/pull/inbox 0 Bearer a.b.c", "/corvane/api/v1/pull/inbox 7 Bearer a.b.c"]);
  const rows = (sql: string) => world.db.prepare(sql).all().map((row) => Object.values(row).join(" "));
  const mirrored = () => [
    ...rows("SELECT id, contact_id, unread FROM unified_conversation WHERE external_id LIKE '%.example' AND id LIKE 'web:%'"),
    ...rows("SELECT id, conversation_id FROM unified_message WHERE source='web'"),
    ...rows("SELECT email, contact_id FROM contact_identity WHERE id LIKE 'web:%'"),
    ...rows("SELECT status, source, web_message_id, conversation_id FROM outbound_draft WHERE id LIKE 'web:%'"),
  ];
  const expected = [
    "web:w1:EMAIL:bo@lind.example web:w1:contact:c9 1",
    "web:w1:msg:m1 web:w1:EMAIL:bo@lind.example",
    "bo@lind.example web:w1:contact:c9",
    "pending web d1 web:w1:EMAIL:bo@lind.example",
  ];
  assert.deepEqual(mirrored(), expected);
  world.db.exec("UPDATE outbound_draft SET status='rejected' WHERE source='web'; UPDATE sync_command SET status='running'");
  assert.deepEqual(await world.pull(), ["done", null]);
  assert.deepEqual(mirrored(), [...expected.slice(0, 3), expected[3]?.replace("pending", "rejected")]);
});

test("a pull that fails says why, source by source, and keeps its place", async (t) => {
  const world = await makeWorld(t, (path) => {
    if (path.endsWith("bootstrap")) return { status: 401, body: "no" };
    if (path.endsWith("crm")) return { status: 404 };
    return path.endsWith("inbox") ? { body: { cursor: "x" } } : { body: "<html>" };
  });
  world.db.exec("INSERT INTO _sync_state VALUES('inbox:w1',4,NULL)");
  assert.deepEqual(await world.pull(), ["error", "HTTP 401 on /api/auth/companion/bootstrap — no"]);
  const health = world.health();
  assert.deepEqual(health.crm, ["waiting_for_web", 0, "The web doesn't offer this yet (HTTP 404)"]);
  assert.match(String(health.inbox?.[2]), /^Unexpected response shape: /);
  assert.equal(health.outbound_drafts?.[2], "Unexpected response shape: <html>");
  assert.equal(world.db.prepare("SELECT last_pulled FROM _sync_state").get()?.last_pulled, 4);

  world.setBase("http://service.example");
  assert.deepEqual(await world.pull(), ["error", "The web service's address must be https."]);
  world.setBase("https://127.0.0.1:1");
  assert.match(String((await world.pull())[1]), /ECONNREFUSED|bad port/);
  writeFileSync(world.paths.webToken, "");
  const before = world.asked.length;
  assert.deepEqual(await world.pull(), ["error", "Sign in first"]);
  assert.equal(world.health().inbox?.[0], "skipped");
  assert.equal(world.asked.length, before);
});
