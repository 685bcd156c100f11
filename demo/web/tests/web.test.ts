import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { writeFileSync } from "node:fs";
import { join } from "node:path";
import { createInterface } from "node:readline";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { Store } from "../../../mac/engine/src/tools/database.ts";
import { PullWorker } from "../../../mac/engine/src/tools/pull.ts";
import { makeProfile } from "../../../mac/engine/tests/tools-support.ts";

const script = fileURLToPath(new URL("../src/main.ts", import.meta.url));
const callback = "nimb-companion://auth";

/** The service as `run` starts it, and who is signed in to it. */
async function start(...faults: string[]) {
  const child = spawn(process.execPath, ["--experimental-strip-types", "--no-warnings", script, ...faults]);
  after(() => child.kill());
  const log: string[] = [];
  createInterface({ input: child.stderr }).on("line", (line) => log.push(line));
  const [address] = (await once(createInterface({ input: child.stdout }), "line")) as [string];
  let token = "";
  const call = async (method: string, path: string, body?: object | string, bearer = token) => {
    const sent = typeof body === "object" ? JSON.stringify(body) : body;
    const response = await fetch(address + path, { method, body: sent, redirect: "manual", headers: { authorization: `Bearer ${bearer}` } });
    const said = await response.text();
    return { status: response.status, location: response.headers.get("location") ?? "", said, json: /^[{[]/.test(said) ? JSON.parse(said) : undefined };
  };
  const signIn = async (): Promise<void> => {
    const web = (await call("POST", "/api/auth/login", { email: "ana@example.org", password: "secret" })).json.data.accessToken;
    const { location } = await call("GET", `/api/auth/companion-login?callback=${encodeURIComponent(callback)}&deviceName=desk`, undefined, web);
    const code = new URL(location).searchParams.get("code");
    token = (await call("POST", "/api/auth/companion-exchange", { code, deviceName: "desk" })).json.data.token;
    assert.equal((await call("POST", "/api/auth/companion-exchange", { code, deviceName: "desk" })).status, 400, "a code counts once");
  };
  return { call, signIn, log, address, device: () => token };
}

const v1 = "/corvane/api/v1";
const chatOf = (account: string) => ({
  object: "Chat", account_id: account, account_type: "WHATSAPP", provider_id: "34600@s.whatsapp.net", type: 0, timestamp: "2026-11-22T10:00:00Z",
  unread_count: 1, archived: false, muted_until: null, read_only: false, pinned: false,
});

test("a password leads to a device token, which opens the rest", async () => {
  const { call, signIn } = await start();
  assert.equal((await call("POST", "/api/auth/login", { email: "a@b.c", password: "no" })).status, 401);
  assert.equal((await call("POST", "/api/auth/login", { email: "2fa@b.c", password: "secret" })).json.requires2fa, true);
  assert.equal((await call("GET", "/api/auth/companion-login?callback=https://elsewhere.example")).status, 400);
  const page = `email=ana%40example.org&password=secret&callback=${encodeURIComponent(callback)}`;
  assert.match((await call("POST", "/api/auth/companion-login", page)).location, /^nimb-companion:\/\/auth\?code=.+/);
  const path = "/api/auth/companion/bootstrap";
  assert.equal((await call("GET", path)).status, 401);
  await signIn();
  const { organizations, activeOrganizationId } = (await call("GET", path)).json.data;
  assert.equal(organizations.find(({ id }: { id: string }) => id === activeOrganizationId).workspaces[0].isDefault, true);
  const inbox = `${v1}/pull/inbox?workspaceId=ws-studio&since=`;
  assert.equal((await call("GET", `${inbox}0`)).json.data.messages.length, 2);
  assert.equal((await call("GET", `${inbox}1`)).json.data.messages, undefined);
});

test("what is pushed twice is there once, and a list is taken whole or not at all", async () => {
  const { call, signIn, log } = await start();
  await signIn();
  const account = { account_type: "WHATSAPP", provider_id: "taller" };
  assert.equal((await call("POST", `${v1}/chats`, chatOf("account-none"))).status, 422);
  const accountId = (await call("POST", `${v1}/accounts`, account)).json.data.id;
  assert.equal((await call("POST", `${v1}/accounts`, account)).json.data.id, accountId);
  const chatId = (await call("POST", `${v1}/chats`, chatOf(accountId))).json.data.chat.id;
  const message = (id: string) => ({ id, chat_id: chatId, account_id: accountId, sender_id: "taller", timestamp: "2026-11-22T10:00:00.000Z", is_outgoing: true, text: "Hello" });
  const path = `${v1}/chats/${chatId}/messages`;
  assert.equal((await call("POST", path, message("m1"))).status, 200);
  assert.deepEqual((await call("POST", path, { messages: [message("m1"), message("m2")] })).json.data, { new: 1, known: 1 });
  assert.equal((await call("POST", path, { messages: [message("m3"), { ...message("m4"), text: 7 }] })).status, 422);
  assert.deepEqual((await call("GET", "/demo/counts")).json, { accounts: 1, chats: 1, messages: 2 });
  assert.ok(log.some((line) => line.endsWith("/messages -> 200: 1 new, 1 known; in all 1 accounts, 1 chats, 2 messages")));
});

test("the tool server pulls what waits there", async (t) => {
  const { signIn, address, device } = await start();
  await signIn();
  const { db, home, folder } = makeProfile(t);
  const [webToken, defaults] = [join(folder, "companion.jwt"), join(home, "defaults.ini")];
  writeFileSync(webToken, device());
  writeFileSync(defaults, `[General]\nnimb.apiBaseUrl=${address}\n`);
  const store = new Store(join(folder, "nimblocal.db"), {});
  t.after(() => store.close());
  db.exec("UPDATE sync_workspace_selection SET workspace_id='ws-studio'; INSERT INTO sync_command(id, workspace_id, requested_at) VALUES('s','ws-studio',1)");
  await new PullWorker({ database: join(folder, "nimblocal.db"), token: "", webToken, defaults }, store).look();
  assert.deepEqual(Object.values(db.prepare("SELECT status, error FROM sync_command").get() ?? {}), ["done", null]);
  const { n } = db.prepare("SELECT COUNT(*) AS n FROM unified_message WHERE workspace_id='ws-studio'").get() ?? {};
  assert.deepEqual([n, db.prepare("SELECT status FROM outbound_draft WHERE workspace_id='ws-studio'").get()?.status], [2, "pending"]);
});

test("it fails as it is told to", async () => {
  const { call, signIn, address } = await start("login=500x1", "accounts=401+1");
  assert.equal((await call("POST", "/api/auth/login", {})).status, 500);
  await signIn();
  const account = { account_type: "WHATSAPP", provider_id: "taller" };
  const statuses = [await call("POST", `${v1}/accounts`, account), await call("POST", `${v1}/accounts`, account)].map(({ status }) => status);
  assert.deepEqual(statuses, [200, 401]);
  const bootstrap = async (fault: string) => {
    assert.equal((await call("PUT", "/demo/faults", `bootstrap=${fault}`)).status, 204);
    return call("GET", "/api/auth/companion/bootstrap");
  };
  assert.equal((await bootstrap("many")).json.data.organizations[0].workspaces.length, 10_000);
  assert.match((await bootstrap("nonsense")).said, /maintenance/);
  assert.ok((await bootstrap("huge")).said.length > 4 << 20);
  assert.notEqual(new URL((await bootstrap("redirect")).location).origin, address);
  for (const fault of ["half", "drop"]) await assert.rejects(bootstrap(fault));
  assert.equal((await call("PUT", "/demo/faults", "bootstrap=nothing")).status, 400);
});
