// Sends messages through the bot.

import { InputFile } from "grammy";
import type { Message } from "grammy/types";
import { providerChat } from "../lib/events.ts";
import { keepSent, mediaTypeOfName } from "../lib/files.ts";
import { Refused, type Deliver, type OutgoingFile, type Sending } from "../lib/outbox.ts";
import { post } from "../lib/web.ts";
import type { Telegram } from "./api.ts";
import { rowsFrom } from "./teller.ts";

/** Telegram's own limits. */
export const mostFileBytes = 50_000_000;
const longestText = 4096;
const longestCaption = 1024;
const mostFiles = 10;

export function telegramDeliver(telegram: Telegram, mediaDir: string, sent: (message: Message) => void): Deliver {
  return async (sending, begin) => {
    check(sending);
    const messages = await post(sending, begin, () => handOver(telegram, sending));
    const rows = messages.flatMap((message) => rowsFrom(message, "OUT"));
    await keepSent(mediaDir, rows, sending.files);
    return { messages: rows, after: () => messages.forEach(sent) };
  };
}

function check({ text, files }: Sending): void {
  const longest = files.length > 0 ? longestCaption : longestText;
  if (text.length > longest) throw new Refused(`Telegram takes ${longest} characters here, and this text has ${text.length}.`);
  if (files.length > mostFiles) throw new Refused(`Telegram takes ${mostFiles} files in one message.`);
}

async function handOver({ api }: Telegram, { chatId, text, files }: Sending): Promise<Message[]> {
  const chat = providerChat(chatId);
  if (files.length === 0) return [await api.sendMessage(chat, text)];
  const areImages = files.every(({ name }) => mediaTypeOfName(name) === "image");
  if (files.length === 1) return [await sendFile(api, chat, files[0], text)];
  const media = files.map((file, index) => ({
    type: areImages ? ("photo" as const) : ("document" as const),
    media: inputFile(file),
    caption: index === 0 && text ? text : undefined,
  }));
  return api.sendMediaGroup(chat, media as Parameters<typeof api.sendMediaGroup>[1]);
}

async function sendFile(api: Telegram["api"], chat: string, file: OutgoingFile, text: string): Promise<Message> {
  const caption = text ? { caption: text } : {};
  switch (mediaTypeOfName(file.name)) {
    case "image":
      return api.sendPhoto(chat, inputFile(file), caption);
    case "audio":
      return api.sendAudio(chat, inputFile(file), caption);
    case "video":
      return api.sendVideo(chat, inputFile(file), caption);
    default:
      return api.sendDocument(chat, inputFile(file), caption);
  }
}

const inputFile = ({ path, name }: OutgoingFile): InputFile => new InputFile(path, name);
