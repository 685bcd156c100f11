// Records which messages were handed to the provider, and its answers, so that a crash in between sends nothing twice.

import type { DatabaseSync } from "node:sqlite";
import type { MessageEvent } from "./events.ts";

export const journalTable = `CREATE TABLE IF NOT EXISTS sending(
  key TEXT PRIMARY KEY, digest TEXT NOT NULL, stage TEXT NOT NULL, told INTEGER NOT NULL DEFAULT 0,
  messages TEXT NOT NULL DEFAULT '[]', at INTEGER NOT NULL) WITHOUT ROWID;`;

/** "begun": handed over, no answer known. */
export interface SendEntry {
  key: string;
  /** Identifies the content: another text with the same key is another message. */
  digest: string;
  stage: "begun" | "sent";
  /** Whether Corvane has stored the outcome. */
  told: boolean;
  /** The rows to show, starting with the message itself. */
  messages: MessageEvent[];
}

const keptFor = 30 * 24 * 3600 * 1000;

/** Every change is on disk when its call returns. */
export class SendJournal {
  readonly #db: DatabaseSync;

  constructor(db: DatabaseSync) {
    this.#db = db;
    db.exec(journalTable);
    db.prepare("DELETE FROM sending WHERE told=1 AND stage='sent' AND at<?").run(Date.now() - keptFor);
  }

  find(key: string): SendEntry | undefined {
    const row = this.#db.prepare("SELECT * FROM sending WHERE key=?").get(key);
    return row && entryOf(row);
  }

  untold(): SendEntry[] {
    return this.#db.prepare("SELECT * FROM sending WHERE told=0 ORDER BY at").all().map(entryOf);
  }

  begin(key: string, digest: string): void {
    this.#db
      .prepare("INSERT OR REPLACE INTO sending(key, digest, stage, at) VALUES(?,?,'begun',?)")
      .run(key, digest, Date.now());
  }

  sent(key: string, digest: string, messages: MessageEvent[]): void {
    this.#db
      .prepare("INSERT OR REPLACE INTO sending(key, digest, stage, messages, at) VALUES(?,?,'sent',?,?)")
      .run(key, digest, JSON.stringify(messages), Date.now());
  }

  told(key: string): void {
    this.#db.prepare("UPDATE sending SET told=1 WHERE key=?").run(key);
  }

  /** It was not sent. */
  forget(key: string): void {
    this.#db.prepare("DELETE FROM sending WHERE key=?").run(key);
  }
}

function entryOf(row: Record<string, unknown>): SendEntry {
  const { key, digest, stage, told, messages } = row as Record<string, string>;
  return { key, digest, stage: stage as SendEntry["stage"], told: Boolean(told), messages: JSON.parse(messages) };
}
