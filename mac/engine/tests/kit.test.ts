import assert from "node:assert/strict";
import { readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { Readable } from "node:stream";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { Limited, withinLimits } from "../src/lib/limits.ts";
import { safeName, writeMedia } from "../src/lib/media.ts";
import { EngineProcess, placeIn, source, temporaryFolder, type Event } from "./support.ts";

const kitEngine = fileURLToPath(new URL("./kit-engine.ts", import.meta.url));
const acks = (events: Event[]): Event[] => events.filter(({ type }) => type === "sendAck");
const isAck = ({ type }: Event): boolean => type === "sendAck";

type Start = (acknowledges?: boolean) => Promise<EngineProcess>;

function channel(): { start: Start; sent: () => string[]; folder: string } {
  const folder = temporaryFolder(after);
  const start: Start = async (acknowledges = true) => {
    const engine = new EngineProcess(kitEngine, placeIn(folder));
    engine.acknowledges = acknowledges;
    await engine.event(({ state }) => state === "open");
    return engine;
  };
  return { folder, start, sent: () => readFileSync(join(folder, "state", "sent"), "utf8").trim().split("\n") };
}

test("what the provider took is sent once, also where nobody stored the answer", async () => {
  const { start, sent, folder } = channel();
  const first = await start(false);
  first.command({ cmd: "send", chatId: "a", text: "hello", draftId: "od:1" });
  first.command({ cmd: "send", chatId: "a", text: "bare", sendId: "sd:1" });
  await first.until((events) => acks(events).length === 2);
  await first.kill();
  const second = await start();
  const [again] = acks(second.events());
  assert.deepEqual([again.draftId, again.status, again.providerMsgId], ["od:1", "sent", "id draft/od:1"]);
  assert.ok(second.events().some(({ type, body }) => type === "message" && body === "hello"));
  second.command({ cmd: "send", chatId: "a", text: "hello", draftId: "od:1" });
  await second.until((events) => acks(events).length === 3);
  second.command({ cmd: "send", chatId: "a", text: "hello, edited", draftId: "od:1" });
  await second.until((events) => acks(events).length === 4);
  await second.end();
  assert.deepEqual(sent(), ["hello", "bare", "hello, edited"]);
  assert.equal(statSync(join(folder, "state")).mode & 0o777, 0o700);
});

test("what was handed over and not answered is uncertain, and goes out again only when a person says so", async () => {
  const { start, sent } = channel();
  for (const text of ["die", "cable"]) {
    const first = await start(false);
    first.command({ cmd: "send", chatId: "a", text, draftId: text });
    if (text === "cable") await first.event(isAck);
    else await first.exited;
    await first.kill();
    const second = await start(false);
    second.command({ cmd: "send", chatId: "a", text, draftId: text });
    const told = await second.until((events) => acks(events).length === 2);
    assert.deepEqual(acks(told).map(({ status }) => status), ["uncertain", "uncertain"]);
    await second.kill();
    assert.equal(sent().filter((line) => line === text).length, 1);
    const third = await start();
    await third.end();
    const last = await start();
    assert.equal(acks(last.events()).length, 0);
    last.command({ cmd: "send", chatId: "a", text, draftId: text });
    await (text === "die" ? last.exited : last.event(isAck));
    assert.equal(sent().filter((line) => line === text).length, 2);
    await last.kill();
    await (await start()).end();
  }
});

test("a refusal fails the draft in the provider's words, and a second engine of the account stays away", async () => {
  const { start, folder } = channel();
  const engine = await start();
  for (const text of ["no", "too late"]) engine.command({ cmd: "send", chatId: "a", text, draftId: text });
  const answers = acks(await engine.until((events) => acks(events).length === 2));
  assert.deepEqual(answers.map(({ status, error }) => [status, error]), [["failed", "go away"], ["failed", "closed"]]);
  const other = new EngineProcess(kitEngine, placeIn(folder));
  assert.equal(await other.exited, 1);
  assert.match(String(other.events()[0].msg), /locked/);
  engine.child.kill("SIGTERM");
  assert.equal(await engine.exited, 0);
  writeFileSync(join(folder, "state", "state.sqlite"), "no database at all");
  rmSync(join(folder, "state", "state.sqlite-wal"));
  assert.match(String((await (await start()).end())[0].msg), /begins anew/);
});

test("the WhatsApp entry says why it is not there, and ends", async () => {
  const engine = new EngineProcess(source("main.ts"), placeIn(temporaryFolder(after)));
  assert.equal(await engine.exited, 0);
  assert.deepEqual(engine.events().map(({ type, state }) => state ?? type), ["log", "logged_out"]);
});

test("a pause that is too long fails, a short one is waited for", async () => {
  const signal = new AbortController().signal;
  let tries = 0;
  const limited = (pause: number) => async (): Promise<number> => {
    if (++tries < 3) throw new Limited(pause, "Slow down.");
    return tries;
  };
  assert.equal(await withinLimits(limited(1), { signal }), 3);
  tries = 0;
  await assert.rejects(withinLimits(limited(600_000), { signal }), /Slow down. Try again in 10 minutes/);
});

test("files get a name that is safe anywhere, and appear whole", async () => {
  assert.equal(safeName("../../etc/passwd"), "_.._etc_passwd");
  assert.equal(safeName("photo\u202Egnp.exe\n"), "photognp.exe");
  assert.equal(safeName(" . "), "file");
  const long = safeName("ü".repeat(300) + ".pdf");
  assert.ok(Buffer.byteLength(long) <= 150 && long.endsWith("ü.pdf"));
  const folder = temporaryFolder(after);
  const path = await writeMedia(folder, "id/1", "a/b.txt", Readable.from(["whole"]));
  assert.ok(path.startsWith(folder) && path.endsWith("/a_b.txt"));
  assert.equal(readFileSync(path, "utf8"), "whole");
});
