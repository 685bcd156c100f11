// The mail engine's state: how far each folder was reported, where mails are, and what answers need.

import type { DatabaseSync, StatementSync } from "node:sqlite";
import { transaction, type Tables } from "../lib/state.ts";

export const mailTables: Tables = {
  create: `
CREATE TABLE IF NOT EXISTS folder(id INTEGER PRIMARY KEY, path TEXT NOT NULL UNIQUE, validity TEXT NOT NULL,
  bottom INTEGER NOT NULL, top INTEGER NOT NULL, synced INTEGER NOT NULL DEFAULT 0, live_after INTEGER, modseq TEXT);
CREATE TABLE IF NOT EXISTS mail(id TEXT PRIMARY KEY, folder INTEGER NOT NULL, uid INTEGER NOT NULL,
  message_id TEXT NOT NULL) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS unread(id TEXT PRIMARY KEY, chat TEXT NOT NULL, folder INTEGER NOT NULL,
  uid INTEGER NOT NULL) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS person(address TEXT PRIMARY KEY, name TEXT NOT NULL, at INTEGER NOT NULL) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS chat(id TEXT PRIMARY KEY, at INTEGER NOT NULL, message_id TEXT NOT NULL, trail TEXT NOT NULL,
  subject TEXT NOT NULL) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS outgoing(key TEXT NOT NULL, digest TEXT NOT NULL, file TEXT NOT NULL,
  message_id TEXT NOT NULL, date INTEGER NOT NULL, PRIMARY KEY(key, digest)) WITHOUT ROWID;`,
  retell: "DELETE FROM folder; DELETE FROM mail",
};

/** A mirrored folder. All mail with UIDs from `bottom` to `top` has been reported. */
export interface Folder {
  id: number;
  path: string;
  /** Its UIDVALIDITY. */
  validity: string;
  bottom: number;
  top: number;
  /** When all its new mail was last known to be reported, in milliseconds; 0 if never. */
  synced: number;
  /** Mail that arrived after this, in milliseconds, counts as new although it is read with the history; null
   *  disables that. */
  liveAfter: number | null;
  /** Its highest MODSEQ when its flags were last compared. */
  modseq: string;
}

export interface MailPlace {
  id: string;
  folder: number;
  uid: number;
  messageId: string;
}

/** What a mail says about its chat. */
export interface ChatMark {
  id: string;
  at: number;
  messageId: string;
  /** The Message-IDs before it, oldest first. */
  trail: string;
  subject: string;
}

/** Changes by one page of mails, applied once the page is stored. */
export interface Told {
  places: MailPlace[];
  people: { address: string; name: string; at: number }[];
  chats: ChatMark[];
  unread: { id: string; chat: string; folder: number; uid: number }[];
}

/** An outgoing mail, kept in a file until its copy is in the sent folder. */
export interface Outgoing {
  key: string;
  digest: string;
  file: string;
  messageId: string;
  /** In milliseconds. */
  date: number;
}

export class MailStore {
  readonly #db: DatabaseSync;
  readonly #statements = new Map<string, StatementSync>();

  constructor(db: DatabaseSync) {
    this.#db = db;
  }

  folder(path: string): Folder | undefined {
    const row = this.#get("SELECT * FROM folder WHERE path=?", path);
    return row && folderOf(row);
  }

  folderById(id: number): Folder | undefined {
    const row = this.#get("SELECT * FROM folder WHERE id=?", id);
    return row && folderOf(row);
  }

