// The history of chats: messages missed while not listening, and older ones.

import type { DatabaseSync } from "node:sqlite";
import { Limited, withinLimits } from "./limits.ts";
import { Refused } from "./outbox.ts";
import { stopping } from "./run.ts";
import type { Tables } from "./state.ts";
import { log, untilStored, whenStored } from "./wire.ts";

/** The value of `wanted` for a known chat of which nothing was reported. */
const untold = -1;

export const chatTables: Tables = {
  create: `CREATE TABLE IF NOT EXISTS chat(
  id TEXT PRIMARY KEY, newest TEXT NOT NULL, oldest TEXT NOT NULL, wanted INTEGER NOT NULL) WITHOUT ROWID;`,
  retell: `UPDATE chat SET wanted=${untold}`, // a direct chat may not be found again
};

/** How many messages of a chat's history are reported. */
const depth = 1000;

export interface Source<M> {
  /** Later messages of a chat have greater ids: longer ones, or later ones in the alphabet. */
  idOf(message: M): string;
  /** A page of messages before that one, or the newest, in descending order; empty at the end. */
  page(chat: string, before: string | undefined): Promise<M[]>;
  tell(chat: string, message: M, isHistorical: boolean): Promise<void>;
}

interface Span {
  /** All messages between these two ids were reported. */
  newest: string;
  oldest: string;
  /** How many messages before `oldest` are still to be reported. */
  wanted: number;
}

export class History<M> {
  readonly #db: DatabaseSync;
  readonly #source: Source<M>;
  readonly #known = new Set<string>();
  readonly #spans = new Map<string, Span>();
  /** Chats whose new messages are all received live. */
  readonly #current = new Set<string>();
  #catching = "";
  #ended = stopping;
  #telling = Promise.resolve();

  constructor(db: DatabaseSync, source: Source<M>) {
    this.#db = db;
    this.#source = source;
    const rows = db.prepare("SELECT id, newest, oldest, wanted FROM chat").all() as unknown as (Span & { id: string })[];
    for (const { id, ...span } of rows) {
      this.#known.add(id);
      if (span.wanted !== untold) this.#spans.set(id, span);
    }
  }

  /** Every chat that has been reported. */
  known(): string[] {
    return [...this.#known];
  }

  /** A new message. */
  async live(chat: string, message: M): Promise<void> {
    const id = this.#source.idOf(message);
    await this.#source.tell(chat, message, false);
    if (this.#catching === chat) return;
    const span = this.#spans.get(chat);
    if (!span) {
      this.#current.add(chat);
      this.#keep(chat, { newest: id, oldest: id, wanted: depth });
    } else if (this.#current.has(chat) && isLater(id, span.newest)) {
      this.#keep(chat, { ...span, newest: id });
    }
  }

  /** A new session started: reports what was missed in these chats, then their history, until `ended`. */
  tellAll(chats: string[], ended: AbortSignal): Promise<void> {
    const before = this.#telling;
    this.#telling = before.catch(() => {}).then(() => this.#tellAll(chats, ended));
    return this.#telling;
  }

  async #tellAll(chats: string[], ended: AbortSignal): Promise<void> {
    this.#current.clear();
    this.#ended = AbortSignal.any([stopping, ended]);
    for (const chat of new Set(chats)) {
      if (ended.aborted) return;
      this.#catching = chat;
      await this.#unlessRefused(chat, () => this.#catchUp(chat)).finally(() => (this.#catching = ""));
    }
    for (let isLeft = true; isLeft && !ended.aborted; ) {
      isLeft = false;
      for (const [chat, { wanted }] of this.#spans) {
        if (wanted <= 0 || !this.#current.has(chat) || ended.aborted) continue;
        isLeft = true;
        await this.#unlessRefused(chat, () => this.#tellOlder(chat));
      }
    }
  }

  async #catchUp(chat: string): Promise<void> {
    const span = this.#spans.get(chat);
    if (!span) {
      await this.#begin(chat);
    } else {
      let newest = span.newest;
      for (let before: string | undefined, isDone = false; !isDone; ) {
        const page = await this.#page(chat, before);
        const missed = page.filter((message) => isLater(this.#source.idOf(message), span.newest));
        for (const message of missed.toReversed()) await this.#source.tell(chat, message, false);
        const [first] = missed;
        if (first && isLater(this.#source.idOf(first), newest)) newest = this.#source.idOf(first);
        isDone = missed.length < page.length || page.length === 0;
        before = page.length > 0 ? this.#source.idOf(page[page.length - 1]) : undefined;
        await untilStored();
      }
      if (newest !== span.newest) this.#keep(chat, { ...span, newest });
    }
    this.#current.add(chat);
  }

  async #begin(chat: string): Promise<void> {
    const page = await this.#page(chat, undefined);
    for (const message of page) await this.#source.tell(chat, message, true);
    const ids = page.map((message) => this.#source.idOf(message));
    this.#keep(chat, { newest: ids[0] ?? "", oldest: ids[ids.length - 1] ?? "", wanted: ids.length > 0 ? depth - ids.length : 0 });
    await untilStored();
  }

  async #tellOlder(chat: string): Promise<void> {
    const { oldest, wanted } = this.#spans.get(chat) as Span;
    const page = (await this.#page(chat, oldest)).slice(0, wanted);
    for (const message of page) await this.#source.tell(chat, message, true);
    const left = page.length > 0 ? wanted - page.length : 0;
    const reached = page.length > 0 ? this.#source.idOf(page[page.length - 1]) : oldest;
    this.#keep(chat, { ...(this.#spans.get(chat) as Span), oldest: reached, wanted: left });
    await untilStored();
  }

  #page(chat: string, before: string | undefined): Promise<M[]> {
    return withinLimits(() => this.#source.page(chat, before), { budget: Infinity, signal: this.#ended });
  }

  /** A chat that cannot be read is skipped; any other error ends the session. */
  async #unlessRefused(chat: string, work: () => Promise<void>): Promise<void> {
    try {
      await work();
    } catch (error) {
      if (!(error instanceof Refused) || error instanceof Limited) throw error;
      this.#current.delete(chat);
      await log(`The history of ${chat} cannot be read: ${error.message}`);
    }
  }

  #keep(chat: string, span: Span): void {
    this.#known.add(chat);
    this.#spans.set(chat, span);
    const { newest, oldest, wanted } = span;
    whenStored(() => this.#db.prepare("INSERT OR REPLACE INTO chat VALUES(?,?,?,?)").run(chat, newest, oldest, wanted));
  }
}

function isLater(id: string, other: string): boolean {
  return id.length === other.length ? id > other : id.length > other.length;
}
