import { statSync } from "node:fs";
import { pathToFileURL } from "node:url";
import { DatabaseSync, type SQLInputValue, type SQLOutputValue, type StatementSync } from "node:sqlite";
import { guard, type Writable } from "./guard.ts";

export type Row = Record<string, SQLOutputValue>;
export type Columns = Record<string, SQLInputValue | undefined>;

/** A failure that the caller can fix; the message is for the caller. */
export class Refusal extends Error {}

/** A connection that caches prepared statements, so their texts must be constant. */
export class Connection {
  readonly #db: DatabaseSync;
  readonly #statements = new Map<string, StatementSync>();

  constructor(db: DatabaseSync) {
    this.#db = db;
  }

  rows(sql: string, ...parameters: SQLInputValue[]): Row[] {
    return this.#prepared(sql).all(...parameters) as Row[];
  }

  row(sql: string, ...parameters: SQLInputValue[]): Row | undefined {
    return this.#prepared(sql).get(...parameters) as Row | undefined;
  }

  /** The number of rows that the statement changed. */
  run(sql: string, ...parameters: SQLInputValue[]): number {
    return Number(this.#prepared(sql).run(...parameters).changes);
  }

  /** Inserts a row; columns without a value get their default. */
  insert(table: string, row: Columns): void {
    const given = Object.entries(row).filter((entry): entry is [string, SQLInputValue] => entry[1] !== undefined);
    const names = given.map(([name]) => name).join(",");
    const places = given.map(() => "?").join(",");
    this.run(`INSERT INTO "${table}"(${names}) VALUES(${places})`, ...given.map(([, value]) => value));
  }

  /** A transaction. Keep it short: other processes are waiting. */
  transaction<T>(work: () => T): T {
    this.#db.exec("BEGIN IMMEDIATE");
    try {
      const result = work();
      this.#db.exec("COMMIT");
      return result;
    } catch (error) {
      if (this.#db.isTransaction) this.#db.exec("ROLLBACK");
      throw error;
    }
  }

  close(): void {
    this.#statements.clear();
    this.#db.close();
  }

  #prepared(sql: string): StatementSync {
    const known = this.#statements.get(sql);
    if (known) return known;
    const statement = this.#db.prepare(sql);
    this.#statements.set(sql, statement);
    return statement;
  }
}

/** Never creates the file: if it is missing, the desktop decides what to do. */
function open(path: string, mode: "ro" | "rw"): DatabaseSync {
  const url = pathToFileURL(path);
  url.searchParams.set("mode", mode);
  return new DatabaseSync(url, { readOnly: mode === "ro", timeout: 5000, enableForeignKeyConstraints: true });
}

export function openReader(path: string): Connection {
  return new Connection(open(path, "ro"));
}

/** A connection that can change only the tables of `writable`, within the limits of `guard`. */
export function openWriter(path: string, writable: Writable): Connection {
  const db = open(path, "rw");
  try {
    guard(db, writable);
    return new Connection(db);
  } catch (error) {
    db.close();
    throw error;
  }
}

/** The desktop's database, opened on first use and again if the file was replaced. */
export class Store {
  readonly #path: string;
  readonly #writable: Writable;
  #identity = "";
  #reader: Connection | undefined;
  #writer: Connection | undefined;

  constructor(path: string, writable: Writable) {
    this.#path = path;
    this.#writable = writable;
  }

  get reader(): Connection {
    this.#follow();
    return (this.#reader ??= openReader(this.#path));
  }

  get writer(): Connection {
    this.#follow();
    return (this.#writer ??= openWriter(this.#path, this.#writable));
  }

  close(): void {
    this.#reader?.close();
    this.#writer?.close();
    this.#reader = this.#writer = undefined;
  }

  #follow(): void {
    const file = statSync(this.#path, { throwIfNoEntry: false });
    const identity = file ? `${file.dev}:${file.ino}` : "";
    if (identity !== this.#identity) this.close();
    this.#identity = identity;
    if (!file) throw new Refusal("There is no database yet. Start Corvane, then try again.");
  }
}

/** The workspace whose rows are currently shown and written. */
export function activeWorkspace(db: Connection): string {
  const row = db.row("SELECT workspace_id FROM sync_workspace_selection WHERE key='active'");
  return String(row?.workspace_id ?? "").trim() || "local";
}