  /** Starts a folder over: nothing of it has been reported. */
  beginFolder(path: string, validity: string, top: number, liveAfter: number | null): Folder {
    this.#run(
      `INSERT INTO folder(path, validity, bottom, top, live_after) VALUES(?,?,?,?,?)
ON CONFLICT(path) DO UPDATE SET validity=excluded.validity, bottom=excluded.bottom, top=excluded.top,
  live_after=excluded.live_after, modseq=NULL`,
      path, validity, top + 1, top, liveAfter,
    );
    return this.folder(path) as Folder;
  }

  /** A page is stored: extends the folder's bounds. */
  keep(told: Told, folder: Folder, bounds: { bottom?: number; top?: number }): void {
    transaction(this.#db, () => {
      for (const { id, folder: at, uid, messageId } of told.places) {
        this.#run("INSERT OR REPLACE INTO mail VALUES(?,?,?,?)", id, at, uid, messageId.slice(0, 998));
        this.#run("UPDATE unread SET folder=?, uid=? WHERE id=?", at, uid, id);
      }
      for (const { address, name, at } of told.people) {
        this.#run(
          `INSERT INTO person VALUES(?,?,?)
ON CONFLICT(address) DO UPDATE SET name=excluded.name, at=excluded.at WHERE excluded.at>=person.at`,
          address, name, at,
        );
      }
      told.chats.forEach((chat) => this.keepChat(chat));
      for (const { id, chat, folder: at, uid } of told.unread) {
        this.#run("INSERT OR REPLACE INTO unread VALUES(?,?,?,?)", id, chat, at, uid);
      }
      const { bottom = folder.bottom, top = folder.top } = bounds;
      this.#run(
        "UPDATE folder SET bottom=MIN(bottom, ?), top=MAX(top, ?) WHERE id=? AND validity=?",
        bottom, top, folder.id, folder.validity,
      );
    });
  }

  keepChat({ id, at, messageId, trail, subject }: ChatMark): void {
    this.#run(
      `INSERT INTO chat VALUES(?,?,?,?,?)
ON CONFLICT(id) DO UPDATE SET at=excluded.at, message_id=excluded.message_id, trail=excluded.trail,
  subject=excluded.subject WHERE excluded.at>=chat.at`,
      id, at, messageId.slice(0, 998), trail, subject,
    );
  }

  keepSynced(folder: Folder, now: number): void {
    folder.synced = now;
    this.#run("UPDATE folder SET synced=? WHERE id=? AND validity=?", now, folder.id, folder.validity);
  }

  keepModseq(folder: Folder, modseq: string): void {
    folder.modseq = modseq;
    this.#run("UPDATE folder SET modseq=? WHERE id=?", modseq, folder.id);
  }

  isTold(id: string): boolean {
    return this.#get("SELECT 1 FROM mail WHERE id=?", id) !== undefined;
  }

  place(id: string): MailPlace | undefined {
    const row = this.#get("SELECT id, folder, uid, message_id FROM mail WHERE id=?", id);
    return row && { id, folder: Number(row.folder), uid: Number(row.uid), messageId: String(row.message_id) };
  }

  person(address: string): { name: string; at: number } | undefined {
    const row = this.#get("SELECT name, at FROM person WHERE address=?", address);
    return row && { name: String(row.name), at: Number(row.at) };
  }

  chat(id: string): ChatMark | undefined {
    const row = this.#get("SELECT id, at, message_id, trail, subject FROM chat WHERE id=?", id);
    if (!row) return undefined;
    const { at, message_id, trail, subject } = row;
    return { id, at: Number(at), messageId: String(message_id), trail: String(trail), subject: String(subject) };
  }

  unreadIn(folder: number): { id: string; chat: string; uid: number }[] {
    const rows = this.#all("SELECT id, chat, uid FROM unread WHERE folder=? ORDER BY uid", folder);
    return rows.map(({ id, chat, uid }) => ({ id: String(id), chat: String(chat), uid: Number(uid) }));
  }

  unreadOf(chat: string): { id: string; folder: number; uid: number }[] {
    const rows = this.#all("SELECT id, folder, uid FROM unread WHERE chat=?", chat);
    return rows.map(({ id, folder, uid }) => ({ id: String(id), folder: Number(folder), uid: Number(uid) }));
  }

  forgetUnread(id: string): void {
    this.#run("DELETE FROM unread WHERE id=?", id);
  }

  keepOutgoing({ key, digest, file, messageId, date }: Outgoing): void {
    this.#run("INSERT OR REPLACE INTO outgoing VALUES(?,?,?,?,?)", key, digest, file, messageId, date);
  }

  forgetOutgoing({ key, digest }: Outgoing): void {
    this.#run("DELETE FROM outgoing WHERE key=? AND digest=?", key, digest);
  }

  outgoing(): Outgoing[] {
    return this.#all("SELECT * FROM outgoing ORDER BY date").map(({ key, digest, file, message_id, date }) => ({
      key: String(key),
      digest: String(digest),
      file: String(file),
      messageId: String(message_id),
      date: Number(date),
    }));
  }

  #prepared(sql: string): StatementSync {
    let statement = this.#statements.get(sql);
    if (!statement) this.#statements.set(sql, (statement = this.#db.prepare(sql)));
    return statement;
  }

  #run(sql: string, ...values: (string | number | null)[]): void {
    this.#prepared(sql).run(...values);
  }

  #get(sql: string, ...values: (string | number)[]): Record<string, unknown> | undefined {
    return this.#prepared(sql).get(...values);
  }

  #all(sql: string, ...values: (string | number)[]): Record<string, unknown>[] {
    return this.#prepared(sql).all(...values);
  }
}

function folderOf({ id, path, validity, bottom, top, synced, live_after, modseq }: Record<string, unknown>): Folder {
  return {
    id: Number(id),
    path: String(path),
    validity: String(validity),
    bottom: Number(bottom),
    top: Number(top),
    synced: Number(synced),
    liveAfter: live_after === null ? null : Number(live_after),
    modseq: String(modseq ?? ""),
  };
}
