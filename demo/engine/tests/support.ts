// A demonstration engine as a child process.

import type { ChildProcess } from "node:child_process";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { EngineProcess as Process, startScript as start, type Event } from "../../../mac/engine/tests/support.ts";

export { isLive, isMessage, patience, temporaryFolder as temporaryHome, type Event } from "../../../mac/engine/tests/support.ts";

export const entries = { whatsapp: "main.ts", email: "email-main.ts", telegram: "telegram-main.ts" } as const;
export type Channel = keyof typeof entries;
export const channels = Object.keys(entries) as Channel[];

export const fixedNow = 1_760_000_000_000;
export const standingStill = { CORVANE_DEMO_STILL: "1", CORVANE_DEMO_NOW: String(fixedNow) };

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

/** Without the line's number. */
export const unnumbered = ({ ack, ...event }: Event): Event => event;

export function script(entry: string): string {
  return fileURLToPath(new URL(`../src/${entry}`, import.meta.url));
}

export function startScript(entry: string, environment: NodeJS.ProcessEnv): ChildProcess {
  return start(script(entry), environment);
}

export class EngineProcess extends Process {
  constructor(channel: Channel, environment: NodeJS.ProcessEnv) {
    super(script(entries[channel]), environment);
    this.keepsOutput = true;
  }
}
