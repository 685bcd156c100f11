import assert from "node:assert/strict";
import { existsSync, readFileSync } from "node:fs";
import { after, before, test } from "node:test";
import { inflateSync } from "node:zlib";
import { contentOf } from "../src/content.ts";
import { liveTurns } from "../src/live.ts";
import { assetOf } from "../src/media/library.ts";
import { readRecords } from "../src/records.ts";
import { readScript } from "../src/script.ts";
import { channels, fixedNow, isLive, isMessage, temporaryHome, told, type Channel, type Event } from "./support.ts";

const home = temporaryHome(after);
const said = new Map<Channel, Event[]>();
const all = (): Event[] => [...said.values()].flat();
const messages = (): Event[] => all().filter(isMessage);
const day = 86_400_000;

before(async () => {
  for (const channel of channels) said.set(channel, await told(channel, home));
});

test("a business of 25 people and three groups writes about 600 messages in a month", () => {
  const titles = new Set(messages().map((message) => String(message.convTitle)));
  const handles = new Set(messages().map((message) => String(message.convExternalId)));
  const groups = [...handles].filter((handle) => handle.endsWith("@g.us"));
  const machines = ["Taller Vidal Shop", "Kiln Monitor", "Poblenou Energía"];
  assert.equal(groups.length, 3);
  const people = titles.size - groups.length - machines.length;
  assert.ok(people >= 24 && people <= 28, `${people} people`);
  // Some of them write on two channels.
  assert.ok(handles.size - titles.size >= 4);

  const history = messages().filter((message) => message.historical === true);
  assert.ok(history.length >= 580 && history.length <= 650, `${history.length} messages`);
  for (const { ts } of history) assert.ok(Number(ts) < fixedNow && Number(ts) > fixedNow - 31 * day);
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
    if (event.type === "avatar") assertPng(readFileSync(String(event.path)));
  }
});

test("each kind of medium is there as a file of its kind, and some are still to be fetched", () => {
  const withMedia = messages().filter((message) => message.mediaType !== undefined);
  const kinds = new Set(withMedia.map((message) => message.mediaType));
  assert.deepEqual([...kinds].sort(), ["audio", "document", "gif", "image", "sticker", "video"]);
  const missing = withMedia.filter((message) => message.mediaPath === undefined);
  assert.ok(missing.length >= 2);
  for (const { mediaPath } of withMedia) {
    if (mediaPath === undefined) continue;
    assert.ok(existsSync(String(mediaPath)), String(mediaPath));
    assertFile(String(mediaPath));
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

test("a script with a line that nobody knows names the line", () => {
  assert.throws(
    () => readScript("whatsapp", "# 1@s.whatsapp.net | A | en\n@ 1d 10:00\n< hi\n?? what", fixedNow),
    /whatsapp\.chat:4/,
  );
  assert.throws(() => readScript("whatsapp", "< hi", fixedNow), /no conversation yet/);
});

function assertFile(path: string): void {
  const bytes = readFileSync(path);
  const ending = path.slice(path.lastIndexOf("."));
  if (ending === ".png") return assertPng(bytes);
  if (ending === ".wav") return assertWav(bytes);
  if (ending === ".gif") return assertGif(bytes);
  if (ending === ".mov") return assertMovie(bytes);
  if (ending === ".pdf") return assertPdf(bytes.toString("latin1"));
  assert.equal(ending, ".csv");
  const widths = bytes
    .toString("utf8")
    .trimEnd()
    .split("\n")
    .map((row) => row.split(",").length);
  assert.equal(new Set(widths).size, 1);
}

/** Whole rows, and more than one colour. */
function assertPng(bytes: Buffer): void {
  assert.equal(bytes.toString("latin1", 1, 4), "PNG");
  const [width, height] = [bytes.readUInt32BE(16), bytes.readUInt32BE(20)];
  const depth = bytes[25] === 6 ? 4 : 3;
  const rows = inflateSync(bytes.subarray(41, 41 + bytes.readUInt32BE(33)));
  assert.equal(rows.length, (width * depth + 1) * height);
  assert.ok(new Set(rows).size > 8);
}

function assertWav(bytes: Buffer): void {
  assert.equal(bytes.readUInt32LE(4), bytes.length - 8);
  assert.equal(bytes.readUInt32LE(40), bytes.length - 44);
  const samples = new Int16Array(bytes.buffer.slice(bytes.byteOffset + 44, bytes.byteOffset + bytes.length));
  assert.ok(Math.max(...samples.subarray(0, 16_000)) > 4000);
}

function assertGif(bytes: Buffer): void {
  assert.equal(bytes.toString("latin1", 0, 6), "GIF89a");
  let at = 13 + 256 * 3;
  let frames = 0;
  const skipBlocks = (): void => {
    while (bytes[at] !== 0) at += bytes[at] + 1;
    at += 1;
  };
  for (; bytes[at] !== 0x3b; skipBlocks()) {
    assert.ok(bytes[at] === 0x21 || bytes[at] === 0x2c);
    if (bytes[at] === 0x2c) frames += 1;
    at += bytes[at] === 0x2c ? 11 : 2;
  }
  assert.equal(at, bytes.length - 1);
  assert.equal(frames, 12);
}

/** The atoms fill the file, and each frame stands where the table says. */
function assertMovie(bytes: Buffer): void {
  const types: string[] = [];
  for (let at = 0; at < bytes.length; at += bytes.readUInt32BE(at))
    types.push(bytes.toString("latin1", at + 4, at + 8));
  assert.deepEqual(types, ["ftyp", "mdat", "moov"]);
  const offsets = bytes.indexOf("stco") + 8;
  const sizes = bytes.indexOf("stsz") + 12;
  const count = bytes.readUInt32BE(offsets);
  assert.equal(count, bytes.readUInt32BE(sizes));
  for (let frame = 0; frame < count; frame++) {
    const from = bytes.readUInt32BE(offsets + 4 + frame * 4);
    assertPng(bytes.subarray(from, from + bytes.readUInt32BE(sizes + 4 + frame * 4)));
  }
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
