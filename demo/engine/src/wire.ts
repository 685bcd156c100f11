// The two byte streams of an engine: event lines out, command lines in.

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

export type EngineEvent =
  | MessageEvent
  | { type: "qr"; qr: string }
  | { type: "status"; state: Status; user?: string }
  | { type: "log"; msg: string }
  | { type: "avatar"; jid: string; path: string }
  | { type: "msgStatus"; providerMsgId: string; status: number }
  | { type: "sendAck"; draftId: string; status: "sent" | "failed"; providerMsgId?: string; error?: string }
  | { type: "reaction"; targetProviderMsgId: string; emoji: string }
  | { type: "media"; providerMsgId: string; state: "requested" }
  | { type: "media"; providerMsgId: string; state: "success"; mediaPath: string; mediaType: string }
  | { type: "media"; providerMsgId: string; state: "failed"; error: string }
  | { type: "contactName"; jid: string; name: string };

export type Command = Record<string, unknown>;

const sentinel = "@@CORVANE@@";

/** The only way to print: one whole line a call, in ASCII, since the reader drops a chunk that splits a character. */
export function emit(event: EngineEvent): void {
  const json = JSON.stringify(event).replace(
    /[\u007f-\uffff]/g,
    (unit) => "\\u" + unit.charCodeAt(0).toString(16).padStart(4, "0"),
  );
  process.stdout.write(sentinel + json + "\n");
}

/** Hands every command line to `handle`; what is no JSON object is passed over. Ends the process with its input. */
export function listen(handle: (command: Command) => void): void {
  const exit = (): never => process.exit(0);
  const leave = (): void => void process.stdout.write("", exit); // once all that was printed is out
  process.stdout.on("error", exit);
  process.on("SIGTERM", leave);
  const lines = createInterface({ input: process.stdin, crlfDelay: Infinity });
  lines.on("line", (line) => {
    const command = parsed(line);
    if (command !== undefined) handle(command);
  });
  lines.on("close", leave);
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
