import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import { StandIn, type Answer, type Call } from "./stand-in.ts";
import { EngineProcess, isMessage, placeIn, source, temporaryFolder, type Event } from "./support.ts";

const ana = { id: 7, type: "private", first_name: "Ana", last_name: "Ruiz" };
const crew = { id: -100, type: "supergroup", title: "Crew" };
const from = { id: 7, is_bot: false, first_name: "Ana", last_name: "Ruiz" };
const photo = [{ file_id: "small", file_unique_id: "s", width: 1, height: 1 }, { file_id: "large", file_unique_id: "l", width: 9, height: 9 }];

let number = 0;
const message = (chat: object, more: object): object => ({ message_id: ++number, chat, from, date: 1_760_000_000, ...more });
const ok = (result: unknown): Answer => ({ json: { ok: true, result } });
const no = (code: number, description: string, parameters?: object): Answer => ({ status: code, json: { ok: false, error_code: code, description, parameters } });

/** Updates stay until the bot's offset has passed them. */
async function openTelegram(answers: Record<string, (call: Call) => Answer> = {}) {
  const updates: { update_id: number }[] = [];
  let wake = (): void => {};
  const standIn = await StandIn.open(async (call) => {
    const method = call.path.replace(/^.*\//, "");
    if (answers[method]) return answers[method](call);
    if (method === "getUpdates") {
      const { offset, timeout } = call.fields as { offset: number; timeout: number };
      while (updates[0] && updates[0].update_id < offset) updates.shift();
      if (updates.length === 0 && timeout > 0) await new Promise<void>((resolve) => (wake = resolve));
      return ok(updates);
    }
    if (method === "getMe") return ok({ id: 1, is_bot: true, first_name: "Shop", username: "shop_bot" });
    if (method === "getChat") return ok({ ...ana, photo: { small_file_id: "p", big_file_id: "P", big_file_unique_id: "mark" } });
    if (method === "getFile") return ok({ file_id: call.fields.file_id, file_path: `at/${call.fields.file_id}` });
    if (call.path.startsWith("/file/")) return { raw: `bytes of ${call.path.replace(/^.*\/at\//, "")}` };
    return ok(message(ana, { from: undefined, text: call.fields.text, ...(/filename=/.test(call.body) && { document: { file_id: "d", file_name: "plan.pdf" } }) }));
  });
  after(() => standIn.close());
  const folder = temporaryFolder(after);
  const environment = { ...placeIn(folder), TELEGRAM_BOT_TOKEN: "1:a-b", CORVANE_TELEGRAM_API: standIn.address };
  let next = 0;
  return {
    standIn, folder,
    start: () => new EngineProcess(source("telegram-main.ts"), environment),
    come: (...news: object[]) => (updates.push(...news.map((update) => ({ update_id: ++next, ...update }))), wake()),
  };
}

test("a bot mirrors who writes to it, and forgets nothing that is not stored", async () => {
  const { come, start, standIn } = await openTelegram();
  const links = [{ type: "text_link", offset: 0, length: 4, url: "https://example.org" }];
  come({ message: message(ana, { text: "Plan?", entities: links }) }, { message: message(crew, { photo }) });
  const first = start();
  first.acknowledges = false;
  await first.until((events) => events.filter(isMessage).length === 2);
  await first.kill();
  const engine = start();
  await engine.until((events) => events.some(({ type }) => type === "avatar") && events.filter(isMessage).length === 2);
  const [plan, picture] = engine.events().filter(isMessage);
  assert.deepEqual([plan.convExternalId, plan.body, plan.convTitle], ["7", "Plan (https://example.org)?", "Ana Ruiz"]);
  assert.deepEqual([picture.convExternalId, picture.sender, picture.mediaType], ["-100@g.us", "Ana Ruiz", "image"]);
  assert.deepEqual([picture.providerMsgId, picture.body, picture.historical], ["-100_2", "[Document] Photo 2025-10-09.jpg", undefined]);
  const avatar = await engine.event(({ type }) => type === "avatar");
  assert.equal(readFileSync(String(avatar.path), "utf8"), "bytes of P");
  engine.command({ cmd: "downloadMedia", chatId: "-100@g.us", messageId: "-100_2" });
  assert.equal(readFileSync(String((await engine.event(({ state }) => state === "success")).mediaPath), "utf8"), "bytes of large");
  come({ edited_message: { ...message(ana, { text: "Plan!" }), message_id: 1 } }, { message_reaction: { chat: ana, message_id: 1, new_reaction: [{ type: "emoji", emoji: "👍" }] } });
  assert.equal((await engine.event(({ type }) => type === "reaction")).targetProviderMsgId, "7_1");
  const edited = engine.events().filter(isMessage)[2];
  assert.deepEqual([edited.providerMsgId, edited.body, edited.historical], ["7_1", "Plan!", true]);
  engine.command({ cmd: "react", chatId: "-100@g.us", messageId: "-100_2", emoji: "🎉" });
  const { chat_id: chat, message_id: target } = (await standIn.called("/setMessageReaction")).fields;
  assert.deepEqual([chat, target], ["-100", 2]);
  await engine.end();
});

test("a draft goes out once, after the pause that Telegram asks for, and fails in its words", async () => {
  let tries = 0;
  const answers: Answer[] = [no(429, "Too Many Requests", { retry_after: 1 }), ok(message(ana, { text: "hi" })), no(429, "Too Many Requests", { retry_after: 600 }),
    no(400, "Bad Request: message is too strange"), undefined];
  const { start, standIn, folder } = await openTelegram({ sendMessage: () => answers[tries++] });
  const engine = start();
  for (const draftId of ["a", "b", "c", "d"]) engine.command({ cmd: "send", chatId: "7", text: `hi ${draftId}`, draftId });
  const path = join(folder, "plan.pdf");
  writeFileSync(path, "a plan");
  engine.command({ cmd: "send", chatId: "7", text: "", files: [{ path, name: "plan.pdf" }], draftId: "e" });
  const acks = (events: Event[]): Event[] => events.filter(({ type }) => type === "sendAck");
  const said = acks(await engine.until((events) => acks(events).length === 5));
  assert.deepEqual(said.map(({ status }) => status), ["sent", "failed", "failed", "uncertain", "sent"]);
  assert.match(String(said[1].error), /Try again in 10 minutes/);
  assert.equal(said[2].error, "message is too strange");
  const file = engine.events().filter(isMessage).at(-1);
  assert.deepEqual([file?.body, readFileSync(String(file?.mediaPath), "utf8")], ["[Document] plan.pdf", "a plan"]);
  assert.match(standIn.to("/sendDocument")[0].body, /a plan/);
  await engine.end();
});

test("a refused token signs the account out", async () => {
  const { start } = await openTelegram({ getMe: () => no(401, "Unauthorized") });
  const engine = start();
  assert.equal(await engine.exited, 0);
  assert.deepEqual(engine.events().slice(-2).map(({ state, msg }) => state ?? msg), ["Telegram does not accept the bot token any more.", "logged_out"]);
});
