import { randomUUID } from "node:crypto";
import { z } from "zod";
import { Refusal, type Columns, type Connection } from "./database.ts";
import { mustBeContext, mustExist } from "./find.ts";
import { stamp, type Call } from "./tool.ts";

// What an agent notes of its own work has this in common. It speaks in its own name, never in that of the owner or
// the program.

export const agentName = z
  .string()
  .trim()
  .min(1)
  .max(100)
  .refine((name) => !["oskel", "corvane", "lumoai"].includes(name.toLowerCase()), "This name belongs to somebody else.")
  .describe("The agent's own name.");

/** A new id that tells who wrote the row. */
export const freshId = (prefix: string): string => `${prefix}:mcp:${randomUUID()}`;

/** A row that is being written: its id, and when. */
export interface Fresh {
  id: string;
  at: string;
  db: Connection;
}

/** Writes what `work` says in one transaction; the id. */
export function write({ store, now }: Call, prefix: string, work: (fresh: Fresh) => void): string {
  const fresh = { id: freshId(prefix), at: stamp(now), db: store.writer };
  fresh.db.transaction(() => work(fresh));
  return fresh.id;
}

const tableOf: Record<string, string> = { item_id: "work_item", current_item_id: "work_item", session_id: "work_session" };

/** Adds a row to the work of a module. What it names must exist, and its context moves to the head of the contexts. */
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

/** A person can't look through thousands: an agent that runs wild is stopped. */
export function makeRoom(db: Connection, table: string, status: string): void {
  const waiting = db.row(`SELECT COUNT(*) AS n FROM ${table} WHERE status=?`, status)?.n;
  if (Number(waiting) >= mostWaiting)
    throw new Refusal(`${mostWaiting} of these wait already; a person has to look at them first.`);
}
