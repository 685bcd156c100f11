import { randomUUID } from "node:crypto";
import { z } from "zod";
import { Refusal, type Columns, type Connection } from "./database.ts";
import { mustBeContext, mustExist } from "./find.ts";
import { stamp, type Call } from "./tool.ts";

// The common part of agents' reports on their own work. Agents act under their own name, never under that of the user
// or the program.

export const agentName = z
  .string()
  .trim()
  .min(1)
  .max(100)
  .refine((name) => !["oskel", "corvane", "lumoai"].includes(name.toLowerCase()), "This name belongs to somebody else.")
  .describe("The agent's own name.");

/** A new id that shows who wrote the row. */
export const freshId = (prefix: string): string => `${prefix}:mcp:${randomUUID()}`;

/** A row being written: its id and time. */
export interface Fresh {
  id: string;
  at: string;
  db: Connection;
}

/** Runs `work` in one transaction and returns the row's id. */
export function write({ store, now }: Call, prefix: string, work: (fresh: Fresh) => void): string {
  const fresh = { id: freshId(prefix), at: stamp(now), db: store.writer };
  fresh.db.transaction(() => work(fresh));
  return fresh.id;
}

const tableOf: Record<string, string> = { item_id: "work_item", current_item_id: "work_item", session_id: "work_session" };

/** Adds a row to the work of a module. Rows that it refers to must exist, and its context moves to the top of the
 *  list. */
export function addWork(
  { id, at, db }: Fresh,
  table: string,
  { module, context }: { module: string; context?: string | undefined },
  columns: Columns,
): void {
  mustBeContext(db, module, context);
  for (const [name, other] of Object.entries(tableOf)) mustExist(db, other, columns[name] as string | undefined);
  db.insert(table, { id, context_id: context, module, ...columns, created_at: at });
  if (context) db.run("UPDATE work_context SET updated_at=? WHERE id=?", at, context);
}

const mostWaiting = 200;

/** Stops an agent that runs wild: nobody can review thousands of rows. */
export function makeRoom(db: Connection, table: string, status: string): void {
  const waiting = db.row(`SELECT COUNT(*) AS n FROM ${table} WHERE status=?`, status)?.n;
  if (Number(waiting) >= mostWaiting)
    throw new Refusal(`${mostWaiting} of these wait already; a person has to look at them first.`);
}
