import type { DatabaseSync } from "node:sqlite";

/** What a connection may do to a table. Nothing is ever deleted. */
export type Right = "insert" | "update" | "both";
export type Writable = Record<string, Right>;

/** Statuses that only the user may set, or the program on the user's behalf. */
const heldWords = ["approved", "sending", "sent", "placed", "applied", "rejected"];

const quoted = (name: string): string => `"${name.replaceAll('"', '""')}"`;
const literal = (text: string): string => `'${text.replaceAll("'", "''")}'`;

interface Refused {
  event: "INSERT" | "UPDATE" | "DELETE";
  when?: string;
  words: string;
}

function refusedFor(table: string, hasStatus: boolean, right: Right | undefined): Refused[] {
  const refused: Refused[] = [{ event: "DELETE", words: `rows of ${table} are not deleted here` }];
  for (const event of ["INSERT", "UPDATE"] as const) {
    if (right !== "both" && right !== event.toLowerCase()) {
      refused.push({ event, words: `${table} is not changed here` });
    } else if (hasStatus) {
      const words = heldWords.map(literal).join(",");
      refused.push({
        event,
        when: `lower(trim(NEW.status)) IN (${words})`,
        words: `that status of ${table} is set by a person`,
      });
    }
  }
  return refused;
}

/**
 * Makes SQLite itself refuse every delete, every write outside `writable`, and every status that stands for a
 * person's word. The triggers live in this connection alone.
 */
export function guard(db: DatabaseSync, writable: Writable): void {
  db.exec("PRAGMA recursive_triggers=ON"); // otherwise REPLACE deletes without running triggers
  const tables = db
    .prepare(
      `SELECT t.name, EXISTS (SELECT 1 FROM pragma_table_info(t.name) WHERE name='status') AS has_status
       FROM pragma_table_list t WHERE t.schema='main' AND t.type='table' AND t.name NOT LIKE 'sqlite\\_%' ESCAPE '\\'`,
    )
    .all();
  for (const { name, has_status } of tables) {
    const table = String(name);
    refusedFor(table, has_status === 1, writable[table]).forEach(({ event, when, words }, index) => {
      db.exec(`CREATE TEMP TRIGGER ${quoted(`guard ${index} ${table}`)} BEFORE ${event} ON main.${quoted(table)}
        ${when ? `WHEN ${when}` : ""} BEGIN SELECT RAISE(ABORT, ${literal(words)}); END`);
    });
  }
}
