import assert from "node:assert/strict";
import { existsSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { EngineProcess, environmentIn, isMessage, standingStill, temporaryHome, unnumbered, type Event } from "./support.ts";

after(() => engine.end());
const home = temporaryHome(after);
const james = "447700900112@s.whatsapp.net";
let engine: EngineProcess;
let history: Event[] = [];

/** What the engine says to a command, up to the answer to one that always answers. */
async function answers(command: object): Promise<Event[]> {
  const from = engine.events().length;
  engine.command(command);
  engine.command({ cmd: "sync" });
  const events = await engine.until((said) => said.slice(from).some(({ msg }) => msg === "Everything is up to date"));
  return events.slice(from).filter(({ msg }) => msg !== "Everything is up to date").map(unnumbered);
}

before(async () => {
  engine = new EngineProcess("whatsapp", environmentIn(home, standingStill));
  await answers({ cmd: "markRead", chatId: james });
  history = engine.events();
});

const types = (events: Event[]): string[] => events.map(({ type }) => type);

test("a send comes back as an outgoing message that is delivered step by step", async () => {
  const said = await answers({ cmd: "send", chatId: james, text: "Stackable, yes. مرحبا 👋" });
  assert.deepEqual(types(said), ["message", "msgStatus", "msgStatus", "msgStatus", "msgStatus"]);
  const [message, ...statuses] = said;
  assert.equal(message.body, "Stackable, yes. مرحبا 👋");
  assert.deepEqual([message.direction, message.convExternalId, message.convTitle], ["OUT", james, "James Okafor"]);
  assert.deepEqual(
    statuses.map(({ status }) => status),
    [1, 2, 3, 4],
  );
  for (const { providerMsgId } of statuses) assert.equal(providerMsgId, message.providerMsgId);
});

test("only a send for a draft is acknowledged, with the id of its message", async () => {
  const said = await answers({ cmd: "send", chatId: james, text: "Approved", draftId: "od:1:1234" });
  const [message] = said.filter(isMessage);
  const acks = said.filter(({ type }) => type === "sendAck");
  assert.deepEqual(acks, [
    { type: "sendAck", draftId: "od:1:1234", status: "sent", providerMsgId: message.providerMsgId },
  ]);
});

test("a draft that comes again goes out once and is acknowledged again", async () => {
  const draft = { cmd: "send", chatId: james, text: "Once", draftId: "od:4:1234" };
  const first = await answers(draft);
  const again = await answers(draft);
  assert.deepEqual(again, first.filter(({ type }) => type === "sendAck"));
  assert.equal((await answers({ ...draft, text: "Another text" })).filter(isMessage).length, 1);
});

test("a draft that cannot be sent fails with its reason", async () => {
  const [empty] = await answers({ cmd: "send", chatId: james, text: " \n", draftId: "od:2:1234" });
  assert.deepEqual([empty.type, empty.draftId, empty.status], ["sendAck", "od:2:1234", "failed"]);
  const [placed] = await answers({ cmd: "draft", threadId: james, text: "Hello", draftId: "od:3:1234" });
  assert.deepEqual([placed.type, placed.status], ["sendAck", "failed"]);
  assert.match(String(placed.error), /places no drafts/);
});

test("somebody new is called by the number", async () => {
  const [message] = await answers({ cmd: "send", chatId: "34600000999@s.whatsapp.net", text: "Hello" });
  assert.equal(message.convTitle, "+34600000999");
});

test("a voice note is kept as a copy, and one without a file says so", async () => {
  const recording = join(home, "corvane-voice-1.m4a");
  writeFileSync(recording, "sound");
  const [message] = await answers({ cmd: "sendAudio", chatId: james, path: recording });
  assert.deepEqual([message.direction, message.mediaType, message.body], ["OUT", "audio", "[Audio]"]);
  assert.notEqual(message.mediaPath, recording);
  assert.equal(readFileSync(String(message.mediaPath), "utf8"), "sound");
  const [failure] = await answers({ cmd: "sendAudio", chatId: james, path: join(home, "nothing.m4a") });
  assert.equal(failure.type, "log");
  assert.match(String(failure.msg), /could not be read/);
});

test("a reaction comes back for its message", async () => {
  const target = history.find(isMessage)?.providerMsgId;
  const said = await answers({ cmd: "react", chatId: james, messageId: target, fromMe: false, emoji: "🔥" });
  assert.deepEqual(said, [{ type: "reaction", targetProviderMsgId: target, emoji: "🔥" }]);
});

test("older messages come as pages of the past, until there are none", async () => {
  const mine = history.filter((event) => isMessage(event) && event.convExternalId === james);
  const ids = new Set(mine.map(({ providerMsgId }) => providerMsgId));
  let oldest = Math.min(...mine.map(({ ts }) => Number(ts)));
  for (let page = 0; page < 4; page++) {
    const older = (await answers({ cmd: "loadMore", chatId: james, count: 50 })).filter(isMessage);
    assert.equal(older.length, 50);
    for (const message of older) {
      assert.equal(message.historical, true);
      assert.ok(Number(message.ts) < oldest);
      assert.ok(!ids.has(message.providerMsgId));
      ids.add(message.providerMsgId);
    }
    oldest = Math.min(...older.map(({ ts }) => Number(ts)));
  }
  assert.deepEqual(await answers({ cmd: "loadMore", chatId: james, count: 50 }), [
    { type: "log", msg: "There are no older messages" },
  ]);
});

test("a medium is fetched when asked for, and one that is lost fails in words", async () => {
  const waiting = history.filter((event) => event.mediaType !== undefined && event.mediaPath === undefined);
  const ends = new Map<string, Event>();
  for (const { convExternalId, providerMsgId } of waiting) {
    const said = await answers({
      cmd: "downloadMedia",
      chatId: convExternalId,
      messageId: providerMsgId,
      fromMe: false,
    });
    assert.deepEqual([said.length, said[0].state, said[1].providerMsgId], [2, "requested", providerMsgId]);
    ends.set(String(said[1].state), said[1]);
  }
  assert.equal(ends.get("success")?.mediaType, "image");
  assert.ok(existsSync(String(ends.get("success")?.mediaPath)));
  assert.match(String(ends.get("failed")?.error), /no longer on the sender's phone/);
  const [unknown] = await answers({ cmd: "downloadMedia", chatId: james, messageId: "nothing", fromMe: false });
  assert.equal(unknown.state, "failed");
});

test("a face that was not announced comes when it is asked for, and nobody invents one", async () => {
  const announced = new Set(history.map(({ type, jid }) => (type === "avatar" ? jid : "")));
  const ingrid = "46700000144@s.whatsapp.net";
  assert.ok(!announced.has(ingrid));
  const [face] = await answers({ cmd: "fetchAvatar", jid: ingrid });
  assert.deepEqual([face.type, face.jid], ["avatar", ingrid]);
  assert.ok(existsSync(String(face.path)));
  assert.deepEqual(await answers({ cmd: "fetchAvatar", jid: "34600000166@s.whatsapp.net" }), []);
  assert.deepEqual(await answers({ cmd: "fetchAvatar", jid: "nobody" }), []);
});

test("what is no command is passed over", async () => {
  engine.child.stdin?.write('not json\n[1]\nnull\n{"cmd":7}\n\n{"cmd":"send"\n');
  assert.deepEqual(await answers({ cmd: "dance" }), []);
  assert.deepEqual(await answers({ cmd: "markRead", chatId: james }), []);
});

test("before the phone is paired nothing is sent", async () => {
  const other = temporaryHome(after);
  const unpaired = new EngineProcess("whatsapp", environmentIn(other, { CORVANE_DEMO_PAIRING_SECONDS: "600" }));
  await unpaired.event(({ type }) => type === "qr");
  unpaired.command({ cmd: "send", chatId: james, text: "Hello", draftId: "od:4:1234" });
  const ack = await unpaired.event(({ type }) => type === "sendAck");
  assert.deepEqual([ack.status, ack.error], ["failed", "Not connected yet"]);
  const said = await unpaired.end();
  assert.equal(said.filter(isMessage).length, 0);
});
