import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import { StandIn, type Answer, type Call } from "./stand-in.ts";
import { EngineProcess, isMessage, placeIn, source, temporaryFolder, type Event } from "./support.ts";

const account = "/2010-04-01/Accounts/AC1";
const mine = "+34911";
const sms = (sid: string, more: object = {}) => ({
  sid, from: "+34600", to: mine, body: `text ${sid}`, direction: "inbound", status: "received",
  date_created: "Thu, 09 Oct 2025 08:53:20 +0000", num_media: "0", error_code: null, error_message: null, ...more,
});

/** `log` has every message of the number, the newest first; a page has two. */
async function openTwilio(log: ReturnType<typeof sms>[], send: (call: Call) => Answer = () => undefined, signIn: Answer = { json: { status: "active" } }) {
  const standIn = await StandIn.open((call) => {
    const { path, query, method } = call;
    if (path === `${account}.json`) return signIn;
    if (method === "POST") return send(call);
    if (path.endsWith("/Media.json")) return { json: { media_list: [{ sid: "ME1", content_type: "image/jpeg" }] } };
    if (path.endsWith("/ME1")) return { status: 307, headers: { location: "/elsewhere" } };
    if (path === "/elsewhere") return call.headers.authorization ? { status: 400 } : { raw: "a picture" };
    const side = query.has("To") ? "to" : "from";
    const start = Number(query.get("Page") ?? 0);
    const all = log.filter((each) => each[side] === mine);
    const next = all.length > start + 2 ? `${path}?${side === "to" ? "To" : "From"}=x&Page=${start + 2}` : null;
    return { json: { messages: all.slice(start, start + 2), next_page_uri: next } };
  });
  after(() => standIn.close());
  const folder = temporaryFolder(after);
  const environment = { ...placeIn(folder), TWILIO_SID: "AC1", TWILIO_AUTH: "secret", TWILIO_FROM: "+34 911", CORVANE_TWILIO_API: standIn.address };
  return { standIn, folder, start: () => new EngineProcess(source("twilio-main.ts"), environment) };
}

test("a number's messages are told once, the old ones as history", async () => {
  const out = { from: mine, to: "+34600", direction: "outbound-api", status: "queued" };
  const log = [sms("SM4", out), sms("SM3", { body: "", num_media: "1" }), sms("SM2"), sms("SM1")];
  const { start, folder } = await openTwilio(log);
  const engine = start();
  const told = (await engine.until((events) => events.filter(isMessage).length === 4)).filter(isMessage);
  assert.deepEqual(told.map(({ providerMsgId, historical, direction }) => [providerMsgId, historical, direction]),
    [["SM3", true, "IN"], ["SM2", true, "IN"], ["SM1", true, "IN"], ["SM4", true, "OUT"]]);
  assert.deepEqual([told[0].mediaType, told[0].body, told[0].convExternalId], ["image", "[Document] File 1.jpg", "+34600"]);
  engine.command({ cmd: "downloadMedia", chatId: "+34600", messageId: "SM3" });
  assert.equal(readFileSync(String((await engine.event(({ state }) => state === "success")).mediaPath), "utf8"), "a picture");
  await engine.end();
  log[0].status = "delivered";
  log.unshift(sms("SM6"), sms("SM5"));
  const again = start();
  await again.event(({ type }) => type === "msgStatus");
  log[2].status = "undelivered";
  again.command({ cmd: "sync" });
  await again.event(({ msg }) => msg === "A message to +34600 was not delivered: undelivered");
  const news = (await again.end()).filter(isMessage);
  assert.deepEqual(news.map(({ providerMsgId, historical }) => [providerMsgId, historical]), [["SM5", undefined], ["SM6", undefined]]);
  writeFileSync(join(folder, "state", "retell"), "");
  const anew = start();
  await anew.until((events) => events.filter(isMessage).length === 6);
  assert.ok((await anew.end()).filter(isMessage).every(({ historical }) => historical));
});

test("an SMS goes out once, and what Twilio says decides", async () => {
  const answers: Answer[] = [{ status: 429, headers: { "retry-after": "1" }, json: { message: "slow" } }, { status: 201, json: sms("SM9", { from: mine, to: "+34600", direction: "outbound-api" }) },
    { status: 400, json: { code: 21211, message: "Invalid 'To' Phone Number" } }, undefined];
  const { start, standIn } = await openTwilio([], () => answers.shift());
  const engine = start();
  for (const chatId of ["+34 (600)", "+1", "+2", "600 000 000"]) engine.command({ cmd: "send", chatId, text: "hi", draftId: chatId });
  const acks = (events: Event[]): Event[] => events.filter(({ type }) => type === "sendAck");
  const said = acks(await engine.until((events) => acks(events).length === 4));
  assert.deepEqual(said.map(({ status, error }) => [status, error]).slice(0, 2), [["sent", undefined], ["failed", "Invalid 'To' Phone Number"]]);
  assert.deepEqual([said[2].status, said[3].status], ["uncertain", "failed"]);
  assert.deepEqual(standIn.calls.filter(({ method }) => method === "POST").map(({ fields }) => fields.To), ["+34600", "+34600", "+1", "+2"]);
  await engine.end();
});

test("a refused sign-in signs the account out", async () => {
  const { start } = await openTwilio([], undefined, { status: 401, json: { code: 20003, message: "Authenticate" } });
  const engine = start();
  assert.equal(await engine.exited, 0);
  assert.deepEqual(engine.events().slice(-2).map(({ state, msg }) => state ?? msg), ["Twilio does not accept the account: Authenticate", "logged_out"]);
});
