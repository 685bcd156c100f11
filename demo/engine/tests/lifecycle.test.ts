import assert from "node:assert/strict";
import { existsSync, rmSync, writeFileSync } from "node:fs";
import { createServer } from "node:net";
import { join } from "node:path";
import { after, test } from "node:test";
import { EngineProcess, environmentIn, isLive, isMessage, patience, startScript, temporaryHome, unnumbered, type Event } from "./support.ts";

const quick = { CORVANE_DEMO_PAIRING_SECONDS: "0", CORVANE_DEMO_PACE: "0.002" };
const ids = (events: Event[]): unknown[] => events.map(({ providerMsgId }) => providerMsgId);
const history = (events: Event[]): Event[] => events.filter(({ historical }) => historical === true);

test("a code turns into a connection after the time that was named", async () => {
  const engine = new EngineProcess(
    "whatsapp",
    environmentIn(temporaryHome(after), { CORVANE_DEMO_PAIRING_SECONDS: "4" }),
  );
  const events = await engine.until((said) => said.some(({ state }) => state === "open"));
  const codes = events.filter(({ type }) => type === "qr").map(({ qr }) => String(qr));
  assert.equal(codes.length, 2);
  assert.notEqual(codes[0], codes[1]);
  for (const code of codes) assert.match(code, /^2@[\w+/=]+(,[\w+/=]+){3}$/);
  assert.equal(events.find(({ state }) => state === "open")?.user, "Marta Vidal · Taller Vidal");
  engine.child.kill("SIGTERM");
  assert.equal(await engine.exited, 0);
});

test("e-mail and Telegram tell their history at once", async () => {
  for (const channel of ["email", "telegram"] as const) {
    const engine = new EngineProcess(channel, environmentIn(temporaryHome(after)));
    await engine.until((said) => said.filter(isLive).length >= 2);
    assert.ok(history(await engine.end()).length > 50);
  }
});

test("an engine that comes back repeats what was not stored and nothing else, shows no code and goes on where it stopped", async () => {
  const home = temporaryHome(after);
  const first = new EngineProcess("whatsapp", environmentIn(home, quick));
  const isPriya = ({ type, name }: Event): boolean => type === "contactName" && name === "Priya Nair";
  await first.event(isPriya);
  const before = await first.end();
  assert.ok(before.some(({ type }) => type === "qr"));

  const second = new EngineProcess("whatsapp", environmentIn(home, quick));
  await second.until((said) => said.filter(isLive).length >= 20);
  const again = await second.end();
  assert.ok(!again.some(({ type }) => type === "qr"));
  // On a busy machine either run may end before its whole history is told.
  const [told, toldAgain] = [history(before).map((message) => named(message, before, isPriya)), history(again)];
  const both = Math.min(told.length, toldAgain.length);
  assert.ok(both > 50);
  assert.deepEqual(toldAgain.slice(0, both).map(unnumbered), told.slice(0, both).map(unnumbered));
  const live = before.filter(isLive);
  const stored = live.filter(({ ack }) => Number(ack) <= first.acknowledged);
  assert.ok(stored.length > 0);
  for (const id of ids(stored)) assert.ok(!ids(again).includes(id));
  for (const id of ids(live.slice(stored.length))) assert.ok(ids(again).includes(id));
});

/** The history as it reads once the unknown number has a name. */
function named(message: Event, before: Event[], isPriya: (event: Event) => boolean): Event {
  const jid = before.find(isPriya)?.jid;
  if (message.convExternalId !== jid) return message;
  return { ...message, convTitle: "Priya Nair", ...(message.direction === "IN" ? { sender: "Priya Nair" } : {}) };
}

test("a reset asks for pairing again, and a memory that does not read begins anew", async () => {
  const home = temporaryHome(after);
  await new EngineProcess("telegram", environmentIn(home, quick)).end();
  writeFileSync(join(home, "home", ".corvane-demo", "telegram.json"), '{"since":');
  const torn = new EngineProcess("telegram", environmentIn(home, quick));
  await torn.until((said) => said.filter(isLive).length >= 2);
  await torn.end();

  const paired = new EngineProcess("whatsapp", environmentIn(home, quick));
  await paired.event(({ state }) => state === "open");
  await paired.end();
  const state = join(home, "home", ".whatsapp-baileys", "taller-vidal");
  assert.ok(existsSync(state));
  rmSync(state, { recursive: true });
  const reset = new EngineProcess("whatsapp", environmentIn(home, quick));
  await reset.event(({ type }) => type === "qr");
  await reset.end();
});

test("people go on writing, now and then answer a send, and fall silent in the end", async () => {
  const engine = new EngineProcess("telegram", environmentIn(temporaryHome(after), quick));
  await engine.until((said) => said.filter(isLive).length >= 40);
  const talk = "700100233";
  for (let index = 0; index < 12; index++) engine.command({ cmd: "send", chatId: talk, text: `Number ${index}` });
  await engine.until((said) => said.filter(isLive).length >= 2 + 80 + 12 + 4);
  const live = (await engine.end()).filter(isLive);
  assert.equal(new Set(ids(live)).size, live.length);
  assert.ok(new Set(live.map(({ convExternalId }) => convExternalId)).size >= 6);
  // Two unread, eighty lines, twelve sends, and at most an answer for each.
  assert.ok(live.length <= 2 + 80 + 12 + 12);
  assert.ok(live.some(({ direction, convExternalId }) => direction === "IN" && convExternalId === talk));
});

test("an engine goes when its reader is gone", async () => {
  const engine = new EngineProcess("telegram", environmentIn(temporaryHome(after), quick));
  await engine.event(isMessage);
  engine.child.stdout?.destroy();
  assert.equal(await engine.exited, 0);
});

test("the real tool server works on the demonstration's profile", async () => {
  const port = await freePort();
  const server = startScript("nimb-mcp.ts", environmentIn(temporaryHome(after), { NIMB_MCP_PORT: String(port) }));
  const ended = new Promise((resolve) => server.on("close", resolve));
  try {
    await answering(async () => assert.equal((await fetch(`http://127.0.0.1:${port}/mcp`)).status, 401));
  } finally {
    server.kill("SIGTERM");
    assert.equal(await ended, 0);
  }
});

async function freePort(): Promise<number> {
  return new Promise((resolve) => {
    const probe = createServer().listen(0, "127.0.0.1", () => {
      const { port } = probe.address() as { port: number };
      probe.close(() => resolve(port));
    });
  });
}

async function answering(attempt: () => Promise<unknown>): Promise<void> {
  const deadline = Date.now() + patience;
  for (;;) {
    try {
      await attempt();
      return;
    } catch (error) {
      if (Date.now() > deadline) throw error;
      await new Promise((resolve) => setTimeout(resolve, 50));
    }
  }
}
