// The two streams of an engine: events out, commands in.

import { once } from "node:events";
import { createInterface } from "node:readline";
import type { EngineEvent } from "./events.ts";

export type Command = Record<string, unknown>;

const sentinel = "@@CORVANE@@";

let printed = 0;
let stored = 0;
let isClosed = false;
const waiting: { number: number; run: () => void }[] = [];

/** Prints one event. Await it, so that at most one line is buffered beyond the pipe. */
export async function emit(event: EngineEvent): Promise<void> {
  if (isClosed) return;
  printed += 1;
  print({ ...event, ack: printed });
  await drained();
}

/** Resolves when the pipe has taken all output. */
export async function drained(): Promise<void> {
  if (process.stdout.writableNeedDrain) await once(process.stdout, "drain");
}

/** Prints a line without a number, which is not acknowledged. */
export function print(event: object): void {
  process.stdout.write(sentinel + JSON.stringify(event) + "\n");
}

/** Calls `run` when everything printed so far is on Corvane's disk; in the order of the calls. */
export function whenStored(run: () => void): void {
  if (stored >= printed) run();
  else waiting.push({ number: printed, run });
}

/** Resolves when everything printed so far is on Corvane's disk. */
export const untilStored = (): Promise<void> => new Promise((resolve) => whenStored(resolve));

export const log = (msg: string): Promise<void> => emit({ type: "log", msg });

/** Flushes the output, and prints nothing more. */
export async function closeOutput(): Promise<void> {
  if (isClosed) return;
  isClosed = true;
  await new Promise((resolve) => process.stdout.write("", resolve));
}

/** Passes on every command except acknowledgments, which run what waited for them. Lines that are not JSON objects
 *  are skipped. Resolves at the end of the input. */
export async function readCommands(handle: (command: Command) => void): Promise<void> {
  for await (const line of createInterface({ input: process.stdin, crlfDelay: Infinity })) {
    const command = parsed(line);
    if (command?.cmd === "ack") runStored(Number(command.n));
    else if (command) handle(command);
  }
}

function runStored(number: number): void {
  stored = Math.max(stored, number);
  while (waiting[0] && waiting[0].number <= stored) waiting.shift()?.run();
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
