import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { createHash } from "node:crypto";
import { readFileSync, renameSync, statSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { contentOf } from "../src/content.ts";
import { liveTurns } from "../src/live.ts";
import { assetOf } from "../src/media/library.ts";
import { readRecords } from "../src/records.ts";
import { readWork } from "../src/work.ts";
import { readScript } from "../src/script.ts";
import {
  channels,
  EngineProcess,
  environmentIn,
  fixedNow,
  isLive,
  isMessage,
  standingStill,
  temporaryHome,
  type Event,
} from "./support.ts";

const home = temporaryHome(after);
let engines: EngineProcess[] = [];
const all = (): Event[] => engines.flatMap((engine) => engine.events());
const messages = (): Event[] => all().filter(isMessage);
const media = (): string[] => messages().flatMap(({ mediaPath }) => (mediaPath === undefined ? [] : [String(mediaPath)]));
const day = 86_400_000;

/** Runs each engine, standing still, to its end. */
async function runAll(): Promise<void> {
  engines = channels.map((channel) => new EngineProcess(channel, environmentIn(home, standingStill)));
  for (const engine of engines) await engine.end();
}
before(runAll);

test("25 people and three groups write about 600 messages in a month, and one of them 1,500 in three years", () => {
  const titles = new Set(messages().map((message) => String(message.convTitle)));
  const handles = new Set(messages().map((message) => String(message.convExternalId)));
  const groups = [...handles].filter((handle) => handle.endsWith("@g.us"));
  const machines = ["Taller Vidal Shop", "Kiln Monitor", "Poblenou Energía"];
  assert.equal(groups.length, 3);
  const people = titles.size - groups.length - machines.length;
  assert.ok(people >= 24 && people <= 28, `${people} people`);
  // Some of them write on two channels.
  assert.ok(handles.size - titles.size >= 4);

  const told = messages().filter((message) => message.historical === true);
  const history = told.filter(({ ts }) => Number(ts) > fixedNow - 31 * day);
  const earlier = told.filter((message) => !history.includes(message));
  assert.deepEqual([...new Set(earlier.map(({ convTitle }) => convTitle))], ["Diego Paredes"]);
  assert.ok(earlier.length >= 1500, `${earlier.length} messages`);
  assert.ok(history.length >= 580 && history.length <= 650, `${history.length} messages`);
  for (const { ts } of history) assert.ok(Number(ts) < fixedNow);
  assert.ok(Math.min(...history.map(({ ts }) => Number(ts))) < fixedNow - 28 * day);
});

test("no message id comes twice over the three engines, nor in the lines to come", () => {
  const ids = messages().map((message) => message.providerMsgId);
  for (const channel of channels) {
    const conversations = readScript(channel, contentOf(`${channel}.chat`), fixedNow);
    for (const { turn } of liveTurns(channel, fixedNow, conversations, 300)) {
      if ("message" in turn) ids.push(turn.message.id);
    }
  }
  assert.ok(ids.length > messages().length + 400);
  assert.equal(new Set(ids).size, ids.length);
});

test("a conversation is told in the order of its hours", () => {
  const last = new Map<unknown, number>();
  for (const { convExternalId, ts } of messages()) {
    assert.ok(Number(ts) >= (last.get(convExternalId) ?? 0), String(convExternalId));
    last.set(convExternalId, Number(ts));
  }
});

test("a handful of recent messages of several people wait unread", () => {
  const unread = all().filter(isLive);
  assert.ok(unread.length >= 9 && unread.length <= 14, `${unread.length} unread`);
  assert.ok(new Set(unread.map((message) => message.convExternalId)).size >= 7);
  for (const { direction, ts } of unread) {
    assert.equal(direction, "IN");
    assert.ok(Number(ts) > fixedNow - 3_600_000 && Number(ts) < fixedNow);
  }
});

test("the words come in many scripts, long and short, with links and several lines", () => {
  const bodies = messages().map((message) => String(message.body));
  const kinds = [/\p{Script=Arabic}/u, /\p{Script=Hebrew}/u, /\p{Script=Han}/u, /\p{Script=Hiragana}/u];
  for (const kind of [...kinds, /\p{Script=Cyrillic}/u, /\p{Extended_Pictographic}/u, /https:\/\//, /\n\n/]) {
    assert.ok(bodies.filter((body) => kind.test(body)).length >= 1, String(kind));
  }
  assert.ok(bodies.some((body) => body.length > 600));
  assert.ok(bodies.some((body) => body.length < 4));
  assert.ok(new Set(bodies).size > 420, `${new Set(bodies).size} different`);
});

test("statuses, reactions, names and faces are told", () => {
  const count = (type: string): number => all().filter((event) => event.type === type).length;
  assert.deepEqual(
    [...new Set(all().map(({ type, status }) => (type === "msgStatus" ? Number(status) : 0)))].sort(),
    [0, 1, 2, 3, 4],
  );
  assert.ok(count("reaction") >= 15 && count("contactName") >= 8 && count("avatar") >= 15);
  const known = new Set(messages().map((message) => message.providerMsgId));
  for (const event of all()) {
    if (event.type === "reaction") assert.ok(known.has(event.targetProviderMsgId));
  }
  assertDecodes(all().flatMap(({ type, path }) => (type === "avatar" ? [String(path)] : [])));
});

test("each kind of medium is there as a file of its kind, and some are still to be fetched", () => {
  const withMedia = messages().filter((message) => message.mediaType !== undefined);
  const kinds = new Set(withMedia.map((message) => message.mediaType));
  assert.deepEqual([...kinds].sort(), ["audio", "document", "gif", "image", "sticker", "video"]);
  assert.ok(withMedia.length - media().length >= 2);
  assertDecodes(media().filter((path) => !/\.(csv|pdf)$/.test(path)));
  for (const path of media().filter((each) => each.endsWith(".pdf"))) assertPdf(readFileSync(path, "latin1"));
  for (const path of media().filter((each) => each.endsWith(".wav"))) {
    const bytes = readFileSync(path);
    assert.equal(bytes.readUInt32LE(40), bytes.length - 44);
    assert.ok(new Int16Array(new Uint8Array(bytes.subarray(44)).buffer).some((sample) => sample > 4000), "silence");
  }
  for (const path of media().filter((each) => each.endsWith(".csv"))) {
    const rows = readFileSync(path, "utf8").trimEnd().split("\n");
    assert.equal(new Set(rows.map((row) => row.split(",").length)).size, 1);
  }
});

test("every medium of the lines to come can be made", () => {
  for (const channel of channels) {
    for (const { live, unread } of readScript(channel, contentOf(`${channel}.chat`), fixedNow)) {
      const later = [...unread, ...live.flatMap((turn) => ("message" in turn ? [turn.message] : []))];
      for (const { media } of later) {
        if (media !== undefined) assert.ok(assetOf(media).make().length > 80);
      }
    }
  }
});

test("the records speak of people who write, and who is somebody else says nothing more", () => {
  const people = channels.flatMap((channel) =>
    readScript(channel, contentOf(`${channel}.chat`), fixedNow).map((conversation) => ({
      id: `ct:${channel.toUpperCase()}:${conversation.handle}`,
      speaksLater:
        conversation.live.length + conversation.unread.length > 0 || (channel !== "email" && !conversation.isQuiet),
    })),
  );
  const records = readRecords();
  assert.equal(records[0].same.length, 2);
  for (const { contact, same } of records) {
    assert.ok(people.some(({ id }) => id === contact), contact);
    // A line that came later would give its conversation back.
    for (const other of same) assert.ok(people.some(({ id, speaksLater }) => id === other && !speaksLater), other);
  }
});

test("the work speaks of people who write, and of its own items", () => {
  const people = new Set(channels.flatMap((channel) =>
    readScript(channel, contentOf(`${channel}.chat`), fixedNow).map(({ handle }) => `ct:${channel.toUpperCase()}:${handle}`)));
  const { contexts, projects } = readWork();
  assert.ok(projects.length > 0);
  for (const { ref, items, decisions, evidence } of contexts) {
    assert.ok(ref === undefined || people.has(ref), ref);
    for (const { item } of [...decisions, ...evidence])
      assert.ok(item === undefined || items.some(({ id }) => id === item), item);
  }
});

test("a script with a line that nobody knows names the line", () => {
  assert.throws(
    () => readScript("whatsapp", "# 1@s.whatsapp.net | A | en\n@ 1d 10:00\n< hi\n?? what", fixedNow),
    /whatsapp\.chat:4/,
  );
  assert.throws(() => readScript("whatsapp", "< hi", fixedNow), /no conversation yet/);
});

test("every line is one event that the desktop knows", () => {
  for (const engine of engines) {
    assert.ok(engine.output.endsWith("\n"));
    for (const event of engine.events()) assertShape(event);
  }
});

test("an engine connects before it speaks, and WhatsApp shows a code in between", () => {
  for (const [index, engine] of engines.entries()) {
    const types = engine.events().map(({ type, state }) => (type === "status" ? state : type));
    const code = channels[index] === "whatsapp" ? ["qr"] : [];
    assert.deepEqual(types.slice(0, 2 + code.length), ["connecting", ...code, "open"]);
    assert.equal(types.slice(2 + code.length).indexOf("open"), -1);
  }
});

test("two first runs at the same hour print the same bytes and draw the same files", async () => {
  const prints = (): string[] =>
    [...engines.map(({ output }) => output), ...media().map((path) => readFileSync(path, "latin1"))].map((content) =>
      createHash("sha256").update(content).digest("hex"),
    );
  const before = prints();
  assert.ok(before.length > 40);
  for (const folder of ["home", "share"]) renameSync(join(home, folder), join(home, `${folder}-before`));
  await runAll();
  assert.deepEqual(prints(), before);
});

const text = (value: unknown): boolean => typeof value === "string" && value !== "";
const whole = (value: unknown): boolean => Number.isSafeInteger(value);
const oneOf =
  (...values: unknown[]) =>
  (value: unknown): boolean =>
    values.includes(value);
const maybe =
  (fits: (value: unknown) => boolean) =>
  (value: unknown): boolean =>
    value === undefined || fits(value);

/** What the desktop reads of each event. */
const shapes: Record<string, Record<string, (value: unknown) => boolean>> = {
  qr: { qr: text },
  status: { state: oneOf("connecting", "open"), user: maybe(text) },
  log: { msg: text },
  avatar: { jid: text, path: text },
  contactName: { jid: text, name: text },
  msgStatus: { providerMsgId: text, status: oneOf(1, 2, 3, 4) },
  reaction: { targetProviderMsgId: text, emoji: text },
  message: {
    convExternalId: text,
    convTitle: text,
    providerMsgId: (value) => text(value) && !String(value).includes(":"),
    direction: oneOf("IN", "OUT"),
    body: text,
    ts: whole,
    sender: maybe(text),
    mediaType: maybe(oneOf("image", "audio", "video", "document", "sticker", "gif")),
    mediaPath: maybe(text),
    historical: maybe(oneOf(true)),
  },
};

function assertShape(event: Event): void {
  const { type, ack, ...rest } = event;
  assert.ok(ack === undefined || Number(ack) > 0);
  const shape = shapes[type];
  assert.ok(shape !== undefined, `an unknown event: ${type}`);
  for (const [key, fits] of Object.entries(shape)) assert.ok(fits(rest[key]), `${key} of ${JSON.stringify(event)}`);
  for (const key of Object.keys(rest)) assert.ok(key in shape, `${type} has no ${key}`);
}

/** Another program reads them whole, and nothing is blank. */
function assertDecodes(paths: string[]): void {
  for (const path of paths) assert.ok(statSync(path).size > 5000, path);
  const inputs = paths.flatMap((path) => ["-i", path]);
  const streams = paths.flatMap((_, index) => ["-map", String(index)]);
  const end = spawnSync("ffmpeg", ["-v", "error", ...inputs, ...streams, "-f", "null", "-"], { encoding: "utf8" });
  assert.deepEqual([end.status, end.stderr], [0, ""]);
}

function assertPdf(text: string): void {
  const start = Number(/startxref\n(\d+)\n%%EOF\n$/.exec(text)?.[1]);
  assert.ok(text.startsWith("xref\n", start));
  const places = [...text.slice(start).matchAll(/^(\d{10}) 00000 n $/gm)].map((match) => Number(match[1]));
  assert.equal(places.length, 5);
  places.forEach((place, index) => assert.ok(text.startsWith(`${index + 1} 0 obj`, place)));
  const stream = /\/Length (\d+) >>\nstream\n([^]*?)\nendstream/.exec(text);
  assert.equal(stream?.[2].length, Number(stream?.[1]));
}
