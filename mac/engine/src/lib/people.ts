// Names and pictures of chats, reported when they are new or changed.

import type { DatabaseSync } from "node:sqlite";
import type { Readable } from "node:stream";
import { join } from "node:path";
import { writeMedia } from "./media.ts";
import { wordsOf, type Place } from "./run.ts";
import type { Tables } from "./state.ts";
import { emit, log, whenStored } from "./wire.ts";

export const peopleTables: Tables = {
  create: `CREATE TABLE IF NOT EXISTS person(
  jid TEXT PRIMARY KEY, name TEXT NOT NULL DEFAULT '', picture TEXT NOT NULL DEFAULT '') WITHOUT ROWID;`,
  retell: "DELETE FROM person",
};

export interface Picture {
  /** Changes with the picture. */
  mark: string;
  open(): Promise<Readable>;
}

export interface Person {
  name?: string;
  picture?: Picture;
  phone?: string;
}

export class People {
  readonly #db: DatabaseSync;
  readonly #mediaDir: string;
  readonly #met = new Set<string>();

  constructor(db: DatabaseSync, { mediaDir }: Place) {
    this.#db = db;
    this.#mediaDir = mediaDir;
  }

  /** Reports a chat once per process: `look` asks the provider. Errors are logged. */
  async meet(jid: string, look: () => Promise<Person>): Promise<void> {
    if (this.#met.has(jid)) return;
    this.#met.add(jid);
    try {
      const { name, picture, phone } = await look();
      if (phone) await emit({ type: "phone", jid, phone });
      if (name) await this.#tellName(jid, name);
      if (picture) await this.#tellPicture(jid, picture);
    } catch (error) {
      await log(`The name or picture of ${jid}: ${wordsOf(error)}`);
    }
  }

  async #tellName(jid: string, name: string): Promise<void> {
    if (this.#known(jid).name === name) return;
    await emit({ type: "contactName", jid, name });
    this.#keep("name", jid, name);
  }

  async #tellPicture(jid: string, { mark, open }: Picture): Promise<void> {
    if (this.#known(jid).picture === mark) return;
    const path = await writeMedia(join(this.#mediaDir, "avatars"), jid, `${mark}.jpg`, await open());
    await emit({ type: "avatar", jid, path });
    this.#keep("picture", jid, mark);
  }

  #known(jid: string): { name?: string; picture?: string } {
    return this.#db.prepare("SELECT name, picture FROM person WHERE jid=?").get(jid) ?? {};
  }

  #keep(column: "name" | "picture", jid: string, value: string): void {
    const keep = `INSERT INTO person(jid, ${column}) VALUES(?,?) ON CONFLICT(jid) DO UPDATE SET ${column}=excluded.${column}`;
    whenStored(() => this.#db.prepare(keep).run(jid, value));
  }
}
