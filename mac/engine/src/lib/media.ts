// Files received with messages, stored in the folder that Corvane reads them from.

import { createHash } from "node:crypto";
import { createWriteStream, mkdirSync } from "node:fs";
import { rename, rm } from "node:fs/promises";
import { join } from "node:path";
import type { Readable } from "node:stream";
import { pipeline } from "node:stream/promises";

const longestName = 150;

/** Stores a file of message `id` under the sender's name for it, made safe, and returns its path. Partial files are
 *  never visible. */
export async function writeMedia(folder: string, id: string, name: string, content: Readable): Promise<string> {
  const place = join(folder, createHash("sha256").update(id).digest("hex").slice(0, 24));
  mkdirSync(place, { recursive: true, mode: 0o700 });
  const path = join(place, safeName(name));
  const half = join(place, `.${process.pid}.part`);
  try {
    await pipeline(content, createWriteStream(half, { mode: 0o600, flush: true }));
    await rename(half, path);
    return path;
  } catch (error) {
    await rm(half, { force: true });
    throw error;
  }
}

/** Turns a name into a single, visible path component that is valid on every file system, keeping the extension. */
export function safeName(name: string): string {
  const plain = name
    .toWellFormed()
    .normalize("NFC")
    .replace(/[\p{Cc}\p{Cf}\p{Zl}\p{Zp}]/gu, "")
    .replace(/[/\\:*?"<>|]/g, "_")
    .replace(/^[.\s]+|[.\s]+$/g, "");
  if (plain === "") return "file";
  const dot = plain.lastIndexOf(".");
  const extension = dot > 0 && plain.length - dot <= 12 ? plain.slice(dot) : "";
  let stem = [...plain.slice(0, plain.length - extension.length)];
  while (Buffer.byteLength(stem.join("") + extension) > longestName) stem = stem.slice(0, -1);
  return stem.join("") + extension;
}
