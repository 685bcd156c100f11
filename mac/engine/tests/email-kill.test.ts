// Kills the engine at the worst moments: 30 times, or as often as CORVANE_TEST_KILLS says.

import assert from "node:assert/strict";
import { test } from "node:test";
import { simpleParser } from "mailparser";
import { fillInbox, numbers } from "./mail-corpus.ts";
import { messages, openPost, servers } from "./mail-support.ts";
import type { EngineProcess, Event } from "./support.ts";

const kills = Number(process.env.CORVANE_TEST_KILLS ?? 30);
const number = numbers(kills);

test("killed while it reads, it loses no mail and none counts as new twice", async () => {
  const { me, put, start } = openPost();
  const count = 15 * kills;
  fillInbox(servers.maildir(me), me, count);
  /** What Corvane would have stored, and which of it counts as new. */
  const stored = new Set<unknown>();
  const announced: unknown[] = [];
  const keep = (engine: EngineProcess): void => {
    for (const { type, ack, providerMsgId, historical, subject } of engine.events()) {
      if (type !== "message" || Number(ack) > engine.acknowledged || stored.has(providerMsgId)) continue;
      stored.add(providerMsgId);
      if (!historical) announced.push(subject);
    }
  };
  for (let round = 0; round < kills / 2; round++) {
    const engine = start();
    await engine.until((events) => messages(events).length > 0); // what comes before the inbox is open is history
    if (round % 2 === 0) await put(`live ${round}`);
    const wanted = number(count - stored.size > 60 ? 60 : 1);
    await engine.until((events) => messages(events).length >= wanted);
    await engine.kill();
    keep(engine);
  }
  const last = start();
  await last.event(({ state }) => state === "open");
  const mails = (): number => [...stored].filter((id) => !String(id).includes("/")).length;
  await last.until(() => (keep(last), mails() >= count + Math.ceil(kills / 4)));
  await last.end();
  keep(last);
  assert.equal(mails(), count + Math.ceil(kills / 4));
  assert.deepEqual(announced.sort(), Array.from({ length: Math.ceil(kills / 4) }, (_, index) => `live ${index * 2}`).sort());
});

test("killed while it sends, it sends nothing twice and admits what it does not know", async () => {
  const { start } = openPost();
  const arrived: string[] = [];
  let killAt: "recipient" | "data" | "answer" | "later" = "later";
  let engine: EngineProcess;
  servers.submission.onRcptTo = (_, __, done) => {
    if (killAt === "recipient") engine.child.kill("SIGKILL");
    done();
  };
  servers.submission.beforeAnswer = async (bytes) => {
    if (killAt === "data") engine.child.kill("SIGKILL");
    arrived.push((await simpleParser(bytes)).text?.trim() ?? "");
  };
  const isFor = (draftId: string) => ({ type, draftId: named }: Event): boolean => type === "sendAck" && named === draftId;
  const outcomes = new Map<string, number>();
  for (let round = 0; round < kills / 2; round++) {
    killAt = (["recipient", "data", "answer", "later"] as const)[round % 4];
    const draftId = `od:${round}`;
    const command = { cmd: "send", chatId: "ana@example.org", text: draftId, subject: "S", draftId };
    engine = start();
    engine.acknowledges = false;
    engine.command(command);
    if (killAt === "answer") await engine.event(isFor(draftId));
    else if (killAt === "later") await engine.until((events) => events.length > number(5));
    if (killAt !== "recipient" && killAt !== "data") engine.child.kill("SIGKILL");
    await engine.exited;
    killAt = "later";
    // A desktop that did not get the answer would send the command again.
    const next = start();
    engine = next;
    next.command(command);
    const { status } = await next.event(isFor(draftId));
    await next.end();
    const times = arrived.filter((text) => text === draftId).length;
    outcomes.set(String(status), (outcomes.get(String(status)) ?? 0) + 1);
    if (status === "sent") assert.equal(times, 1);
    else assert.ok(status === "uncertain" && times <= 1, `${status}, ${times} times`);
  }
  servers.submission.onRcptTo = servers.submission.beforeAnswer = undefined;
  assert.ok((outcomes.get("sent") ?? 0) >= kills / 4 && (outcomes.get("uncertain") ?? 0) > 0, JSON.stringify([...outcomes]));
});
