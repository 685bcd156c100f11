// What tools/mail-servers runs.

import { chmodSync, mkdirSync, mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { startMailServers } from "./mail-servers.ts";

const [, , named, address] = process.argv;
const folder = named ? resolve(named) : mkdtempSync(join(tmpdir(), "corvane-mail-"));
mkdirSync(folder, { recursive: true });
chmodSync(folder, 0o755);
const servers = await startMailServers(folder);
if (address) await servers.deliver(address, welcome(address));
console.log(`NODE_EXTRA_CA_CERTS=${servers.certificate}`);
console.log(`CORVANE_MAIL_AUTOCONFIG=${servers.autoconfig}`);

function welcome(to: string): string {
  const text = "This mailbox is real: what you send to your own address goes out, and comes in again.";
  return `From: Postmaster <postmaster@localhost>\nTo: ${to}\nSubject: Welcome\nMessage-ID: <welcome@localhost>\nDate: ${new Date().toUTCString()}\n\n${text}\n`;
}

for (const signal of ["SIGINT", "SIGTERM"] as const) {
  process.once(signal, async () => {
    await servers.stop();
    if (!named) rmSync(folder, { recursive: true, force: true });
    process.exit(0);
  });
}
