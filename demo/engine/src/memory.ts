// The state of an engine between starts, so that a restart repeats nothing.

import { existsSync, mkdirSync, readFileSync, renameSync, writeFileSync } from "node:fs";
import { homedir } from "node:os";
import { dirname, join } from "node:path";

export interface Memory {
  /** The time of the first start: the history is relative to it. */
  since: number;
  /** How many of the live lines the desktop has stored, starting with the unread ones. */
  said: number;
  /** How many messages were sent from the desktop. */
  sent: number;
  /** The sent drafts, with their texts and the ids of their messages. */
  drafts: Record<string, { text: string; id: string }>;
  /** Pages of older messages already handed out, by conversation. */
  pages: Record<string, number>;
  /** Whether deals, notes and the like were written. */
  recorded: boolean;
}

const pathOf = (slug: string): string => join(homedir(), ".corvane-demo", slug + ".json");
const pairingPath = (slug: string): string => join(homedir(), ".whatsapp-baileys", slug, "paired");

/** A missing or unreadable file counts as a first start. */
export function recall(slug: string, now: number): Memory {
  const fresh: Memory = { since: now, said: 0, sent: 0, drafts: {}, pages: {}, recorded: false };
  try {
    return { ...fresh, ...(JSON.parse(readFileSync(pathOf(slug), "utf8")) as Partial<Memory>) };
  } catch {
    return fresh;
  }
}

export function remember(slug: string, memory: Memory): void {
  writeWhole(pathOf(slug), JSON.stringify(memory));
}

/** The pairing is stored where a reset of the account deletes it. */
export function isPaired(slug: string): boolean {
  return existsSync(pairingPath(slug));
}

export function rememberPairing(slug: string): void {
  writeWhole(pairingPath(slug), "");
}

/** Readers see the old file or the new one, never part of it. */
export function writeWhole(path: string, content: string | Uint8Array): void {
  mkdirSync(dirname(path), { recursive: true });
  const half = `${path}.${process.pid}.tmp`;
  writeFileSync(half, content);
  renameSync(half, path);
}
