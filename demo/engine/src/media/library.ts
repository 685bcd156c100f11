// The media files of an account, created on first use in the program's media folder.

import { existsSync } from "node:fs";
import { homedir } from "node:os";
import { isAbsolute, join } from "node:path";
import { writeWhole } from "../memory.ts";
import type { Conversation, Media } from "../script.ts";
import { mark, portrait } from "./avatars.ts";
import { csv, papers, pdf, tables } from "./documents.ts";
import { gif } from "./gif.ts";
import { movie } from "./movie.ts";
import { happyPot, pictures, wheelFrame } from "./pictures.ts";
import { png, type Pixels } from "./png.ts";
import { wav } from "./sound.ts";

interface Asset {
  ending: string;
  make: () => Buffer;
}

const tunes: Record<string, readonly number[]> = {
  "voice-grill": [0, 4, 7, 12, 11, 7, 4, 7],
  "voice-kiln": [-12, -5, 0, -5, -12, -5, 0, 3],
};

/** The folder for an account's files: set by the desktop, or a default if the engine is run by hand. */
function mediaFolder(slug: string): string {
  const data = process.env.XDG_DATA_HOME ?? "";
  const share = isAbsolute(data) ? data : join(homedir(), ".local", "share");
  return process.env.CORVANE_MEDIA_DIR || join(share, "Corvane", "media", slug);
}

export class Library {
  private readonly folder: string;

  constructor(slug: string) {
    this.folder = mediaFolder(slug);
  }

  pathOf(name: string): string {
    return join(this.folder, name);
  }

  /** Creates the file of a medium if necessary, and returns its path. */
  file(media: Media): string {
    const asset = assetOf(media);
    return this.keep(media.asset + asset.ending, asset.make);
  }

  avatar({ handle, name, picture, look }: Conversation): string {
    const file = join("avatars", handle.replace(/[^A-Za-z0-9_-]/g, "") + ".png");
    return this.keep(file, () => png(picture === "portrait" ? portrait(name, look) : mark(handle)));
  }

  private keep(name: string, make: () => Buffer): string {
    const path = this.pathOf(name);
    if (!existsSync(path)) writeWhole(path, make());
    return path;
  }
}

/** Throws on an unknown name. */
export function assetOf({ kind, asset }: Media): Asset {
  const wheel = (count: number, width: number, height: number): Pixels[] =>
    Array.from({ length: count }, (_, index) => wheelFrame(width, height, index / count));
  const picture = pictures[asset];
  if (kind === "image" && picture !== undefined) return { ending: ".png", make: () => png(picture()) };
  if (kind === "audio" && tunes[asset] !== undefined) return { ending: ".wav", make: () => wav(tunes[asset]) };
  if (kind === "gif" && asset === "wheel") return { ending: ".gif", make: () => gif(wheel(12, 200, 150), 9) };
  if (kind === "video" && asset === "wheel-clip") return { ending: ".mov", make: () => movie(wheel(24, 240, 180), 12) };
  if (kind === "sticker" && asset === "happy-pot") return { ending: ".png", make: () => png(happyPot()) };
  if (kind === "document" && papers[asset] !== undefined) return { ending: ".pdf", make: () => pdf(papers[asset]) };
  if (kind === "document" && tables[asset] !== undefined) return { ending: ".csv", make: () => csv(tables[asset]) };
  throw new Error(`no such ${kind}: ${asset}`);
}
