// Real mail servers on loopback: Dovecot for IMAP and LMTP, and a submission server that delivers into it, with
// authentication, TLS and a certificate made on the spot. Nothing outside one folder is touched.

import { execFileSync, spawn, type ChildProcess } from "node:child_process";
import { chownSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createServer as createHttps, type Server } from "node:https";
import { connect, createServer } from "node:net";
import { userInfo } from "node:os";
import { join } from "node:path";
import { buffer } from "node:stream/consumers";
import { setTimeout as sleep } from "node:timers/promises";
import SMTPConnection from "nodemailer/lib/smtp-connection";
import { SMTPServer, type SMTPServerOptions } from "smtp-server";

export const password = "secret";

/** Dovecot does not run as root; then its processes belong to nobody. */
const isRoot = process.getuid?.() === 0;
const user = isRoot ? "nobody" : userInfo().username;
const [uid, gid] = ["-u", "-g"].map((flag) => Number(execFileSync("id", [flag, user], { encoding: "utf8" })));
const group = execFileSync("id", ["-gn", user], { encoding: "utf8" }).trim();

export interface MailServers {
  folder: string;
  imapPort: number;
  smtpPort: number;
  /** For NODE_EXTRA_CA_CERTS. */
  certificate: string;
  /** For a server of a test's own. */
  tls(): { key: Buffer; cert: Buffer };
  /** For CORVANE_MAIL_AUTOCONFIG. */
  autoconfig: string;
  /** Hooks of the submission server that a test sets. */
  submission: Pick<SMTPServerOptions, "onRcptTo" | "onAuth"> & { beforeAnswer?: (mail: Buffer) => Promise<void> };
  /** Puts a whole mail into a mailbox, past the submission server. */
  deliver(to: string, mail: string | Buffer): Promise<void>;
  /** The mailbox's folder on the disk, a Maildir. */
  maildir(address: string): string;
  stopImap(): Promise<void>;
  startImap(): Promise<void>;
  stop(): Promise<void>;
}

/** `folder` must be one that every user may enter. Any address has a mailbox, with the one password. */
export async function startMailServers(folder: string): Promise<MailServers> {
  const [imapPort, lmtpPort] = [await freePort(), await freePort()];
  for (const name of ["run", "state", "box"]) ownFolder(join(folder, name));
  const certificate = join(folder, "certificate.pem");
  const key = join(folder, "key.pem");
  makeCertificate(certificate, key);
  const tls = { key: readFileSync(key), cert: readFileSync(certificate) };
  const configuration = join(folder, "dovecot.conf");
  writeFileSync(configuration, dovecotConfiguration(folder, imapPort, lmtpPort));

  let dovecot: ChildProcess | undefined;
  const startImap = async (): Promise<void> => {
    const asUser = isRoot ? ["--reuid", String(uid), "--regid", String(gid), "--clear-groups"] : [];
    const words = ["--pdeathsig", "TERM", ...asUser, "--", "/usr/sbin/dovecot", "-F", "-c", configuration];
    dovecot = spawn("setpriv", words, { stdio: ["ignore", "ignore", "inherit"], detached: true });
    await Promise.all([imapPort, lmtpPort].map(answering));
  };
  const stopImap = async (): Promise<void> => {
    if (!dovecot?.pid) return;
    const ended = new Promise((resolve) => dovecot?.once("exit", resolve));
    process.kill(-dovecot.pid, "SIGTERM"); // its children would keep their connections for some seconds
    dovecot = undefined;
    await ended;
    rmSync(join(folder, "run"), { recursive: true, force: true });
    ownFolder(join(folder, "run"));
  };
  await startImap();

  const submission: MailServers["submission"] = {};
  const deliver = (to: string, mail: string | Buffer): Promise<void> => handOver(lmtpPort, [to], Buffer.from(mail));
  const smtp = new SMTPServer({
    ...tls,
    secure: true,
    size: 40 << 20,
    disableReverseLookup: true,
    logger: false,
    onAuth: (auth, session, done) => {
      if (submission.onAuth) submission.onAuth(auth, session, done);
      else if (auth.password === password) done(null, { user: auth.username });
      else done(Object.assign(new Error("Invalid user or password"), { responseCode: 535 }));
    },
    onRcptTo: (address, session, done) => (submission.onRcptTo ? submission.onRcptTo(address, session, done) : done()),
    onData: (stream, session, done) => {
      const take = async (): Promise<void> => {
        const mail = await buffer(stream);
        await submission.beforeAnswer?.(mail);
        await handOver(lmtpPort, session.envelope.rcptTo.map(({ address }) => address), mail);
      };
      take().then(() => done(), done);
    },
  });
  smtp.on("error", () => {});
  const smtpPort = await freePort();
  await new Promise<void>((resolve) => smtp.listen(smtpPort, "127.0.0.1", resolve));
  const web = createHttps(tls, (_, answer) => answer.end(autoconfigDocument(imapPort, smtpPort)));
  const webPort = await freePort();
  await new Promise<void>((resolve) => web.listen(webPort, "127.0.0.1", resolve));

  return {
    folder,
    imapPort,
    smtpPort,
    certificate,
    tls: () => tls,
    autoconfig: `https://localhost:${webPort}/mail/config-v1.1.xml`,
    submission,
    deliver,
    maildir: (address) => join(folder, "box", address, "Maildir"),
    stopImap,
    startImap,
    stop: async () => {
      await stopImap();
      closeWeb(web);
      await new Promise<void>((resolve) => smtp.close(resolve));
    },
  };
}

