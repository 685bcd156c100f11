// Servers that fail in the middle, and disks that are full.

import assert from "node:assert/strict";
import { execFileSync, spawn, spawnSync } from "node:child_process";
import { mkdirSync } from "node:fs";
import { createServer, request } from "node:https";
import type { AddressInfo } from "node:net";
import { join } from "node:path";
import { after, test, type TestContext } from "node:test";
import { fillInbox } from "./mail-corpus.ts";
import { SpoiledImap } from "./mail-proxy.ts";
import { isOpen, messages, openPost, servers, withSubject } from "./mail-support.ts";
import type { Event } from "./support.ts";

async function openSpoiled() {
  const spoiled = await SpoiledImap.open(servers);
  after(() => spoiled.close());
  const post = openPost();
  return { ...post, spoiled, start: () => post.start({ EMAIL_PASS: spoiled.secret(servers) }) };
}

/** The ids of the mails that were told, however often. */
const mails = (events: Event[]): Set<string> =>
  new Set(messages(events).map(({ providerMsgId }) => String(providerMsgId).split("/")[0]));

test("a connection that breaks again and again costs no mail and doubles none", async () => {
  const { me, put, spoiled, start } = await openSpoiled();
  fillInbox(servers.maildir(me), me, 400);
  let [left, breaks] = [30_000, 0];
  spoiled.heard = (words) => {
    if (breaks === 3 || (left -= words.length) > 0) return words;
    left = 100_000 * ++breaks;
    return undefined;
  };
  const engine = start();
  await engine.until((events) => mails(events).size >= 400);
  await put("After");
  await engine.until((events) => withSubject(events, "After").length > 0);
  assert.equal(breaks, 3);
  assert.equal(mails(await engine.end()).size, 401);
});

test("a server that lies about the size of one mail hides that one alone", async () => {
  for (const lie of [3, 500_000_000]) {
    const { put, spoiled, start } = await openSpoiled();
    for (const subject of ["First", "Liar", "Third", "Fourth"]) await put(subject, subject === "Liar" ? "LIAR and more" : undefined);
    spoiled.heard = (words) => words.replace(/\{\d+\}\r\nLIAR/, `{${lie}}\r\nLIAR`);
    const engine = start();
    await engine.until((events) => mails(events).size === 4);
    const said = messages(await engine.end()).map(({ subject, body }) => `${subject}: ${body}`);
    for (const subject of ["First", "Third", "Fourth"]) assert.ok(said.includes(`${subject}: About ${subject}`));
    assert.ok(said.includes("Liar: ") || said.includes("(This mail could not be read.): "), said.join("\n"));
  }
});

