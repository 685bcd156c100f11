// Receives updates for the bot, and offers its functions.

import type { DatabaseSync } from "node:sqlite";
import type { Chat, Message, Update } from "grammy/types";
import type { Network } from "../lib/channel.ts";
import { providerChat } from "../lib/events.ts";
import { fileOf } from "../lib/files.ts";
import { People } from "../lib/people.ts";
import { stopping, type Place } from "../lib/run.ts";
import { emit, untilStored, whenStored } from "../lib/wire.ts";
import { telegramFrom } from "./api.ts";
import { fetchFile, fileIn, keepFile, openRef } from "./files.ts";
import { mostFileBytes, telegramDeliver } from "./sending.ts";
import { chatId, emojiOf, messageId, nameOf, rowsFrom } from "./teller.ts";

const wanted = ["message", "edited_message", "channel_post", "edited_channel_post", "message_reaction"] as const;
/** In seconds: how long a poll may wait for updates, and how much later its answer may arrive. */
const [longPoll, grace] = [25, 15];

export function joinTelegram(place: Place, db: DatabaseSync): Network {
  const telegram = telegramFrom();
  const { api } = telegram;
  const people = new People(db, place);

  const keepFileOf = (message: Message): void => {
    const file = fileIn(message);
    if (file) whenStored(() => keepFile(db, messageId(message), file));
  };

  const meet = (chat: Chat): Promise<void> =>
    people.meet(chatId(chat), async () => {
      const { photo, ...named } = await api.getChat(chat.id);
      const picture = photo && { mark: photo.big_file_unique_id, open: () => openRef(telegram, photo.big_file_id) };
      return { name: nameOf(named), picture };
    });

  const tell = async (update: Update): Promise<void> => {
    const reaction = update.message_reaction;
    if (reaction) await emit({ type: "reaction", targetProviderMsgId: messageId(reaction), emoji: emojiOf(reaction) });
    const edited = update.edited_message ?? update.edited_channel_post;
    const message = update.message ?? update.channel_post ?? edited;
    if (!message) return;
    const rows = rowsFrom(message, "IN");
    for (const row of rows) await emit(edited ? { ...row, historical: true } : row);
    if (rows.length === 0) return;
    keepFileOf(message);
    void meet(message.chat);
  };

  return {
    maxBytes: mostFileBytes,
    deliver: telegramDeliver(telegram, place.mediaDir, keepFileOf),
    fetchFile: (id, _, save) => fetchFile(telegram, db, fileOf(id).message, save),
    react: async (id, chat, emoji) => {
      const number = Number(id.split("/")[0].split("_")[1]);
      // Telegram decides which emoji it accepts; the library lists those known at its release.
      const reaction = (emoji ? [{ type: "emoji", emoji }] : []) as Parameters<typeof api.setMessageReaction>[2];
      await api.setMessageReaction(providerChat(chat), number, reaction);
    },
    session: async () => {
      const { username } = await api.getMe();
      let [offset, timeout] = [0, 0];
      while (!stopping.aborted) {
        const signal = AbortSignal.any([stopping, AbortSignal.timeout((timeout + grace) * 1000)]);
        const updates = await api.getUpdates({ offset, timeout, allowed_updates: wanted }, signal as never);
        if (timeout === 0) await emit({ type: "status", state: "open", user: `@${username}` });
        timeout = longPoll;
        for (const update of updates) await tell(update);
        if (updates.length === 0) continue;
        await untilStored(); // the next call makes Telegram forget them
        offset = updates[updates.length - 1].update_id + 1;
      }
    },
  };
}