/** For folders and files that a test writes for Dovecot. */
export function own(path: string): void {
  if (isRoot) chownSync(path, uid, gid);
}

export function ownFolder(path: string): void {
  mkdirSync(path, { recursive: true });
  own(path);
}

function closeWeb(web: Server): void {
  web.close();
  web.closeAllConnections();
}

function makeCertificate(certificate: string, key: string): void {
  const subject = ["-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1"];
  const kind = ["-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2"];
  execFileSync("openssl", ["req", ...kind, ...subject, "-keyout", key, "-out", certificate], { stdio: "ignore" });
  own(key);
}

async function handOver(port: number, to: string[], mail: Buffer): Promise<void> {
  const connection = new SMTPConnection({ port, host: "127.0.0.1", lmtp: true, ignoreTLS: true, name: "localhost" });
  try {
    await new Promise<void>((resolve, reject) => {
      connection.once("error", reject);
      connection.connect((error) => (error ? reject(error) : resolve()));
    });
    await new Promise<void>((resolve, reject) => {
      connection.send({ from: "", to }, mail, (error) => (error ? reject(error) : resolve()));
    });
  } finally {
    connection.close();
  }
}

async function freePort(): Promise<number> {
  return new Promise((resolve) => {
    const probe = createServer().listen(0, "127.0.0.1", () => {
      const { port } = probe.address() as { port: number };
      probe.close(() => resolve(port));
    });
  });
}

async function answering(port: number): Promise<void> {
  for (let tries = 0; tries < 400; tries++) {
    const isThere = await new Promise<boolean>((resolve) => {
      const socket = connect(port, "127.0.0.1", () => resolve(true)).on("error", () => resolve(false));
      socket.unref();
      socket.once("connect", () => socket.destroy());
    });
    if (isThere) return;
    await sleep(25);
  }
  throw new Error(`nothing answers on port ${port}`);
}

function autoconfigDocument(imapPort: number, smtpPort: number): string {
  const server = (tag: string, type: string, port: number): string =>
    `<${tag} type="${type}"><hostname>localhost</hostname><port>${port}</port><socketType>SSL</socketType>` +
    `<username>%EMAILADDRESS%</username><authentication>password-cleartext</authentication></${tag}>`;
  const servers = server("incomingServer", "imap", imapPort) + server("outgoingServer", "smtp", smtpPort);
  return `<clientConfig version="1.1"><emailProvider id="localhost">${servers}</emailProvider></clientConfig>`;
}

function dovecotConfiguration(folder: string, imapPort: number, lmtpPort: number): string {
  const mailboxes = ["Drafts", "Junk", "Trash", "Sent", "Archive"]
    .map((name) => `  mailbox ${name} {\n    special_use = \\${name}\n    auto = create\n  }`)
    .join("\n");
  return `base_dir = ${folder}/run
state_dir = ${folder}/state
log_path = ${folder}/state/dovecot.log
protocols = imap lmtp
listen = 127.0.0.1
ssl = required
ssl_cert = <${folder}/certificate.pem
ssl_key = <${folder}/key.pem
default_login_user = ${user}
default_internal_user = ${user}
default_internal_group = ${group}
mail_location = maildir:~/Maildir
mail_max_userip_connections = 100
mail_fsync = never
auth_failure_delay = 0
first_valid_uid = 1
first_valid_gid = 1
passdb {
  driver = static
  args = password=${password}
}
userdb {
  driver = static
  args = uid=${uid} gid=${gid} home=${folder}/box/%u
}
namespace inbox {
  inbox = yes
  separator = /
${mailboxes}
}
service anvil {
  chroot =
}
service imap-login {
  chroot =
  inet_listener imap {
    port = 0
  }
  inet_listener imaps {
    port = ${imapPort}
    ssl = yes
  }
}
service lmtp {
  inet_listener lmtp {
    port = ${lmtpPort}
  }
}
`;
}
