// What an engine remembers from one start to the next: one SQLite file in the account's state folder.

import { chmodSync, existsSync, mkdirSync, renameSync, rmSync } from "node:fs";
import { join } from "node:path";
import { DatabaseSync } from "node:sqlite";
import { log } from "./wire.ts";

/** Opens the state with the channel's own tables (CREATE TABLE IF NOT EXISTS ...). A commit is on the disk when it
 *  returns. Throws where another engine of the account has it; a damaged file is set aside and begun anew. `cursors`
 *  are the tables that say how far the history is told: they are emptied where Corvane asks for it anew. */
export function openState(folder: string, tables: string, cursors: string[] = []): DatabaseSync {
  mkdirSync(folder, { recursive: true, mode: 0o700 });
  chmodSync(folder, 0o700);
  const db = openedOrAnew(join(folder, "state.sqlite"), tables);
  const retell = join(folder, "retell");
  if (existsSync(retell)) {
    transaction(db, () => cursors.forEach((table) => db.exec(`DELETE FROM ${table}`)));
    rmSync(retell);
  }
  return db;
}

function openedOrAnew(file: string, tables: string): DatabaseSync {
  try {
    return opened(file, tables);
  } catch (error) {
    if (!isDamage(error)) throw error;
    void log("The engine's memory was damaged and begins anew; it is kept as state.sqlite.damaged.");
    renameSync(file, `${file}.damaged`);
    for (const rest of ["-wal", "-shm"]) if (existsSync(file + rest)) rmSync(file + rest);
    return opened(file, tables);
  }
}

function opened(file: string, tables: string): DatabaseSync {
  const db = new DatabaseSync(file);
  try {
    db.exec(`PRAGMA locking_mode=EXCLUSIVE; PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA cache_size=-1000;
CREATE TABLE IF NOT EXISTS fact(name TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;
${tables}`);
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

/** All of it or nothing. */
export function transaction(db: DatabaseSync, work: () => void): void {
  db.exec("BEGIN IMMEDIATE");
  try {
    work();
    db.exec("COMMIT");
  } catch (error) {
    db.exec("ROLLBACK");
    throw error;
  }
}

export function readFact(db: DatabaseSync, name: string): string | undefined {
  return db.prepare("SELECT value FROM fact WHERE name=?").get(name)?.value as string | undefined;
}

export function writeFact(db: DatabaseSync, name: string, value: string): void {
  db.prepare("INSERT INTO fact VALUES(?,?) ON CONFLICT(name) DO UPDATE SET value=excluded.value").run(name, value);
}
