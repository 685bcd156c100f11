import { randomUUID } from "node:crypto";
import { z } from "zod";
import type { Connection } from "./database.ts";

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

/** Moves the context to the head of the list of contexts. */
export function touchContext(db: Connection, context: string | undefined, at: string): void {
  if (context) db.run("UPDATE work_context SET updated_at=? WHERE id=?", at, context);
}
