// The lifetime of an engine's process, from its environment to an orderly exit.

import { closeOutput, emit, log, readCommands, type Command } from "./wire.ts";

/** The account's settings from Corvane. Both folders are absolute paths. */
export interface Place {
  account: string;
  mediaDir: string;
  stateDir: string;
}

export interface Engine {
  /** Handles one command; it must not throw. */
  handle(command: Command): void;
  /** Ends work in progress within four seconds. */
  close(): Promise<void>;
}

const leaving = new AbortController();

/** Aborted when the process is about to end. */
export const stopping: AbortSignal = leaving.signal;

/** Reports an unhandled error as the account's last log line, because standard error is discarded. */
export async function runEngine(start: (place: Place) => Promise<Engine>): Promise<void> {
  process.umask(0o077);
  process.stdout.on("error", () => process.exit(0));
  process.on("uncaughtException", (error) => void fail(error));
  let engine: Engine | undefined;
  const leave = (): void => void end(engine, 0);
  process.on("SIGTERM", leave);
  try {
    engine = await start(placeFrom(process.env));
    if (stopping.aborted) return;
    const { handle } = engine;
    await readCommands((command) => handle(command));
    leave();
  } catch (error) {
    await fail(error);
  }
}

/** The account cannot be used until the user acts: reports why, and exits. */
export async function signOut(reason: string): Promise<void> {
  await log(reason);
  await emit({ type: "status", state: "logged_out" });
  await end(undefined, 0);
}

async function fail(error: unknown): Promise<void> {
  await log(wordsOf(error));
  await end(undefined, 1);
}

async function end(engine: Engine | undefined, code: number): Promise<void> {
  if (stopping.aborted) return;
  leaving.abort();
  const late = setTimeout(() => process.exit(code), 4_000);
  await engine?.close().catch(() => {});
  await closeOutput();
  clearTimeout(late);
  process.exit(code);
}

export function wordsOf(error: unknown): string {
  return error instanceof Error ? error.message : String(error);
}

function placeFrom(environment: NodeJS.ProcessEnv): Place {
  const value = (name: string): string => {
    const text = environment[name];
    if (!text) throw new Error(`${name} is not set.`);
    return text;
  };
  return {
    account: value("CORVANE_ACCOUNT"),
    mediaDir: value("CORVANE_MEDIA_DIR"),
    stateDir: value("CORVANE_STATE_DIR"),
  };
}
