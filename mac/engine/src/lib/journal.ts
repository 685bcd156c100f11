// Which messages were handed to the provider, and what it said: a crash in between sends nothing twice.

import type { DatabaseSync } from "node:sqlite";
import type { MessageEvent } from "./events.ts";

export const journalTable = `CREATE TABLE IF NOT EXISTS sending(
  key TEXT PRIMARY KEY, digest TEXT NOT NULL, stage TEXT NOT NULL, told INTEGER NOT NULL DEFAULT 0,
  messages TEXT NOT NULL DEFAULT '[]', at INTEGER NOT NULL) WITHOUT ROWID;`;

/** "begun": handed over, and no answer is known. */
export interface SendEntry {
  key: string;
  /** Of what was sent: another text under the same key is another message. */
  digest: string;
  stage: "begun" | "sent";
  /** Whether Corvane has stored how it ended. */
  told: boolean;
  /** What to show of it, the message itself first. */
  messages: MessageEvent[];
}

const keptFor = 30 * 24 * 3600 * 1000;

/** Every change is on the disk when its call returns. */
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

  /** It did not go out. */
  forget(key: string): void {
    this.#db.prepare("DELETE FROM sending WHERE key=?").run(key);
  }
}

function entryOf(row: Record<string, unknown>): SendEntry {
  const { key, digest, stage, told, messages } = row as Record<string, string>;
  return { key, digest, stage: stage as SendEntry["stage"], told: Boolean(told), messages: JSON.parse(messages) };
}
