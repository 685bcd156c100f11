import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import type { WebSocket } from "ws";
import { StandIn, type Answer, type Call } from "./stand-in.ts";
import { EngineProcess, isMessage, placeIn, source, temporaryFolder, type Event } from "./support.ts";

const ok = (more: object = {}): Answer => ({ json: { ok: true, ...more } });
const no = (error: string, more: object = {}): Answer => ({ json: { ok: false, error, ...more } });
const said = (ts: number, more: object = {}) => ({ type: "message", ts: `17600000${ts}.000100`, user: "U1", text: `text ${ts}`, ...more });

/** `past` has the messages of both chats, the newest first; a page has two. */
async function openSlack(past: ReturnType<typeof said>[], answers: Record<string, (call: Call) => Answer> = {}) {
  let socket: WebSocket;
  const usual: Record<string, (call: Call) => Answer> = {
    "auth.test": () => ok({ user_id: "UBOT", bot_id: "B1", user: "shop", team: "Workshop" }),
    "apps.connections.open": () => ok({ url: `${standIn.address.replace("http", "ws")}/socket` }),
    "users.conversations": ({ fields: { cursor } }) =>
      cursor ? ok({ channels: [{ id: "D1", is_im: true, user: "U1" }] }) : ok({ channels: [{ id: "C1", name: "general" }], response_metadata: { next_cursor: "more" } }),
    "conversations.history": ({ fields: { channel, latest, inclusive } }) =>
      ok({ messages: channel === "C1" ? past.filter(({ ts }) => !latest || ts < String(latest) || (inclusive && ts === latest)).slice(0, 2) : [] }),
    "users.info": () => ok({ user: { profile: { display_name: "Ana", image_192: `${standIn.address}/ana.jpg`, avatar_hash: "h" } } }),
    "files.getUploadURLExternal": () => ok({ upload_url: `${standIn.address}/upload`, file_id: "F1" }),
    "files.completeUploadExternal": () => ok({ files: [{ id: "F1", mimetype: "application/pdf" }] }),
    "files.info": () => ok({ file: { id: "F1", shares: { private: { D1: [{ ts: "1760000090.000100" }] } } } }),
    "reactions.get": () => ok({ message: { reactions: [{ name: "eyes", users: ["UBOT"] }] } }),
    "ana.jpg": ({ headers }) => ({ raw: `a picture for ${headers.authorization}` }),
    "reactions.remove": () => ok(), "reactions.add": () => ok(), upload: () => ok(),
  };
  const standIn = await StandIn.open((call) => {
    const method = call.path.replace(/^.*\//, "");
    return (answers[method] ?? usual[method] ?? (() => no("unknown_method")))(call);
  }, (opened) => (socket = opened).send(JSON.stringify({ type: "hello" })));
  after(() => standIn.close());
  const folder = temporaryFolder(after);
  const environment = { ...placeIn(folder), SLACK_APP_TOKEN: "xapp-1", SLACK_BOT_TOKEN: "xoxb-1", CORVANE_SLACK_API: standIn.address };
  return {
    standIn, folder,
    start: () => new EngineProcess(source("slack-main.ts"), environment),
    come: (event: object) => socket.send(JSON.stringify({ type: "events_api", envelope_id: "e", payload: { event } })),
    drop: () => socket.terminate(),
  };
}

test("channels are mirrored, what was missed is new, and the rest is history", async () => {
  const file = { id: "F", name: "a.png", mimetype: "image/png", url_private: "" };
  const past = [said(13, { text: "see <https://example.org|the plan>, <@U1> &amp; all" }), said(12, { subtype: "channel_join" }), said(11, { text: "", files: [file] })];
  const { start, come, drop, standIn } = await openSlack(past);
  file.url_private = `${standIn.address}/ana.jpg`;
  const engine = start();
  const [plan, picture] = (await engine.until((events) => events.filter(isMessage).length === 2)).filter(isMessage);
  assert.deepEqual([plan.convExternalId, plan.convTitle, plan.sender, plan.body, plan.historical], ["C1@g.us", "#general", "Ana", "see the plan (https://example.org), @Ana & all", true]);
  assert.deepEqual([picture.providerMsgId, picture.mediaType, picture.historical], ["C1_1760000011.000100", "image", true]);
  engine.command({ cmd: "downloadMedia", chatId: "C1@g.us", messageId: "C1_1760000011.000100" });
  assert.equal(readFileSync(String((await engine.event(({ state }) => state === "success")).mediaPath), "utf8"), "a picture for Bearer xoxb-1");
  come({ ...said(14), channel: "D1" });
  come({ type: "message", subtype: "message_changed", channel: "D1", message: said(14, { text: "better" }) });
  come({ type: "reaction_added", user: "U1", reaction: "tada", item: { type: "message", channel: "D1", ts: "1760000014.000100" } });
  assert.equal((await engine.event(({ type }) => type === "reaction")).emoji, "🎉");
  const [news, edited] = engine.events().filter(isMessage).slice(2);
  assert.deepEqual([news.convExternalId, news.convTitle, news.historical, edited.body, edited.historical], ["D1", "Ana", undefined, "better", true]);
  await engine.event(({ type }) => type === "avatar");
  past.unshift(said(19), said(18), said(17), said(16));
  drop();
  await engine.until((events) => events.filter(({ body }) => /text 1[6-9]/.test(String(body))).length === 4);
  await engine.end();
  const second = start();
  await second.event(({ state }) => state === "open");
  come({ ...said(20), channel: "C1" });
  await second.event(({ body }) => body === "text 20");
  const again = /text 1[6-9]/; // what was told last may not have been stored when the engine ended
  const told = (await second.end()).filter((event) => isMessage(event) && !again.test(String(event.body)));
  assert.deepEqual(told.map(({ body, historical }) => [body, historical]), [["text 20", undefined]]);
});

test("a draft goes out once as it was written, with its files", async () => {
  const answers: Answer[] = [{ status: 429, headers: { "retry-after": "1" }, json: {} }, ok({ ts: "1760000080.000100", message: { text: "a &lt;b&gt;", bot_id: "B1" } }), no("is_archived"), undefined];
  const { start, standIn, folder } = await openSlack([], { "chat.postMessage": () => answers.shift() });
  const engine = start();
  for (const draftId of ["a", "b", "c"]) engine.command({ cmd: "send", chatId: "C1@g.us", text: "a <b>", draftId });
  const path = join(folder, "plan.pdf");
  writeFileSync(path, "a plan");
  engine.command({ cmd: "send", chatId: "D1", text: "", files: [{ path, name: "plan.pdf" }], draftId: "d" });
  engine.command({ cmd: "react", chatId: "D1", messageId: "D1_1760000080.000100", emoji: "👍" });
  const acks = (events: Event[]): Event[] => events.filter(({ type }) => type === "sendAck");
  const ends = acks(await engine.until((events) => acks(events).length === 4));
  assert.deepEqual(ends.map(({ status, error }) => status === "failed" ? error : status), ["sent", "This channel is archived.", "uncertain", "sent"]);
  const [text, file] = engine.events().filter(isMessage);
  assert.deepEqual([text.body, text.direction, text.providerMsgId], ["a <b>", "OUT", "C1_1760000080.000100"]);
  assert.deepEqual([file.body, file.providerMsgId, readFileSync(String(file.mediaPath), "utf8")], ["[Document] plan.pdf", "D1_1760000090.000100", "a plan"]);
  assert.deepEqual([(await standIn.called("/upload")).body, standIn.to("/chat.postMessage")[0].fields.text], ["a plan", "a &lt;b&gt;"]);
  assert.equal((await standIn.called("/reactions.add")).fields.name, "+1");
  await engine.end();
});

test("refused tokens sign the account out", async () => {
  for (const [method, reason] of [["auth.test", "bot token"], ["apps.connections.open", "app token"]]) {
    const { start } = await openSlack([], { [method]: () => no("invalid_auth") });
    const engine = start();
    assert.equal(await engine.exited, 0);
    assert.deepEqual(engine.events().slice(-2).map(({ state, msg }) => state ?? msg), [`Slack does not accept the ${reason} (invalid_auth).`, "logged_out"]);
  }
});
