// The two byte streams of an engine: event lines out, command lines in.

import { once } from "node:events";
import { createInterface } from "node:readline";
import type { EngineEvent } from "./events.ts";

export type Command = Record<string, unknown>;

const sentinel = "@@CORVANE@@";

let lastNumber = 0;
let isClosed = false;
const unstored: { number: number; stored: () => void }[] = [];

/** Prints one event; await it, so that what the pipe does not take is never more than a line. With `stored`, which
 *  runs once Corvane has this line and all before it on its disk, the line is numbered. */
export async function emit(event: EngineEvent, stored?: () => void): Promise<void> {
  if (isClosed) return;
  let line: object = event;
  if (stored) {
    line = { ...event, ack: ++lastNumber };
    unstored.push({ number: lastNumber, stored });
  }
  process.stdout.write(sentinel + JSON.stringify(line) + "\n");
  if (process.stdout.writableNeedDrain) await once(process.stdout, "drain");
}

export const log = (msg: string): Promise<void> => emit({ type: "log", msg });

/** Lets out what was printed, and prints nothing more. */
export async function closeOutput(): Promise<void> {
  if (isClosed) return;
  isClosed = true;
  await new Promise((resolve) => process.stdout.write("", resolve));
}

/** Hands over every command but acknowledgments, which run what waited for them; what is no JSON object is passed over.
 *  Resolves at the end of the input. */
export async function readCommands(handle: (command: Command) => void): Promise<void> {
  for await (const line of createInterface({ input: process.stdin, crlfDelay: Infinity })) {
    const command = parsed(line);
    if (command?.cmd === "ack") runStored(Number(command.n));
    else if (command) handle(command);
  }
}

function runStored(number: number): void {
  while (unstored[0] && unstored[0].number <= number) unstored.shift()?.stored();
}

function parsed(line: string): Command | undefined {
  try {
    const value: unknown = JSON.parse(line);
    return typeof value === "object" && value !== null && !Array.isArray(value) ? (value as Command) : undefined;
  } catch {
    return undefined;
  }
}

/** The text at a key, or an empty one. */
export function textOf(command: Command, key: string): string {
  const value = command[key];
  return typeof value === "string" ? value : "";
}
