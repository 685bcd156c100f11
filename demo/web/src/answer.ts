// The service's responses and refusals.

import type { IncomingMessage } from "node:http";

export interface Answer {
  status: number;
  /** Sent as JSON. */
  json?: unknown;
  html?: string;
  location?: string;
  /** Its text in the log. */
  note?: string;
}

export class Refused extends Error {
  readonly status: number;

  constructor(status: number, words: string) {
    super(words);
    this.status = status;
  }
}

export interface Call {
  method: string;
  path: string;
  query: URLSearchParams;
  /** From the header Authorization. */
  bearer: string;
  body: string;
}

const longestBody = 32 << 20;

export async function callFrom(request: IncomingMessage): Promise<Call> {
  const parts: Buffer[] = [];
  let length = 0;
  for await (const part of request as AsyncIterable<Buffer>) {
    length += part.length;
    if (length > longestBody) throw new Refused(413, "The request is too large.");
    parts.push(part);
  }
  const { pathname: path, searchParams: query } = new URL(request.url ?? "/", "http://service");
  const bearer = /^Bearer (.+)$/.exec(request.headers.authorization ?? "")?.[1] ?? "";
  return { method: request.method ?? "", path, query, bearer, body: Buffer.concat(parts).toString("utf8") };
}

export type Fields = Record<string, unknown>;

export function fieldsOf({ body }: Call): Fields {
  try {
    const value: unknown = JSON.parse(body);
    if (typeof value === "object" && value !== null && !Array.isArray(value)) return value as Fields;
  } catch {
    // as below
  }
  throw new Refused(400, "The body must be a JSON object.");
}

/** The text at a key; refuses one that is missing or empty. */
export function textAt(fields: Fields, key: string): string {
  const value = fields[key];
  if (typeof value !== "string" || value === "") throw new Refused(422, `"${key}" must be a text.`);
  return value;
}
