// Turns Discord's messages into events for Corvane.

import { MessageType, type APIAttachment, type APIEmoji, type APIMessage } from "discord.js";
import { mediaTypeOf, type MessageEvent } from "../lib/events.ts";
import { rowsOf, type FileMark } from "../lib/files.ts";
import { nameOf, type Chats } from "./chats.ts";

/** Other kinds are notices about the channel. */
const spoken = new Set<MessageType>([MessageType.Default, MessageType.Reply, MessageType.ChatInputCommand, MessageType.ContextMenuCommand]);

/** A message as rows; empty if it is not from anyone. */
export async function rowsFrom(message: APIMessage, chats: Chats, self: string): Promise<MessageEvent[]> {
  const files = message.attachments ?? [];
  const body = await bodyOf(message, chats);
  if (!spoken.has(message.type) || (body === "" && files.length === 0)) return [];
  const isMine = message.author.id === self;
  const { title } = await chats.place(message.channel_id);
  const event: MessageEvent = {
    type: "message",
    convExternalId: await chats.chatId(message.channel_id),
    providerMsgId: message.id,
    direction: isMine ? "OUT" : "IN",
    body,
    ts: new Date(message.timestamp).getTime(),
    convTitle: title,
    sender: isMine ? undefined : nameOf(message.author),
  };
  return rowsOf(event, files.map(fileMark));
}

export function fileMark({ filename, content_type: type }: APIAttachment): FileMark {
  return { name: filename, mediaType: mediaTypeOf(type ?? "") };
}

async function bodyOf(message: APIMessage, chats: Chats): Promise<string> {
  const forwarded = message.message_snapshots?.[0]?.message.content;
  const stickers = message.sticker_items?.map(({ name }) => `[Sticker] ${name}`) ?? [];
  const embeds = message.embeds?.map(({ title, description }) => [title, description].filter(Boolean).join("\n")) ?? [];
  const text = message.content || forwarded || stickers.join("\n");
  return plainText(text || (message.author.bot ? embeds.join("\n\n") : ""), message, chats);
}

/** The text with names in place of Discord's numbers. */
async function plainText(text: string, { mentions = [] }: APIMessage, chats: Chats): Promise<string> {
  const names = new Map(mentions.map((user) => [user.id, nameOf(user)]));
  for (const [, id] of text.matchAll(/<#(\d+)>/g)) {
    const { title } = await chats.place(id).catch(() => ({ title: undefined }));
    names.set(id, title?.replace(/^#| \(.*\)$/g, "") ?? id);
  }
  return text
    .replace(/<@!?(\d+)>/g, (_, id: string) => `@${names.get(id) ?? id}`)
    .replace(/<#(\d+)>/g, (_, id: string) => `#${names.get(id) ?? id}`)
    .replace(/<a?(:\w+:)\d+>/g, "$1");
}

export function emojiOf({ id, name }: Pick<APIEmoji, "id" | "name">): string {
  return id ? `:${name}:` : (name ?? "");
}
