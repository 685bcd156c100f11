import assert from "node:assert/strict";
import { readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { simpleParser } from "mailparser";
import { connectSheet, isOpen, mail, messages, openPost, servers, withSubject } from "./mail-support.ts";
import { isLive, type Event } from "./support.ts";

const of = (events: Event[], type: string): Event[] => events.filter((event) => event.type === type);

test("the connect sheet finds the servers and tries the password", async () => {
  const { me } = openPost();
  const environment = { EMAIL_USER: me, CORVANE_MAIL_AUTOCONFIG: servers.autoconfig, NODE_EXTRA_CA_CERTS: servers.certificate };
  const { event } = await connectSheet("--discover", environment);
  assert.deepEqual(
    [event.imap, event.found, event.confirm],
    [{ host: "localhost", port: servers.imapPort, security: "tls" }, "autoconfig", []],
  );
  const { imap, smtp } = event;
  const signIn = async (secret: object): Promise<unknown[]> => {
    const EMAIL_PASS = JSON.stringify({ imap, smtp, ...secret });
    const { event: said, code } = await connectSheet("--sign-in", { ...environment, EMAIL_PASS });
    return [said.ok, said.at, code];
  };
  assert.deepEqual(await signIn({ password: "secret" }), [true, undefined, 0]);
  assert.deepEqual(await signIn({ password: "wrong" }), [false, "imap", 1]);
  servers.submission.onAuth = (_, __, done) => done(new Error("No sending for you"));
  assert.deepEqual(await signIn({ password: "secret" }), [false, "smtp", 1]);
  servers.submission.onAuth = undefined;
  const EMAIL_PASS = JSON.stringify({ imap, smtp, password: "secret" });
  assert.match(String((await connectSheet("--sign-in", { EMAIL_USER: me, EMAIL_PASS })).event.error), /certificate/);
});

test("a mailbox is mirrored once, and what comes later is new", async () => {
  const { put, start, imap, me, folder } = openPost();
  await put("Plan", "Yes!\r\n\r\nOn Mon, 1 Nov 2026, Hola <hola@x.org> wrote:\r\n> When?");
  await put("Round", "All", ["To: Ben <BEN@example.org>, " + me, "Cc: carla@example.org"]);
  await put("List", "Hi", ["Reply-To: Desk <desk@example.org>", "Subject: =?utf-8?q?Gr=C3=BC=C3=9Fe?="]);
  await put("Page", page, ["Content-Type: multipart/mixed; boundary=b"]);
  const client = await imap();
  await client.append("Sent", mail({ to: "dora@example.org", subject: "Mine", body: "From me", head: [`From: Hola <${me}>`] }));
  for (const hidden of ["Trash", "Drafts", "Junk"]) await client.append(hidden, mail({ to: me, subject: hidden, body: "no" }));
  await client.append("Archive", mail({ to: me, subject: "Old", body: "kept" }));

  const engine = start();
  const events = await engine.until((said) => messages(said).length >= 7);
  const by = (subject: string): Event => withSubject(events, subject)[0];
  assert.equal(by("Plan").body, "Yes!\n\n> On Mon, 1 Nov 2026, Hola <hola@x.org> wrote:\n> When?");
  assert.deepEqual([by("Plan").convExternalId, by("Plan").convTitle, by("Plan").historical], ["ana@example.org", "Ana Ruiz", true]);
  assert.equal(by("Round").convExternalId, "ana@example.org,ben@example.org,carla@example.org@g.us");
  assert.deepEqual([by("Grüße").convExternalId, by("Grüße").convTitle], ["desk@example.org", "Desk"]);
  assert.equal(by("Page").body, "Dear all,\n\nsee the plan (https://example.org/plan).\n\n- one\n- two");
  const file = messages(events).find(({ body }) => body === "[Document] pl/an.pdf") as Event;
  assert.deepEqual([file.providerMsgId, file.mediaType], [`${by("Page").providerMsgId}/1`, "document"]);
  assert.deepEqual([by("Mine").direction, by("Mine").convExternalId], ["OUT", "dora@example.org"]);
  assert.ok(by("Old") && !by("Trash") && !by("Drafts") && !by("Junk"));

  await put("Now");
  const now = await engine.event(isLive);
  assert.equal(now.subject, "Now");
  engine.command({ cmd: "downloadMedia", chatId: "ana@example.org", messageId: file.providerMsgId });
  const { mediaPath } = await engine.event(({ state }) => state === "success");
  assert.equal(readFileSync(String(mediaPath), "utf8"), "a plan");
  await client.append("Archive", mail({ to: me, subject: "Sorted", body: "by the server", head: ["From: eva@example.org"] }));
  await engine.until((said) => withSubject(said, "Sorted").length > 0); // in less than the time between two polls
  await client.mailboxOpen("INBOX");
  await client.messageFlagsAdd("1:*", ["\\Seen"]);
  assert.deepEqual(of(await engine.until((said) => of(said, "unread").length > 0), "unread")[0].count, 0);
  await engine.end();

  await put("Overnight");
  const again = start();
  await again.until((said) => withSubject(said, "Overnight").length > 0);
  assert.deepEqual(messages(await again.end()).map(({ subject, historical }) => [subject, historical]), [["Overnight", undefined]]);
  await client.logout();

  writeFileSync(join(folder, "state", "retell"), "");
  const anew = start();
  await anew.until((said) => messages(said).length >= 10);
  assert.ok(messages(await anew.end()).every(({ historical }) => historical));
});

const page = [
  "--b", "Content-Type: multipart/alternative; boundary=c", "",
  "--c", "Content-Type: text/plain", "", "", "--c", "Content-Type: text/html; charset=iso-8859-1", "Content-Transfer-Encoding: quoted-printable", "",
  "<style>p { color: red }</style><p>Dear all,<p>see <a href=3D'https://example.org/plan'>the plan</a>.<ul><li>one<li>two</ul>",
  "<img src=3D'https://example.org/pixel.png'><script>alert(1)</script>", "--c--",
  "--b", 'Content-Type: application/pdf; name="pl/an.pdf"', "Content-Transfer-Encoding: base64", "", "YSBwbGFu", "--b--",
].join("\r\n");

test("an answer goes out once, with its file, as an answer, and its copy is among the sent mail", async () => {
  const { put, start, imap, folder } = openPost();
  await put("Plan", "When?", ["References: <first@example.org>"]);
  const sent: Buffer[] = [];
  servers.submission.beforeAnswer = async (bytes) => void sent.push(bytes);
  const engine = start();
  await engine.until((said) => messages(said).length === 1 && engine.acknowledged >= Number(said.at(-1)?.ack));
  const path = join(folder, "plan.bin");
  writeFileSync(path, Buffer.alloc(300_000, 7));
  engine.command({ cmd: "send", chatId: "ana@example.org", text: "Monday.\n.\nÜ", draftId: "od:1", files: [{ path, name: "plän.bin" }] });
  const ack = await engine.event(({ type }) => type === "sendAck");
  assert.equal(ack.status, "sent");
  const [{ inReplyTo, references, subject, text, attachments, to }] = await Promise.all(sent.map((bytes) => simpleParser(bytes)));
  assert.deepEqual([inReplyTo, references, subject], ["<Plan@example.org>", ["<first@example.org>", "<Plan@example.org>"], "Re: Plan"]);
  assert.equal(text?.trim(), "Monday.\n.\nÜ");
  assert.deepEqual(attachments.map(({ filename, content }) => [filename, content.equals(readFileSync(path))]), [["plän.bin", true]]);
  assert.equal(Array.isArray(to) ? "" : to?.text, "ana@example.org");
  const told = (events: Event[]): Event[] => messages(events).filter(({ direction }) => direction === "OUT");
  await engine.until((events) => told(events).length === 4); // the copy is told too, as the same message
  const shown = [...new Map(told(engine.events()).map((message) => [message.providerMsgId, message])).values()];
  assert.deepEqual(shown.map(({ body }) => body), ["Monday.\n.\nÜ", "[Document] plän.bin"]);
  assert.equal(shown[0].providerMsgId, ack.providerMsgId);
  await engine.end();
  const client = await imap();
  assert.equal((await client.mailboxOpen("Sent")).exists, 1);
  await client.logout();
});

test("a refusal fails the draft in the server's words, and refused for one is sent to nobody", async () => {
  const { start } = openPost();
  let taken = 0;
  servers.submission.beforeAnswer = async () => void taken++;
  servers.submission.onRcptTo = ({ address: to }, _, done) =>
    to.startsWith("nobody") ? done(Object.assign(new Error("No such user here"), { responseCode: 550 })) : done();
  const engine = start();
  await engine.event(isOpen);
  for (const chatId of ["nobody@example.org", "ana@example.org,nobody@example.org@g.us", "no address"]) {
    engine.command({ cmd: "send", chatId, text: "Hello", subject: "A", sendId: chatId });
  }
  const acks = of(await engine.until((said) => of(said, "sendAck").length === 3), "sendAck");
  assert.deepEqual(acks.map(({ status }) => status), ["failed", "failed", "failed"]);
  for (const { error } of acks.slice(0, 2)) assert.match(String(error), /No such user here/);
  assert.equal(taken, 0);
  servers.submission.onRcptTo = undefined;
  await engine.end();
});

test("a wrong password is told at once and tried no more", async () => {
  const { start } = openPost();
  const engine = start({ EMAIL_PASS: JSON.stringify({ password: "old" }) });
  assert.equal(await engine.exited, 0);
  const states = engine.events().map(({ state, msg }) => state ?? msg).filter((word) => word !== undefined);
  assert.deepEqual(states, ["connecting", "Authentication failed.", "logged_out"]);
});

test("a server that stops is said to be gone, and what came meanwhile is new when it is back", async () => {
  const { put, start, me } = openPost();
  await put("Before");
  const engine = start();
  for (const subject of ["Before", "First", "Second"]) {
    if (subject !== "Before") await put(subject);
    await engine.until((said) => withSubject(said, subject).length > 0 && engine.acknowledged >= Number(said.at(-1)?.ack));
  }
  await servers.stopImap();
  await engine.event(({ state }) => state === "close");
  engine.command({ cmd: "downloadMedia", messageId: "x/1" });
  assert.match(String((await engine.event(({ state }) => state === "failed")).error), /not connected/);
  rmSync(join(servers.maildir(me), "dovecot-uidlist"));
  for (const file of ["", ".cache", ".log"]) rmSync(join(servers.maildir(me), `dovecot.index${file}`), { force: true });
  await servers.startImap();
  await put("Meanwhile");
  await engine.until((said) => withSubject(said, "Meanwhile").length > 0);
  await put("After");
  await engine.until((said) => withSubject(said, "After").length > 0);
  const said = messages(await engine.end());
  assert.deepEqual(said.map(({ subject }) => subject), ["Before", "First", "Second", "Meanwhile", "After"]);
  assert.deepEqual(said.map(({ historical }) => historical), [true, undefined, undefined, undefined, undefined]);
});
