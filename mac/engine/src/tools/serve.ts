import { readFileSync } from "node:fs";
import { openWriter, Store } from "./database.ts";
import { profileFromEnvironment } from "./paths.ts";
import { PullWorker } from "./pull.ts";
import { writable } from "./registry.ts";
import { listen } from "./server.ts";
import { Token } from "./token.ts";

/** Answers on the port until the process ends, and processes the desktop's requests for the web. Throws if it
 *  cannot. */
export async function serve(port: number): Promise<void> {
  const profile = profileFromEnvironment();
  const { version } = JSON.parse(readFileSync(new URL("../../package.json", import.meta.url), "utf8")) as { version: string };
  const store = new Store(profile.database, writable);
  const token = new Token(profile.token);
  const pulls = new PullWorker(profile, store);
  let announced = false;

  const look = async (): Promise<void> => {
    token.current(); // replaces a removed secret without waiting for a call
    if (!announced) announce(profile.database, version);
    announced = true;
    await pulls.look();
  };
  // Standard input is not used: the server ends on a signal, or when the process that started it is gone.
  const parent = process.ppid;
  const tick = (): void => {
    if (process.ppid !== parent) process.exit(0);
    look().catch((error: unknown) => console.error((error as Error).message)); // the database may come back
  };
  await listen({ port, store, token, version });
  tick();
  setInterval(tick, 2000);
}

/** Tells the desktop which server is running. */
function announce(database: string, version: string): void {
  const now = Date.now();
  const db = openWriter(database, { engine_info: "both" });
  try {
    db.run(
      `INSERT INTO engine_info(id, version, started_at, updated_at) VALUES('engine',?,?,?) ON CONFLICT(id) DO UPDATE SET
         version=excluded.version, git_sha=NULL, started_at=excluded.started_at, updated_at=excluded.updated_at`,
      version, now, now,
    );
  } finally {
    db.close();
  }
}
