// Remembers the files of messages, because Telegram reports them only once.

import type { DatabaseSync } from "node:sqlite";
import type { Message } from "grammy/types";
import type { FetchedFile, FileMark, Save } from "../lib/files.ts";
import type { Tables } from "../lib/state.ts";
import { openFile } from "../lib/web.ts";
import type { Telegram } from "./api.ts";

export const fileTables: Tables = {
  create: `CREATE TABLE IF NOT EXISTS file(
  message TEXT PRIMARY KEY, ref TEXT NOT NULL, name TEXT NOT NULL, kind TEXT NOT NULL) WITHOUT ROWID;`,
  retell: "", // a bot receives everything only once
};

export interface TelegramFile extends FileMark {
  /** The id by which Telegram hands it out. */
  ref: string;
}

/** The file of a message. */
export function fileIn(message: Message): TelegramFile | undefined {
  const { photo, video, animation, voice, audio, document, sticker, video_note: round } = message;
  const day = new Date(message.date * 1000).toISOString().slice(0, 10);
  if (photo) return { ref: photo[photo.length - 1].file_id, name: `Photo ${day}.jpg`, mediaType: "image" };
  if (animation) return { ref: animation.file_id, name: animation.file_name ?? `Animation ${day}.mp4`, mediaType: "video" };
  if (video) return { ref: video.file_id, name: video.file_name ?? `Video ${day}.mp4`, mediaType: "video" };
  if (round) return { ref: round.file_id, name: `Video ${day}.mp4`, mediaType: "video" };
  if (voice) return { ref: voice.file_id, name: `Voice note ${day}.ogg`, mediaType: "audio" };
  if (audio) return { ref: audio.file_id, name: audio.file_name ?? `${audio.title ?? "Audio"}.mp3`, mediaType: "audio" };
  if (document) return { ref: document.file_id, name: document.file_name ?? "file", mediaType: "document" };
  if (sticker) return { ref: sticker.file_id, name: `Sticker ${sticker.emoji ?? ""}.${stickerEnding(sticker)}`, mediaType: "sticker" };
}

function stickerEnding({ is_animated: isAnimated, is_video: isVideo }: NonNullable<Message["sticker"]>): string {
  if (isAnimated) return "tgs";
  return isVideo ? "webm" : "webp";
}

export function keepFile(db: DatabaseSync, message: string, { ref, name, mediaType }: TelegramFile): void {
  db.prepare("INSERT OR REPLACE INTO file VALUES(?,?,?,?)").run(message, ref, name, mediaType);
}

export async function fetchFile(telegram: Telegram, db: DatabaseSync, message: string, save: Save): Promise<FetchedFile> {
  const row = db.prepare("SELECT ref, name, kind FROM file WHERE message=?").get(message);
  if (!row) throw new Error("This file is not known any more.");
  const mediaPath = await save(String(row.name), await openRef(telegram, String(row.ref)));
  return { mediaPath, mediaType: row.kind as FetchedFile["mediaType"] };
}

/** The content of a file. Telegram gives bots files of up to 20 MB. */
export async function openRef({ api, files }: Telegram, ref: string): ReturnType<typeof openFile> {
  const { file_path: path } = await api.getFile(ref);
  if (!path) throw new Error("Telegram does not give this file.");
  return openFile(files + path, "Telegram");
}
