import { z } from "zod";
import type { CallToolResult } from "@modelcontextprotocol/sdk/types.js";
import { Refusal, type Store } from "./database.ts";
import { tools } from "./registry.ts";
import { Call, type Effect, type Tool } from "./tool.ts";

const hints: Record<Effect, object> = {
  read: { readOnlyHint: true },
  propose: { readOnlyHint: false, destructiveHint: false },
  report: { readOnlyHint: false, destructiveHint: false },
};

const byName = new Map(tools.map((tool) => [tool.name, tool]));

/** The tools as described to clients. */
export const listing = tools.map(({ name, description, effect, input }) => ({
  name,
  description,
  inputSchema: z.toJSONSchema(z.strictObject(input), { io: "input" }) as { type: "object" },
  annotations: { ...hints[effect], openWorldHint: false },
}));

function inWords(error: unknown): string {
  if (error instanceof z.ZodError) return z.prettifyError(error);
  if (error instanceof Refusal) return error.message;
  const { message } = error as Error;
  if (/database is locked|busy/.test(message)) return "The database is busy; try again in a moment.";
  if (/no such (table|column)/.test(message)) return `The database is from another version: ${message}. Start Corvane once.`;
  return `It failed: ${message}`;
}

/** A tool's answer as one text; a failure is an answer, too. */
export async function answer(store: Store, name: string, args: unknown, now = new Date()): Promise<CallToolResult> {
  const tool: Tool | undefined = byName.get(name);
  try {
    if (!tool) throw new Refusal(`There is no tool ${name.slice(0, 100)}.`);
    const result = await tool.run(args ?? {}, new Call(store, now));
    return { content: [{ type: "text", text: JSON.stringify(result) }] };
  } catch (error) {
    return { content: [{ type: "text", text: inWords(error) }], isError: true };
  }
}
