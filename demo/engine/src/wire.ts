// The two byte streams of an engine: event lines out, command lines in.

import { once } from "node:events";
import { createInterface } from "node:readline";

export type Status = "connecting" | "open" | "close" | "logged_out";

export interface MessageEvent {
  type: "message";
  convExternalId: string;
  convTitle: string;
  providerMsgId: string;
  direction: "IN" | "OUT";
  body: string;
  ts: number;
  sender?: string;
  mediaType?: string;
  mediaPath?: string;
  historical?: boolean;
}

/** What a `send` command named, and its acknowledgment names. */
export type SendName = { draftId: string } | { sendId: string };

export type EngineEvent =
  | MessageEvent
  | { type: "qr"; qr: string }
  | { type: "status"; state: Status; user?: string }
  | { type: "log"; msg: string }
  | { type: "avatar"; jid: string; path: string }
  | { type: "msgStatus"; providerMsgId: string; status: number }
  | ({ type: "sendAck"; status: "sent" | "failed"; providerMsgId?: string; error?: string } & SendName)
  | { type: "reaction"; targetProviderMsgId: string; emoji: string }
  | { type: "media"; providerMsgId: string; state: "requested" }
  | { type: "media"; providerMsgId: string; state: "success"; mediaPath: string; mediaType: string }
  | { type: "media"; providerMsgId: string; state: "failed"; error: string }
  | { type: "contactName"; jid: string; name: string }
  | { type: "servers"; imap: Server; smtp: Server; found: string; confirm: string[]; signIn: string; hint: string }
  | { type: "signIn"; ok: boolean; at?: string; error?: string };

export interface Server {
  host: string;
  port: number;
  security: "tls" | "starttls";
}

export type Command = Record<string, unknown>;

const sentinel = "@@CORVANE@@";

let isLeaving = false;

/** The only way to print: one whole line a call. With a number, the desktop says when it has stored the line. */
export function emit(event: EngineEvent, ack?: number): void {
  if (isLeaving) return;
  process.stdout.write(sentinel + JSON.stringify(ack === undefined ? event : { ...event, ack }) + "\n");
}

/** Until the desktop has taken what was printed: what it has not lies in this process's memory. */
export async function drained(): Promise<void> {
  if (process.stdout.writableNeedDrain) await once(process.stdout, "drain");
}

/** Hands every command line to `handle`; what is no JSON object is passed over. Ends the process with its input, once
 *  what it was saying then is `said`; a signal ends it at once. */
export function listen(handle: (command: Command) => void, said: () => Promise<void>): void {
  const leave = (): void => {
    if (isLeaving) return;
    isLeaving = true;
    process.stdout.write("", () => process.exit(0));
  };
  process.stdout.on("error", () => process.exit(0));
  process.on("SIGTERM", leave);
  const lines = createInterface({ input: process.stdin, crlfDelay: Infinity });
  lines.on("line", (line) => {
    const command = parsed(line);
    if (command !== undefined) handle(command);
  });
  lines.on("close", () => void said().then(leave));
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
