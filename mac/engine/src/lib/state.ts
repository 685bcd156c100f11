// Persistent state of an engine: one SQLite file in the account's state folder.

import { chmodSync, existsSync, mkdirSync, renameSync, rmSync } from "node:fs";
import { join } from "node:path";
import { DatabaseSync } from "node:sqlite";
import { log } from "./wire.ts";

/** The state of one part of an engine. */
export interface Tables {
  /** CREATE TABLE IF NOT EXISTS ... */
  create: string;
  /** Forgets how far things were reported, but not what was sent. */
  retell: string;
}

/** Opens the state with these tables. A commit is on disk when it returns. Throws if another engine of the account
 *  has it open; a damaged file is set aside and replaced. If Corvane asked for everything again, resets what was
 *  reported. */
export function openState(folder: string, ...parts: Tables[]): DatabaseSync {
  mkdirSync(folder, { recursive: true, mode: 0o700 });
  chmodSync(folder, 0o700);
  const db = openedOrAnew(join(folder, "state.sqlite"), parts.map(({ create }) => create).join("\n"));
  const marker = join(folder, "retell");
  if (existsSync(marker)) {
    transaction(db, () => parts.forEach(({ retell }) => db.exec(retell)));
    rmSync(marker);
  }
  return db;
}

function openedOrAnew(file: string, create: string): DatabaseSync {
  try {
    return opened(file, create);
  } catch (error) {
    if (!isDamage(error)) throw error;
    void log("The engine's memory was damaged and begins anew; it is kept as state.sqlite.damaged.");
    renameSync(file, `${file}.damaged`);
    for (const rest of ["-wal", "-shm"]) if (existsSync(file + rest)) rmSync(file + rest);
    return opened(file, create);
  }
}

function opened(file: string, create: string): DatabaseSync {
  const db = new DatabaseSync(file);
  try {
    db.exec(`PRAGMA locking_mode=EXCLUSIVE; PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA cache_size=-1000;
CREATE TABLE IF NOT EXISTS fact(name TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;
${create}`);
    return db;
  } catch (error) {
    db.close();
    throw error;
  }
}

const corrupt = 11;
const notDatabase = 26;

function isDamage(error: unknown): boolean {
  const code = (error as { errcode?: number }).errcode;
  return code === corrupt || code === notDatabase;
}

/** All or nothing. */
export function transaction(db: DatabaseSync, work: () => void): void {
  db.exec("BEGIN IMMEDIATE");
  try {
    work();
    db.exec("COMMIT");
  } catch (error) {
    if (db.isTransaction) db.exec("ROLLBACK"); // SQLite itself may have rolled it back
    throw error;
  }
}

export function readFact(db: DatabaseSync, name: string): string | undefined {
  return db.prepare("SELECT value FROM fact WHERE name=?").get(name)?.value as string | undefined;
}

export function writeFact(db: DatabaseSync, name: string, value: string): void {
  db.prepare("INSERT INTO fact VALUES(?,?) ON CONFLICT(name) DO UPDATE SET value=excluded.value").run(name, value);
}
