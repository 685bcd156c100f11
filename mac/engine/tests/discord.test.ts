import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import type { WebSocket } from "ws";
import { StandIn, type Answer, type Call } from "./stand-in.ts";
import { EngineProcess, isMessage, placeIn, source, temporaryFolder, type Event } from "./support.ts";

const ana = { id: "7", username: "ana", global_name: "Ana Ruiz", avatar: "face" };
const bot = { id: "1", username: "shop", global_name: null, avatar: null, bot: true };
const said = (id: number, more: object = {}) => ({
  id: String(id), channel_id: "20", author: ana, type: 0, content: `text ${id}`, timestamp: "2025-10-09T08:53:20Z", attachments: [] as object[], embeds: [], mentions: [], ...more,
});
const no = (status: number, code: number, message: string): Answer => ({ status, json: { code, message } });

/** `past` has the messages of the server's only channel, the newest first. */
async function openDiscord(past: ReturnType<typeof said>[], answers: Record<string, (call: Call) => Answer> = {}, refusal?: number) {
  let [socket, sequence]: [WebSocket | undefined, number] = [undefined, 0];
  const come = (t: string, d: object): void => socket?.send(JSON.stringify({ op: 0, t, s: ++sequence, d }));
  const limit = { total: 1000, remaining: 999, reset_after: 1, max_concurrency: 1 };
  const usual: Record<string, (call: Call) => Answer> = {
    "GET /gateway/bot": () => ({ json: { url: standIn.address.replace("http", "ws"), shards: 1, session_start_limit: limit } }),
    "GET /channels/20/messages": ({ query }) => ({ json: past.filter(({ id }) => !query.get("before") || Number(id) < Number(query.get("before"))).slice(0, 2) }),
    "GET /channels/20/messages/11": () => ({ json: { ...past.find(({ id }) => id === "11"), reactions: [{ me: true, emoji: { id: null, name: "👀" } }] } }),
    "GET /channels/30": () => ({ json: { id: "30", type: 1, recipients: [ana] } }),
    "GET /file": () => ({ raw: "a picture" }),
    "GET /avatars/7/face.png": () => ({ raw: "a face" }),
  };
  const standIn = await StandIn.open(({ path, ...call }) => {
    const route = `${call.method} ${decodeURIComponent(path.replace("/api/v10", ""))}`;
    return (answers[route] ?? usual[route] ?? (/reactions/.test(route) ? () => ({ status: 204, raw: "" }) : () => no(404, 10003, "Unknown Channel")))({ path, ...call });
  }, (opened) => {
    socket = opened;
    opened.send(JSON.stringify({ op: 10, d: { heartbeat_interval: 40_000 } }));
    opened.on("message", (data) => {
      const { op } = JSON.parse(String(data)) as { op: number };
      if (op === 2 && refusal) opened.close(refusal);
      if (op === 6) come("RESUMED", {});
      if (op !== 2 || refusal) return;
      come("READY", { v: 10, user: bot, guilds: [{ id: "9", unavailable: true }], session_id: "s", resume_gateway_url: standIn.address.replace("http", "ws"), application: { id: "1", flags: 0 } });
      come("GUILD_CREATE", { id: "9", name: "Workshop", channels: [{ id: "20", type: 0, name: "general", position: 0 }], threads: [], members: [], roles: [], emojis: [], stickers: [], voice_states: [], presences: [], stage_instances: [], guild_scheduled_events: [] });
    });
  });
  after(() => standIn.close());
  const folder = temporaryFolder(after);
  const environment = { ...placeIn(folder), DISCORD_BOT_TOKEN: "t.o.ken", CORVANE_DISCORD_API: standIn.address };
  return { standIn, folder, come, drop: () => socket?.terminate(), start: () => new EngineProcess(source("discord-main.ts"), environment) };
}