test("a server that refuses or throttles for a while is asked again and keeps the account", async () => {
  const { put, spoiled, start, imap } = await openSpoiled();
  await put("One");
  const client = await imap();
  await client.append("Archive", `Message-ID: <a@b>\r\nFrom: a@b.example\r\nSubject: Kept\r\n\r\nx`);
  await client.logout();
  const inbox = /^\S+ (SELECT|EXAMINE) "?INBOX/;
  // The second of the inbox's three is let through: of the two connections that open it, one is refused then.
  const throttled = [/^\S+ (AUTHENTICATE|LOGIN) /, inbox, inbox, inbox, /^\S+ UID FETCH /];
  spoiled.answered = (command) => {
    const [tag] = command.split(" ");
    if (/^\S+ (SELECT|EXAMINE) "?Archive/.test(command)) return `${tag} NO [NOPERM] Not for you\r\n`;
    if (!throttled[0]?.test(command)) return undefined;
    const isRefused = throttled.length !== 3;
    throttled.shift();
    return isRefused ? `${tag} NO [LIMIT] Slow down\r\n` : undefined;
  };
  let [asked, taken] = [0, 0];
  servers.submission.onRcptTo = (_, __, done) =>
    done(++asked === 1 ? Object.assign(new Error("Come back later"), { responseCode: 450 }) : undefined);
  servers.submission.beforeAnswer = async () => void taken++;
  const engine = start();
  engine.command({ cmd: "send", chatId: "ana@example.org", text: "Hello", draftId: "od:1" });
  assert.equal((await engine.event(({ type }) => type === "sendAck")).status, "sent");
  assert.deepEqual([asked, taken], [2, 1]);
  servers.submission.onRcptTo = servers.submission.beforeAnswer = undefined;
  await engine.until((events) => withSubject(events, "One").length > 0 && events.some(({ msg }) => /Archive cannot be opened/.test(String(msg))));
  assert.equal(throttled.length, 0);
  const said = await engine.end();
  assert.ok(said.some(({ msg }) => /Slow down/.test(String(msg))) && !said.some(({ state }) => state === "logged_out"));
});

test("what a refused search would have found is told later", async () => {
  const { put, spoiled, start } = await openSpoiled();
  await put("One");
  let refused = 0;
  spoiled.answered = (command) =>
    /^\S+ UID SEARCH UID 1:1/.test(command) && ++refused === 1 ? `${command.split(" ")[0]} NO [LIMIT] Slow down\r\n` : undefined;
  const engine = start();
  await engine.until((events) => withSubject(events, "One").length > 0);
  assert.ok(refused >= 2);
  await engine.end();
});

test("servers that cannot be looked up at first are looked up again, and a draft waits for them", async () => {
  const { start } = openPost();
  let asked = 0;
  const provider = createServer(servers.tls(), (_, response) => {
    if (++asked === 1) response.destroy();
    else request(servers.autoconfig, { ca: servers.tls().cert }, (document) => document.pipe(response)).end();
  });
  after(() => provider.close());
  await new Promise<void>((resolve) => provider.listen(0, "127.0.0.1", resolve));
  const { port } = provider.address() as AddressInfo;
  const engine = start({ CORVANE_MAIL_AUTOCONFIG: `https://localhost:${port}/` });
  engine.command({ cmd: "send", chatId: "ana@example.org", text: "Hello", draftId: "od:1" });
  assert.equal((await engine.event(({ type }) => type === "sendAck")).status, "sent");
  await engine.event(isOpen);
  assert.ok((await engine.end()).some(({ msg }) => /is there a network/.test(String(msg))));
});

/** A disk of `size` for the folder, which `grow` makes larger; nothing outside its name space sees it. */
async function smallDisk(t: TestContext, folder: string, size: string) {
  const mount = 'mount -t tmpfs -o "size=$2" tmpfs "$1" && echo ready && exec sleep infinity';
  const holder = spawn("unshare", ["-rm", "sh", "-c", mount, "sh", folder, size], { stdio: ["ignore", "pipe", "inherit"] });
  t.after(() => holder.kill());
  await new Promise((resolve) => holder.stdout.once("data", resolve));
  const inside = ["nsenter", "--target", String(holder.pid), "--user", "--mount", "--preserve-credentials"];
  const grow = (to: string): void => void execFileSync("nsenter", [...inside.slice(1), "mount", "-o", `remount,size=${to}`, folder]);
  return { inside, grow };
}

const canMount = spawnSync("unshare", ["-rm", "true"]).status === 0;

test("with a full disk nothing is lost, nothing goes out twice, and the reason is told", { skip: !canMount && "no name spaces" }, async (t) => {
  const { me, folder, start } = openPost();
  fillInbox(servers.maildir(me), me, 600);
  const state = join(folder, "state");
  mkdirSync(state);
  const { inside, grow } = await smallDisk(t, state, "300k");
  const starved = start({}, inside);
  assert.equal(await starved.exited, 1);
  assert.match(String(starved.events().at(-1)?.msg), /disk is full/);

  let taken = 0;
  servers.submission.beforeAnswer = async () => void taken++;
  grow("320k");
  const sending = start({}, inside);
  sending.command({ cmd: "send", chatId: "ana@example.org", text: "Hello ".repeat(60_000), subject: "A", draftId: "od:1" });
  const { status, error } = await sending.event(({ type }) => type === "sendAck");
  assert.deepEqual([status, taken], ["failed", 0], String(error));
  assert.match(String(error), /ENOSPC|full/);
  await sending.kill();

  grow("64m");
  const engine = start({}, inside);
  await engine.event(isOpen);
  engine.command({ cmd: "send", chatId: "ana@example.org", text: "Hello", subject: "A", draftId: "od:1" });
  await engine.until((events) => events.some(({ type }) => type === "sendAck"));
  assert.equal(taken, 1);
  const kept = new Set<string>();
  for (const each of [starved, engine]) for (const event of each.events()) if (Number(event.ack) <= each.acknowledged) mails([event]).forEach((id) => kept.add(id));
  servers.submission.beforeAnswer = undefined;
  await engine.until((events) => new Set([...kept, ...mails(events)]).size >= 600);
  await engine.end();
});
