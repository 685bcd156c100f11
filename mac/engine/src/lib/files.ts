// Files of messages: how they are shown, fetched and stored.

import { createReadStream } from "node:fs";
import type { Readable } from "node:stream";
import type { MediaType, MessageEvent } from "./events.ts";
import { writeMedia } from "./media.ts";
import type { OutgoingFile } from "./outbox.ts";
import { wordsOf } from "./run.ts";
import { oneLine } from "./text.ts";
import { emit } from "./wire.ts";

export interface FileMark {
  name: string;
  mediaType: MediaType;
}

/** The rows of a message's files, which follow the message itself. */
export function fileRows(message: MessageEvent, files: FileMark[]): MessageEvent[] {
  return files.map(({ name, mediaType }, index) => ({
    ...message,
    providerMsgId: `${message.providerMsgId}/${index + 1}`,
    body: `[Document] ${oneLine(name, 255) || "file"}`,
    mediaType,
    subject: undefined,
    historical: true,
  }));
}

/** The rows of a message with files. Without text, the first file takes the place of the message. */
export function rowsOf(message: MessageEvent, files: FileMark[]): MessageEvent[] {
  const rows = fileRows(message, files);
  if (message.body !== "" || rows.length === 0) return [message, ...rows];
  const [{ body, mediaType }, ...others] = rows;
  return [{ ...message, body, mediaType }, ...others];
}

/** The message and the index of the file, counted from 0. */
export function fileOf(providerMsgId: string): { message: string; index: number } {
  const [message, number = "1"] = providerMsgId.split("/");
  return { message, index: Number(number) - 1 };
}

/** Stores copies of sent files for their rows: the outbox keeps the originals only until they are sent. */
export async function keepSent(mediaDir: string, rows: MessageEvent[], files: OutgoingFile[]): Promise<void> {
  for (const [index, row] of rows.filter(({ mediaType }) => mediaType).entries()) {
    const { path, name } = files[index];
    row.mediaPath = await writeMedia(mediaDir, row.providerMsgId, name, createReadStream(path)).catch(() => undefined);
  }
}

/** Writes the file under a safe name and returns its path. */
export type Save = (name: string, content: Readable) => Promise<string>;

export interface FetchedFile {
  mediaPath: string;
  mediaType: MediaType;
}

/** Fetches a file on request and reports the progress. */
export async function reportDownload(mediaDir: string, id: string, fetchFile: (save: Save) => Promise<FetchedFile>): Promise<void> {
  await emit({ type: "media", providerMsgId: id, state: "requested" });
  try {
    const file = await fetchFile((name, content) => writeMedia(mediaDir, id, name, content));
    await emit({ type: "media", providerMsgId: id, state: "success", ...file });
  } catch (error) {
    await emit({ type: "media", providerMsgId: id, state: "failed", error: wordsOf(error) });
  }
}

const kinds: [RegExp, MediaType][] = [
  [/\.(jpe?g|png|gif|webp|bmp)$/i, "image"],
  [/\.(mp3|m4a|ogg|oga|opus|wav|flac|aac)$/i, "audio"],
  [/\.(mp4|m4v|mov|webm|mkv|avi)$/i, "video"],
];

/** The kind of a file, by its name. */
export function mediaTypeOfName(name: string): MediaType {
  return kinds.find(([ending]) => ending.test(name))?.[1] ?? "document";
}
