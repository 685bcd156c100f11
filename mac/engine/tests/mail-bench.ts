// The e-mail engine beside mbsync and notmuch on the same mailbox, in the same run. What tools/bench mail runs.

import { execFileSync } from "node:child_process";
import { chmodSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { setTimeout as sleep } from "node:timers/promises";
import { fillInbox } from "./mail-corpus.ts";
import { password, startMailServers, type MailServers } from "./mail-servers.ts";
import { EngineProcess, placeIn, source } from "./support.ts";

const me = "hola@taller.example";
const count = Number(process.argv[2] ?? 20_000);

const folder = mkdtempSync(join(tmpdir(), "corvane-mail-bench-"));
chmodSync(folder, 0o755);
const servers = await startMailServers(folder);
try {
  fillInbox(servers.maildir(me), me, count);
  warmUp(servers);
  const rivals = theirs(servers);
  const ours = await engine(servers);
  const line = (name: string, value: string): void => console.log(name.padEnd(34) + value.padStart(12));
  line(`mbsync, ${count} mails`, `${rivals.mbsync.toFixed(1)} s`);
  line("notmuch new", `${rivals.notmuch.toFixed(1)} s`);
  line("engine, the same mails told", `${ours.all.toFixed(1)} s`);
  line("of the rivals' time", `${(ours.all / (rivals.mbsync + rivals.notmuch)).toFixed(2)}`);
  line("first 50 after the connection", `${ours.first.toFixed(2)} s`);
  line("a new mail after its delivery", `${ours.live.toFixed(2)} s`);
  line("memory, peak", `${ours.peak} MB`);
  line("memory, a minute later", `${ours.rest} MB`);
  line("memory, peak after a 50 MB mail", `${ours.peakWithLarge} MB`);
} finally {
  await servers.stop();
  rmSync(folder, { recursive: true, force: true });
}

/** Whoever comes first would pay for Dovecot's index. */
function warmUp({ imapPort }: MailServers): void {
  mbsync(imapPort, "warm");
}

function theirs({ imapPort }: MailServers): { mbsync: number; notmuch: number } {
  const began = performance.now();
  const { store, home } = mbsync(imapPort, "rival");
  const fetched = performance.now();
  const configuration = join(home, "notmuch");
  writeFileSync(configuration, `[database]\npath=${store}\n[user]\nprimary_email=${me}\n[new]\ntags=new\n`);
  execFileSync("notmuch", ["new"], { env: { ...process.env, HOME: home, NOTMUCH_CONFIG: configuration }, stdio: "ignore" });
  return { mbsync: (fetched - began) / 1000, notmuch: (performance.now() - fetched) / 1000 };
}

function mbsync(port: number, name: string): { store: string; home: string } {
  const home = join(folder, name);
  const store = join(home, "mail");
  mkdirSync(store, { recursive: true });
  const configuration = join(home, "mbsyncrc");
  writeFileSync(
    configuration,
    `IMAPAccount a
Host localhost
Port ${port}
User ${me}
Pass ${password}
SSLType IMAPS
CertificateFile ${servers.certificate}

IMAPStore far
Account a

MaildirStore near
Path ${store}/
Inbox ${store}/INBOX

Channel all
Far :far:
Near :near:
Patterns INBOX
Create Near
Sync Pull
SyncState *
`,
  );
  execFileSync("mbsync", ["-q", "-c", configuration, "all"], { stdio: ["ignore", "ignore", "inherit"] });
  return { store, home };
}

async function engine({ certificate, autoconfig, deliver }: MailServers): Promise<Record<"all" | "first" | "live" | "peak" | "rest" | "peakWithLarge", number>> {
  const environment = { ...placeIn(folder), EMAIL_USER: me, EMAIL_PASS: password, NODE_EXTRA_CA_CERTS: certificate, CORVANE_MAIL_AUTOCONFIG: autoconfig };
  const child = new EngineProcess(source("email-main.ts"), environment);
  let told = 0;
  const reached = (wanted: number): Promise<number> =>
    new Promise((resolve) => {
      const look = (): void => {
        if (told < wanted) return;
        child.child.stdout?.off("data", look);
        resolve(performance.now());
      };
      child.child.stdout?.on("data", look);
    });
  child.child.stdout?.on("data", (text: string) => (told += text.split('"subject":').length - 1));
  const memory = (field: string): number =>
    Math.round(Number(new RegExp(`${field}:\\s+(\\d+)`).exec(readFileSync(`/proc/${child.child.pid}/status`, "utf8"))?.[1]) / 1024);

  const [first, all] = [reached(50), reached(count)];
  await child.event(({ state }) => state === "open");
  const opened = performance.now();
  const times = { first: ((await first) - opened) / 1000, all: ((await all) - opened) / 1000 };
  const peak = memory("VmHWM");
  await sleep(60_000);
  const rest = memory("VmRSS");

  const delivered = performance.now();
  await deliver(me, `From: ana@example.org\nTo: ${me}\nSubject: Now\n\nHere.\n`);
  await child.event(({ subject }) => subject === "Now");
  const live = (performance.now() - delivered) / 1000;
  const file = `Content-Type: application/zip; name=a.zip\nContent-Transfer-Encoding: base64\n\n${("QUJD".repeat(18) + "\n").repeat(700_000)}`;
  await deliver(me, `From: ana@example.org\nTo: ${me}\nSubject: Large\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nSee the file.\n--b\n${file}\n--b--\n`);
  const large = await child.event(({ body }) => body === "[Document] a.zip");
  await reachedAck(child);
  child.command({ cmd: "downloadMedia", messageId: large.providerMsgId });
  await child.event(({ state }) => state === "success");
  const peakWithLarge = memory("VmHWM");
  await child.end();
  return { ...times, live, peak, rest, peakWithLarge };
}

async function reachedAck(child: EngineProcess): Promise<void> {
  await child.until((events) => child.acknowledged >= Number(events.at(-1)?.ack));
  await sleep(500);
}
