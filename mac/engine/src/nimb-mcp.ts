// The local tool server: agents on this machine read the database and put proposals into it, over HTTP on loopback.
// It also works off what the program asks of the web.

import { readFileSync } from "node:fs";
import { openWriter, Store } from "./tools/database.ts";
import { profileFromEnvironment } from "./tools/paths.ts";
import { PullWorker } from "./tools/pull.ts";
import { writable } from "./tools/registry.ts";
import { listen } from "./tools/server.ts";
import { Token } from "./tools/token.ts";

const port = Number(process.env.NIMB_MCP_PORT) || 8765;
const profile = profileFromEnvironment();
const { version } = JSON.parse(readFileSync(new URL("../package.json", import.meta.url), "utf8")) as { version: string };

const store = new Store(profile.database, writable);
const token = new Token(profile.token);
const pulls = new PullWorker(profile, store);
let announced = false;

/** Tells the program which server this is. */
function announce(): void {
  const now = Date.now();
  const db = openWriter(profile.database, { engine_info: "both" });
  try {
    db.run(
      `INSERT INTO engine_info(id, version, started_at, updated_at) VALUES('engine',?,?,?) ON CONFLICT(id) DO UPDATE SET
         version=excluded.version, git_sha=NULL, started_at=excluded.started_at, updated_at=excluded.updated_at`,
      version, now, now,
    );
  } finally {
    db.close();
  }
  announced = true;
}

async function look(): Promise<void> {
  token.current(); // a secret that was removed is replaced without waiting for a call
  if (!announced) announce();
  await pulls.look();
}

function tick(): void {
  if (process.ppid !== parent) process.exit(0);
  look().catch((error: unknown) => console.error((error as Error).message)); // the database may come back
}

// There is no input to end with: the server goes when it is told to, or when whoever started it is gone.
const parent = process.ppid;
process.on("SIGTERM", () => process.exit(0));
tick();
await listen({ port, store, token, version });
setInterval(tick, 2000);
