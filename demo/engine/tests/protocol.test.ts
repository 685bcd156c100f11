import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import { readdirSync, readFileSync, renameSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import {
  channels,
  EngineProcess,
  environmentIn,
  standingStill,
  temporaryHome,
  type Channel,
  type Event,
} from "./support.ts";

const home = temporaryHome(after);
const printed = new Map<Channel, EngineProcess>();

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
  const { type, ...rest } = event;
  const shape = shapes[type];
  assert.ok(shape !== undefined, `an unknown event: ${type}`);
  for (const [key, fits] of Object.entries(shape)) assert.ok(fits(rest[key]), `${key} of ${JSON.stringify(event)}`);
  for (const key of Object.keys(rest)) assert.ok(key in shape, `${type} has no ${key}`);
}

async function runAll(): Promise<void> {
  for (const channel of channels) {
    const engine = new EngineProcess(channel, environmentIn(home, standingStill));
    await engine.end();
    printed.set(channel, engine);
  }
}

function mediaPrints(): Record<string, string> {
  const folder = join(home, "share", "Corvane", "media");
  const files = readdirSync(folder, { recursive: true, withFileTypes: true }).filter((entry) => entry.isFile());
  return Object.fromEntries(
    files.map(({ parentPath, name }) => {
      const path = join(parentPath, name);
      return [path, createHash("sha256").update(readFileSync(path)).digest("hex")];
    }),
  );
}

before(runAll);

test("every line is one event that the desktop knows", () => {
  for (const engine of printed.values()) {
    assert.ok(engine.output.endsWith("\n"));
    for (const event of engine.events()) assertShape(event);
  }
});

test("a line is plain ASCII, so that no chunk of it splits a character", () => {
  for (const engine of printed.values()) assert.match(engine.output, /^[\x20-\x7e\n]*$/);
});

test("an engine connects before it speaks, and WhatsApp shows a code in between", () => {
  for (const [channel, engine] of printed) {
    const types = engine.events().map(({ type, state }) => (type === "status" ? state : type));
    const code = channel === "whatsapp" ? ["qr"] : [];
    assert.deepEqual(types.slice(0, 2 + code.length), ["connecting", ...code, "open"]);
    assert.equal(types.slice(2 + code.length).indexOf("open"), -1);
  }
});

test("two first runs at the same hour print the same bytes and draw the same files", async () => {
  const first = new Map([...printed].map(([channel, engine]) => [channel, engine.output]));
  const drawn = mediaPrints();
  assert.ok(Object.keys(drawn).length > 40);
  renameSync(join(home, "home"), join(home, "home-before"));
  renameSync(join(home, "share"), join(home, "share-before"));
  await runAll();
  for (const channel of channels) assert.ok(printed.get(channel)?.output === first.get(channel), channel);
  assert.deepEqual(mediaPrints(), drawn);
});
