// An engine as a child process, started and answered as Corvane does.

import { spawn, type ChildProcess } from "node:child_process";
import { chmodSync, mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath } from "node:url";

export type Event = Record<string, unknown> & { type: string };

const flags = ["--max-old-space-size=128", "--max-semi-space-size=2", "--experimental-strip-types", "--no-warnings"];

/** In milliseconds; long enough for a busy machine. */
export const patience = 90_000;

const children = new Map<ChildProcess, string>();

/** A folder that goes with its test, and so does every child whose environment lies in it. */
export function temporaryFolder(after: (fn: () => void) => void): string {
  const folder = mkdtempSync(join(tmpdir(), "corvane-engine-"));
  chmodSync(folder, 0o755);
  after(() => {
    for (const [child, environment] of children) if (environment.includes(folder)) child.kill("SIGKILL");
    rmSync(folder, { recursive: true, force: true, maxRetries: 20 }); // a child may still write
  });
  return folder;
}

export function placeIn(folder: string): Record<string, string> {
  return {
    PATH: process.env.PATH ?? "",
    HOME: folder,
    CORVANE_ACCOUNT: "taller",
    CORVANE_MEDIA_DIR: join(folder, "media"),
    CORVANE_STATE_DIR: join(folder, "state"),
  };
}

export const source = (name: string): string => fileURLToPath(new URL(`../src/${name}`, import.meta.url));

export function startScript(script: string, environment: NodeJS.ProcessEnv, ...words: string[]): ChildProcess {
  return startWithin([], script, environment, ...words);
}

/** `place` is a command that starts another one, perhaps none. */
function startWithin(place: string[], script: string, environment: NodeJS.ProcessEnv, ...words: string[]): ChildProcess {
  const [program, ...line] = [...place, process.execPath, ...flags, script, ...words];
  const child = spawn(program, line, {
    env: environment,
    stdio: ["pipe", "pipe", "inherit"],
  });
  children.set(child, JSON.stringify(environment));
  child.stdin?.on("error", () => {});
  return child;
}

export class EngineProcess {
  readonly child: ChildProcess;
  readonly exited: Promise<number | null>;
  readonly #events: Event[] = [];
  /** All of its output, if `keepsOutput` is on. */
  output = "";
  #rest = "";
  #waiting: (() => void)[] = [];
  /** The last number that was acknowledged. If `acknowledges` is off, no line counts as stored. */
  acknowledged = 0;
  acknowledges = true;
  keepsOutput = false;

  constructor(script: string, environment: NodeJS.ProcessEnv, place: string[] = []) {
    this.child = startWithin(place, script, environment);
    this.child.stdout?.setEncoding("utf8").on("data", (text: string) => this.#read(text));
    this.exited = new Promise((resolve) => this.child.on("close", (code) => (this.#wake(), resolve(code))));
  }

  #read(text: string): void {
    if (this.keepsOutput) this.output += text;
    const lines = (this.#rest + text).split("\n");
    this.#rest = lines.pop() ?? "";
    for (const line of lines) this.#events.push(eventOf(line));
    const newest = Math.max(0, ...this.#events.slice(-lines.length || this.#events.length).map(({ ack }) => Number(ack ?? 0)));
    if (this.acknowledges && newest > this.acknowledged) this.command({ cmd: "ack", n: (this.acknowledged = newest) });
    this.#wake();
  }

  #wake(): void {
    for (const wake of this.#waiting.splice(0)) wake();
  }

  /** Every event so far. */
  events(): Event[] {
    return this.#events;
  }

  /** The first event that `fits`, already printed or printed within `patience`. */
  async event(fits: (event: Event) => boolean, from = 0): Promise<Event> {
    return (await this.until((events) => events.slice(from).some(fits))).slice(from).find(fits) as Event;
  }

  async until(enough: (events: Event[]) => boolean): Promise<Event[]> {
    let isLate = false;
    const late = (): void => {
      isLate = true;
      this.#wake();
    };
    const deadline = setTimeout(late, patience);
    try {
      for (;;) {
        if (enough(this.#events)) return this.#events;
        const last = JSON.stringify(this.#events.slice(-3));
        if (isLate) throw new Error(`nothing came in ${patience / 1000} seconds; the last lines were ${last}`);
        if (this.child.exitCode !== null || this.child.signalCode) throw new Error(`the engine ended with ${this.child.exitCode}: ${last}`);
        await new Promise<void>((resolve) => this.#waiting.push(resolve));
      }
    } finally {
      clearTimeout(deadline);
    }
  }

  command(command: object): void {
    if (this.child.stdin?.writable) this.child.stdin.write(JSON.stringify(command) + "\n");
  }

  /** Ends its input and waits for its exit; returns everything it printed. */
  async end(): Promise<Event[]> {
    this.child.stdin?.end();
    const late = setTimeout(() => this.child.kill("SIGKILL"), patience);
    const code = await this.exited;
    clearTimeout(late);
    if (code !== 0) throw new Error(`the engine ended with ${code}: ${JSON.stringify(this.#events.slice(-3))}`);
    return this.#events;
  }

  async kill(): Promise<void> {
    this.child.kill("SIGKILL");
    await this.exited;
  }
}

/** Throws on a line that is no event. */
export function eventOf(line: string): Event {
  const sentinel = "@@CORVANE@@";
  if (!line.startsWith(sentinel)) throw new Error(`a line without a sentinel: ${line}`);
  return JSON.parse(line.slice(sentinel.length)) as Event;
}

export const isMessage = (event: Event): boolean => event.type === "message";
export const isLive = (event: Event): boolean => isMessage(event) && event.historical !== true;
