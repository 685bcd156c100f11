// A stand-in for the web service, on loopback: node src/main.ts [--port N] [FAULT...]
// Prints its address on standard output and one line for each request on standard error.

import { parseArgs } from "node:util";
import { password } from "./tokens.ts";
import { Service } from "./service.ts";

const { values, positionals } = parseArgs({ options: { port: { type: "string", default: "0" } }, allowPositionals: true });
const log = (line: string): void => console.error(`web ${new Date().toTimeString().slice(0, 8)} ${line}`);
try {
  const service = new Service(positionals, log);
  const address = await service.listen(Number(values.port));
  console.log(address);
  log(`the web service answers on ${address}; sign in with any address and the password "${password}"`);
} catch (error) {
  console.error((error as Error).message);
  process.exit(1);
}
for (const signal of ["SIGINT", "SIGTERM"] as const) process.once(signal, () => process.exit(0));
