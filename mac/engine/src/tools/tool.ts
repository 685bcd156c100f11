import { z } from "zod";
import { activeWorkspace, type Connection, type Row, type Store } from "./database.ts";

/** A tool reads rows, proposes something to the user, or reports what an agent did. */
export type Effect = "read" | "propose" | "report";

/** The context of one call. */
export class Call {
  readonly store: Store;
  readonly now: Date;

  constructor(store: Store, now: Date) {
    this.store = store;
    this.now = now;
  }

  get db(): Connection {
    return this.store.reader;
  }

  get workspace(): string {
    return activeWorkspace(this.db);
  }
}

export interface Tool {
  name: string;
  effect: Effect;
  description: string;
  input: z.ZodRawShape;
  run(args: unknown, call: Call): object | Promise<object>;
}

/** Gives `run` arguments of the type that `input` accepts. */
export function tool<Shape extends z.ZodRawShape>(definition: {
  name: string;
  effect: Effect;
  description: string;
  input: Shape;
  run(args: z.output<z.ZodObject<Shape>>, call: Call): object | Promise<object>;
}): Tool {
  const { run, ...rest } = definition;
  const schema = z.strictObject(definition.input);
  return { ...rest, run: (args, call) => run(schema.parse(args) as z.output<z.ZodObject<Shape>>, call) };
}

export const modules = ["lumo", "gtm", "cx", "ops", "inbox", "dev"] as const;

/** Arguments shared by many tools. */
export const field = {
  id: (words: string) => z.string().trim().min(1).max(400).describe(words),
  line: (words: string) => z.string().trim().min(1).max(300).describe(words),
  text: (words: string) => z.string().trim().min(1).max(20_000).describe(words),
  time: (words: string) => z.iso.datetime({ offset: true }).describe(`${words} ISO 8601, with a time zone.`),
  count: (words: string) => z.int().min(0).default(0).describe(words),
  limit: (otherwise: number, most = 100) =>
    z.int().min(1).max(most).default(otherwise).describe("Maximum number of rows."),
  module: z.enum(modules).default("dev").describe("The part of the program that the work belongs to."),
  context: z.string().trim().min(1).max(400).optional().describe("Id of a work context, from dev_work_contexts."),
};

const longestText = 4000;
const longestAnswer = 60_000;

/** Rows, as many as a reader can handle; `more` says that there are others. */
export interface Page {
  rows: Row[];
  more: boolean;
}

/** With one row more than `limit` requested, detects whether there are more. All `lists` of an answer share its
 *  space. */
export function page(rows: Row[], limit: number, lists = 1): Page {
  const kept: Row[] = [];
  let length = 0;
  for (const row of rows.slice(0, limit)) {
    const clipped = clip(row);
    length += JSON.stringify(clipped).length;
    if (length > longestAnswer / lists && kept.length > 0) break;
    kept.push(clipped);
  }
  return { rows: kept, more: rows.length > kept.length };
}

/** The row with long texts truncated and empty columns removed; a column "at_ms" becomes "at", in ISO 8601. */
export function clip(row: Row): Row {
  const entries = Object.entries(row).filter(([, value]) => value !== null && value !== "");
  return Object.fromEntries(
    entries.map(([name, value]) =>
      typeof value === "number" && name.endsWith("_ms") ? [name.slice(0, -3), isoTime(value)] : [name, short(value)],
    ),
  );
}

function short(value: Row[string]): Row[string] {
  if (typeof value !== "string" || value.length <= longestText) return value;
  return `${value.slice(0, longestText)}… (${value.length - longestText} more characters)`;
}

function isoTime(ms: number): string {
  const time = new Date(ms);
  return Number.isNaN(time.getTime()) ? String(ms) : time.toISOString();
}

/** ISO 8601 as in the work tables, in whole seconds. */
export function stamp(time: Date): string {
  return time.toISOString().replace(/\.\d+Z$/, "Z");
}

/** An id such as "od:1700000000000:1234". */
export function stampedId(prefix: string, time: Date): string {
  return `${prefix}:${time.getTime()}:${1000 + Math.floor(Math.random() * 9000)}`;
}
