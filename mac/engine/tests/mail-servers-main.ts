// What tools/mail-servers runs.

import { chmodSync, mkdirSync, mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { startMailServers } from "./mail-servers.ts";

const [, , named] = process.argv;
const folder = named ? resolve(named) : mkdtempSync(join(tmpdir(), "corvane-mail-"));
mkdirSync(folder, { recursive: true });
chmodSync(folder, 0o755);
const servers = await startMailServers(folder);
console.log(`NODE_EXTRA_CA_CERTS=${servers.certificate}`);
console.log(`CORVANE_MAIL_AUTOCONFIG=${servers.autoconfig}`);

for (const signal of ["SIGINT", "SIGTERM"] as const) {
  process.once(signal, async () => {
    await servers.stop();
    if (!named) rmSync(folder, { recursive: true, force: true });
    process.exit(0);
  });
}