test("servers and direct chats are mirrored, and what was missed is new", async () => {
  const past = [said(13, { content: "<@7> in <#20> <:yes:5>", mentions: [ana] }), said(12, { type: 7 }), said(11, { content: "" })];
  const { start, come, drop, standIn, folder } = await openDiscord(past);
  past[2].attachments.push({ id: "f", filename: "a.png", content_type: "image/png", url: `${standIn.address}/file` });
  const engine = start();
  const [text, picture] = (await engine.until((events) => events.filter(isMessage).length === 2)).filter(isMessage);
  assert.deepEqual([text.convExternalId, text.convTitle, text.sender, text.body, text.historical], ["20@g.us", "#general (Workshop)", "Ana Ruiz", "@Ana Ruiz in #general :yes:", true]);
  assert.deepEqual([picture.providerMsgId, picture.body, picture.mediaType], ["11", "[Document] a.png", "image"]);
  engine.command({ cmd: "downloadMedia", chatId: "20@g.us", messageId: "11" });
  assert.equal(readFileSync(String((await engine.event(({ state }) => state === "success")).mediaPath), "utf8"), "a picture");
  come("MESSAGE_CREATE", said(31, { channel_id: "30" }));
  come("MESSAGE_UPDATE", said(31, { channel_id: "30", content: "better" }));
  come("MESSAGE_REACTION_ADD", { user_id: "7", channel_id: "30", message_id: "31", emoji: { id: null, name: "🎉" } });
  assert.equal((await engine.event(({ type }) => type === "reaction")).targetProviderMsgId, "31");
  const [news, edited] = engine.events().filter(isMessage).slice(2);
  assert.deepEqual([news.convExternalId, news.convTitle, news.historical, edited.body, edited.historical], ["30", "Ana Ruiz", undefined, "better", true]);
  assert.equal(readFileSync(String((await engine.event(({ type }) => type === "avatar")).path), "utf8"), "a face");
  engine.command({ cmd: "react", chatId: "20@g.us", messageId: "11", emoji: "👍" });
  await standIn.called("/%F0%9F%91%8D/@me");
  assert.equal(standIn.calls.at(-2)?.method, "DELETE");
  drop();
  await engine.until((events) => events.filter(({ state }) => state === "open").length === 2);
  await engine.end();
  past.unshift(said(42), said(41), said(40));
  const second = start();
  await second.until((events) => events.filter(isMessage).length === 3);
  assert.deepEqual((await second.end()).filter(isMessage).map(({ historical }) => historical), [undefined, undefined, undefined]);
  writeFileSync(join(folder, "state", "retell"), "");
  const anew = start();
  await anew.until((events) => events.filter(isMessage).length === 5);
  await anew.event(({ msg }) => /history of 30/.test(String(msg))); // it is asked for, too
  assert.ok((await anew.end()).filter(isMessage).every(({ historical }) => historical));
});

test("a draft goes out once, after the pause that Discord asks for, with its files", async () => {
  const answers: Answer[] = [{ status: 429, headers: { "retry-after": "1" }, json: { retry_after: 1, global: false } }, { json: said(50, { author: bot, content: "hi" }) },
    no(403, 50007, "Cannot send messages to this user"), undefined,
    { json: said(51, { author: bot, content: "", attachments: [{ id: "f", filename: "plan.pdf", content_type: "application/pdf" }] }) }];
  const { start, standIn, folder } = await openDiscord([], { "POST /channels/20/messages": () => answers.shift() });
  const engine = start();
  await engine.event(({ state }) => state === "open");
  for (const draftId of ["a", "b", "c"]) engine.command({ cmd: "send", chatId: "20@g.us", text: "hi", draftId });
  const path = join(folder, "plan.pdf");
  writeFileSync(path, "a plan");
  engine.command({ cmd: "send", chatId: "20@g.us", text: "", files: [{ path, name: "plan.pdf" }], draftId: "d" });
  const acks = (events: Event[]): Event[] => events.filter(({ type }) => type === "sendAck");
  const ends = acks(await engine.until((events) => acks(events).length === 4));
  assert.deepEqual(ends.map(({ status, error }) => (status === "failed" ? error : status)), ["sent", "Cannot send messages to this user", "uncertain", "sent"]);
  const file = engine.events().filter(isMessage).at(-1);
  assert.deepEqual([file?.direction, file?.body, readFileSync(String(file?.mediaPath), "utf8")], ["OUT", "[Document] plan.pdf", "a plan"]);
  assert.match(standIn.calls.at(-1)?.body ?? "", /a plan/);
  await engine.end();
});

test("a bot that Discord refuses is signed out, with the reason", async () => {
  const refused = async (post: Awaited<ReturnType<typeof openDiscord>>, reason: RegExp): Promise<void> => {
    const engine = post.start();
    assert.equal(await engine.exited, 0);
    const [log, status] = engine.events().slice(-2);
    assert.match(String(log.msg), reason);
    assert.equal(status.state, "logged_out");
  };
  await refused(await openDiscord([], { "GET /gateway/bot": () => no(401, 0, "401: Unauthorized") }), /bot token/);
  await refused(await openDiscord([], {}, 4014), /Message Content/);
});
