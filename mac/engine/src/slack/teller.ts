// Turns Slack's messages into events for Corvane.

import { mediaTypeOf, type MessageEvent } from "../lib/events.ts";
import { rowsOf, type FileMark } from "../lib/files.ts";
import { chatId, type Chats } from "./chats.ts";
import { plainText } from "./text.ts";

/** The used part of a Slack message. */
export interface SlackMessage {
  ts: string;
  text?: string;
  subtype?: string;
  user?: string;
  bot_id?: string;
  username?: string;
  bot_profile?: { name?: string };
  files?: SlackFile[];
}

export interface SlackFile {
  id: string;
  name?: string;
  mimetype?: string;
  mode?: string;
  url_private?: string;
  url_private_download?: string;
}

export interface Self {
  user_id: string;
  bot_id?: string;
  user?: string;
  team?: string;
}

/** Other kinds are notices about the channel. */
const spoken = new Set([undefined, "file_share", "bot_message", "thread_broadcast", "me_message"]);

export function messageId(channel: string, ts: string): string {
  return `${channel}_${ts}`;
}

/** The message that an id refers to. */
export function placeOf(id: string): { channel: string; ts: string } {
  const [channel, ts] = id.split("_");
  return { channel, ts };
}

export function filesOf({ files = [] }: SlackMessage): SlackFile[] {
  return files.filter(({ mode }) => mode !== "tombstone" && mode !== "hidden_by_limit");
}

export function fileMark({ name, mimetype = "" }: SlackFile): FileMark {
  return { name: name ?? "file", mediaType: mediaTypeOf(mimetype) };
}

/** A message as rows; empty if it is not from anyone. */
export async function rowsFrom(channel: string, message: SlackMessage, chats: Chats, self: Self): Promise<MessageEvent[]> {
  const { ts, text = "", subtype, user, bot_id: bot, username, bot_profile: profile } = message;
  if (!spoken.has(subtype)) return [];
  const isMine = user === self.user_id || (bot !== undefined && bot === self.bot_id);
  const event: MessageEvent = {
    type: "message",
    convExternalId: chatId(channel),
    providerMsgId: messageId(channel, ts),
    direction: isMine ? "OUT" : "IN",
    body: await plainText(text, (member) => chats.name(member)),
    ts: Math.round(Number(ts) * 1000),
    convTitle: await chats.title(channel),
    sender: isMine ? undefined : (username ?? profile?.name ?? (user && (await chats.name(user)))),
  };
  return rowsOf(event, filesOf(message).map(fileMark));
}
