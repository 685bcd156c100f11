// Turns Telegram's updates into events for Corvane.

import type { Chat, Message, MessageEntity, MessageReactionUpdated } from "grammy/types";
import { groupId, type MessageEvent } from "../lib/events.ts";
import { rowsOf } from "../lib/files.ts";
import { fileIn } from "./files.ts";

/** Unique among all chats: Telegram numbers the messages of each group separately. */
export function messageId({ chat, message_id: number }: { chat: { id: number }; message_id: number }): string {
  return `${chat.id}_${number}`;
}

export function chatId({ id, type }: Chat): string {
  return type === "private" ? String(id) : groupId(String(id));
}

/** A message as rows; empty if there is nothing to read in it, such as a notice that someone joined. */
export function rowsFrom(message: Message, direction: "IN" | "OUT"): MessageEvent[] {
  const file = fileIn(message);
  const body = bodyOf(message);
  if (body === "" && !file) return [];
  const event: MessageEvent = {
    type: "message",
    convExternalId: chatId(message.chat),
    providerMsgId: messageId(message),
    direction,
    body,
    ts: message.date * 1000,
    convTitle: nameOf(message.chat),
    sender: direction === "IN" ? nameOf(message.sender_chat ?? message.from) : undefined,
  };
  return rowsOf(event, file ? [file] : []);
}

type Named = { title?: string; first_name?: string; last_name?: string; username?: string };

export function nameOf(who: Named | undefined): string | undefined {
  const { title, first_name: first, last_name: last, username } = who ?? {};
  return title || [first, last].filter(Boolean).join(" ") || username;
}

function bodyOf(message: Message): string {
  const { text, caption, entities, caption_entities: captionEntities, venue, location, contact, poll, dice } = message;
  if (text !== undefined) return withLinks(text, entities);
  if (caption !== undefined) return withLinks(caption, captionEntities);
  if (venue) return `${venue.title}, ${venue.address}`;
  if (location) return `https://www.openstreetmap.org/?mlat=${location.latitude}&mlon=${location.longitude}`;
  if (contact) return `${nameOf(contact) ?? ""} ${contact.phone_number}`.trim();
  if (poll) return [poll.question, ...poll.options.map((option) => `- ${option.text}`)].join("\n");
  return dice?.emoji ?? "";
}

/** The text with the addresses of its links. */
function withLinks(text: string, entities: MessageEntity[] = []): string {
  const links = entities.filter((entity) => entity.type === "text_link").sort((a, b) => b.offset - a.offset);
  return links.reduce((said, { offset, length, url }) => {
    const end = offset + length;
    return `${said.slice(0, end)} (${url})${said.slice(end)}`;
  }, text);
}

/** The emoji of a person's current reaction; empty if it was removed. */
export function emojiOf({ new_reaction: reactions }: MessageReactionUpdated): string {
  const [reaction] = reactions.filter(({ type }) => type === "emoji");
  return reaction?.type === "emoji" ? reaction.emoji : "";
}
