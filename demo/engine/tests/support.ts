// A demonstration engine as a child process, started as the desktop starts it.

import { spawn, type ChildProcess } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath } from "node:url";

export type Event = Record<string, unknown> & { type: string };

export const entries = { whatsapp: "main.ts", email: "email-main.ts", telegram: "telegram-main.ts" } as const;
export type Channel = keyof typeof entries;
export const channels = Object.keys(entries) as Channel[];

export const fixedNow = 1_760_000_000_000;
export const standingStill = { CORVANE_DEMO_STILL: "1", CORVANE_DEMO_NOW: String(fixedNow) };

const flags = ["--max-old-space-size=128", "--max-semi-space-size=2", "--experimental-strip-types", "--no-warnings"];

const children = new Map<ChildProcess, NodeJS.ProcessEnv>();

/** A home that goes with its test, and so does every child that lives in it. */
export function temporaryHome(after: (fn: () => void) => void): string {
  const home = mkdtempSync(join(tmpdir(), "corvane-demo-"));
  after(() => {
    for (const [child, { HOME }] of children) if (HOME?.startsWith(home)) child.kill("SIGKILL");
    rmSync(home, { recursive: true, force: true });
  });
  return home;
}

export function environmentIn(home: string, more: Record<string, string> = {}): NodeJS.ProcessEnv {
  return {
    PATH: process.env.PATH,
    TZ: "Europe/Madrid",
    HOME: join(home, "home"),
    XDG_DATA_HOME: join(home, "share"),
    WHATSAPP_ACCOUNT_NAME: "taller-vidal",
    EMAIL_USER: "hola@tallervidal.example",
    ...more,
  };
}

export function script(entry: string): string {
  return fileURLToPath(new URL(`../src/${entry}`, import.meta.url));
}

export function startScript(entry: string, environment: NodeJS.ProcessEnv): ChildProcess {
  const child = spawn(process.execPath, [...flags, script(entry)], {
    env: environment,
    stdio: ["pipe", "pipe", "inherit"],
  });
  children.set(child, environment);
  return child;
}

export class EngineProcess {
  readonly child: ChildProcess;
  readonly exited: Promise<number | null>;
  output = "";
  /** The last number that was acknowledged, as the desktop does once the line is stored. */
  acknowledged = 0;
  private waiting: (() => void)[] = [];

  constructor(channel: Channel, environment: NodeJS.ProcessEnv) {
    this.child = startScript(entries[channel], environment);
    this.child.stdout?.setEncoding("utf8").on("data", (text: string) => {
      this.output += text;
      this.acknowledge();
      for (const wake of this.waiting.splice(0)) wake();
    });
    this.exited = new Promise((resolve) => this.child.on("close", (code) => resolve(code)));
  }

  /** Every event of a whole line so far. */
  events(): Event[] {
    const whole = this.output.slice(0, this.output.lastIndexOf("\n") + 1);
    return whole.split("\n").slice(0, -1).map(eventOf);
  }

  /** The first event that `fits`, said already or within 20 seconds. */
  async event(fits: (event: Event) => boolean, from = 0): Promise<Event> {
    return (await this.until((events) => events.slice(from).find(fits) !== undefined)).slice(from).find(fits) as Event;
  }

  async until(enough: (events: Event[]) => boolean): Promise<Event[]> {
    let isLate = false;
    const deadline = setTimeout(() => {
      isLate = true;
      for (const wake of this.waiting.splice(0)) wake();
    }, 20_000);
    try {
      for (;;) {
        const events = this.events();
        if (enough(events)) return events;
        if (isLate) throw new Error(`nothing came in 20 seconds; the last line was ${JSON.stringify(events.at(-1))}`);
        await new Promise<void>((resolve) => this.waiting.push(resolve));
      }
    } finally {
      clearTimeout(deadline);
    }
  }

  private acknowledge(): void {
    const newest = Math.max(0, ...this.events().map(({ ack }) => Number(ack ?? 0)));
    if (newest <= this.acknowledged || !this.child.stdin?.writable) return;
    this.acknowledged = newest;
    this.command({ cmd: "ack", n: newest });
  }

  command(command: object): void {
    this.child.stdin?.write(JSON.stringify(command) + "\n");
  }

  /** Ends its input and waits until it is gone; everything that it said. */
  async end(): Promise<Event[]> {
    this.child.stdin?.end();
    const late = setTimeout(() => this.child.kill("SIGKILL"), 20_000);
    const code = await this.exited;
    clearTimeout(late);
    if (code !== 0) throw new Error(`the engine ended with ${code}`);
    return this.events();
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
