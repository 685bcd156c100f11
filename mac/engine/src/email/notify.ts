// Asks the server to announce which folder has new mail (RFC 5465), if it supports that.

import type { ImapFlow } from "imapflow";
import { encodePath } from "imapflow/lib/tools.js";
import { log } from "../lib/wire.ts";
import { wordsOfServer } from "./client.ts";

/** Members that the library has but does not declare. */
interface Inside {
  exec(command: string, attributes: unknown[]): Promise<{ next(): void }>;
  untaggedHandlers: Record<string, (line: { attributes?: { value?: unknown }[] }) => Promise<void>>;
}

/** `client` has the inbox open and keeps receiving its news. `stirred` is called with the path of another folder. */
export async function notify(client: ImapFlow, paths: string[], stirred: (path: string) => void): Promise<void> {
  const folders = new Map(paths.filter((path) => path !== "INBOX").map((path) => [encodePath(client, path), path]));
  if (!client.capabilities.has("NOTIFY") || folders.size === 0) return;
  const atom = (value: string): object => ({ type: "ATOM", value });
  const news = [atom("MessageNew"), atom("MessageExpunge")];
  const others = [...folders.keys()].map((value) => ({ type: "STRING", value }));
  const groups = [
    [atom("selected"), [...news, atom("FlagChange")]],
    [atom("mailboxes"), others, news],
  ];
  const inside = client as unknown as Inside;
  inside.untaggedHandlers.STATUS = async ({ attributes }) => {
    const path = folders.get(String(attributes?.[0]?.value));
    if (path !== undefined) stirred(path);
  };
  try {
    (await inside.exec("NOTIFY", [atom("SET"), ...groups])).next();
  } catch (error) {
    if (!client.usable) throw error;
    await log(`The server does not tell what is new in all folders: ${wordsOfServer(error as Error)}`);
  }
}
