// Sends messages and reactions as the bot.

import { readFile } from "node:fs/promises";
import { Routes, type APIMessage } from "discord.js";
import { providerChat } from "../lib/events.ts";
import { keepSent } from "../lib/files.ts";
import { withinLimits } from "../lib/limits.ts";
import { Refused, type Deliver, type Sending } from "../lib/outbox.ts";
import { stopping } from "../lib/run.ts";
import { post } from "../lib/web.ts";
import type { Discord } from "./api.ts";
import type { Chats } from "./chats.ts";
import { rowsFrom } from "./teller.ts";

/** Discord's own limits. */
export const mostFileBytes = 10 << 20;
const longestText = 2000;
const mostFiles = 10;

export function discordDeliver(discord: Discord, chats: Chats, mediaDir: string): Deliver {
  return async (sending, begin) => {
    check(sending);
    const { text, files } = sending;
    const channel = await withinLimits(() => chats.channelOf(providerChat(sending.chatId)), { signal: stopping });
    const data = await Promise.all(files.map(async ({ path, name }) => ({ name, data: await readFile(path) })));
    const words = { body: { content: text, allowed_mentions: { parse: [] } }, files: data };
    const message = await post(sending, begin, () => discord.call<APIMessage>("post", Routes.channelMessages(channel), words));
    const rows = await rowsFrom(message, chats, message.author.id);
    await keepSent(mediaDir, rows, files);
    return { messages: rows };
  };
}

function check({ chatId, text, files }: Sending): void {
  if (!/^\d+$/.test(providerChat(chatId))) throw new Refused("Discord needs the ID of a channel or of a person, a long number.");
  if (text.length > longestText) throw new Refused(`Discord takes ${longestText} characters, and this text has ${text.length}.`);
  if (files.length > mostFiles) throw new Refused(`Discord takes ${mostFiles} files in one message.`);
}

/** Makes this the bot's only reaction to the message. */
export async function react(discord: Discord, channel: string, id: string, emoji: string): Promise<void> {
  const { reactions = [] } = await discord.call<APIMessage>("get", Routes.channelMessage(channel, id));
  const mine = reactions.filter(({ me }) => me).map((reaction) => reaction.emoji);
  for (const { id: custom, name } of mine) {
    const key = encodeURIComponent(custom ? `${name}:${custom}` : String(name));
    if (name !== emoji) await discord.call("delete", Routes.channelMessageOwnReaction(channel, id, key));
  }
  if (emoji) await discord.call("put", Routes.channelMessageOwnReaction(channel, id, encodeURIComponent(emoji)));
}
