// The local tool server: agents on this machine read the database and put proposals into it, over HTTP on loopback.

import { readFileSync } from "node:fs";
import { Store } from "./tools/database.ts";
import { profileFromEnvironment } from "./tools/paths.ts";
import { listen } from "./tools/server.ts";
import { Token } from "./tools/token.ts";
import { writable } from "./tools/registry.ts";

const port = Number(process.env.NIMB_MCP_PORT) || 8765;
const profile = profileFromEnvironment();
const { version } = JSON.parse(readFileSync(new URL("../package.json", import.meta.url), "utf8")) as { version: string };

const store = new Store(profile.database, writable);
const token = new Token(profile.token);

// There is no input to end with: the server goes when it is told to, or when whoever started it is gone.
const parent = process.ppid;
process.on("SIGTERM", () => process.exit(0));
setInterval(() => {
  if (process.ppid !== parent) process.exit(0);
  token.current(); // a secret that was removed is replaced without waiting for a call
}, 2000);

token.current();
await listen({ port, store, token, version });
