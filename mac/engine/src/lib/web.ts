// HTTPS requests to a provider.

import { Readable } from "node:stream";
import type { ReadableStream } from "node:stream/web";
import { Limited, withinLimits } from "./limits.ts";
import { Refused, type Sending } from "./outbox.ts";
import { stopping, wordsOf } from "./run.ts";

/** The address of a provider's API. Tests point `variable` to a stand-in on this machine; other hosts are refused. */
export function baseAddress(variable: string, standard: string): string {
  const other = process.env[variable];
  if (!other) return standard;
  if (!/^http:\/\/127\.0\.0\.1:\d+$/.test(other)) throw new Error(`${variable} may only name an address on this machine.`);
  return other;
}

const keepAlive = 20_000;

/** Sends a message with one request. It throws `Refused` or `Limited` if the message was certainly not sent. */
export async function post<T>(sending: Sending, begin: () => void, request: () => Promise<T>): Promise<T> {
  begin();
  let isPaused = false;
  const attempt = async (): Promise<T> => {
    isPaused = false;
    try {
      return await request();
    } catch (error) {
      isPaused = error instanceof Limited;
      throw error;
    }
  };
  const alive = setInterval(() => sending.progress(), keepAlive);
  try {
    return await withinLimits(attempt, { signal: stopping, progress: () => sending.progress() });
  } catch (error) {
    throw isPaused ? new Refused(wordsOf(error), { cause: error }) : error;
  } finally {
    clearInterval(alive);
  }
}

const neverConnected = /ENOTFOUND|EAI_AGAIN|ECONNREFUSED|ENETUNREACH|EHOSTUNREACH|UND_ERR_CONNECT_TIMEOUT|CERT|SELF_SIGNED|UNABLE_TO/;

/** The meaning of a request without an answer: `Refused` if no connection was made. */
export function networkError(error: unknown, provider: string): Error {
  const codes = codesOf(error);
  if (neverConnected.test(codes)) return new Refused(`${provider} cannot be reached; is there a network?`, { cause: error });
  return new Error(`${provider} did not answer: ${wordsOf(error)}`, { cause: error });
}

function codesOf(error: unknown): string {
  const { code, cause, error: inner } = (error ?? {}) as { code?: string; cause?: unknown; error?: unknown };
  return [code, cause ? codesOf(cause) : "", inner ? codesOf(inner) : ""].join(" ");
}

/** Opens a file at the provider. `headers` are sent only to that address, not to redirects. Throws if the file does
 *  not exist. */
export async function openFile(address: string, provider: string, headers: Record<string, string> = {}): Promise<Readable> {
  const response = await fetch(address, { headers, redirect: "manual", signal: stopping }).catch((error: unknown) => {
    throw networkError(error, provider);
  });
  const target = response.headers.get("location");
  if (response.status >= 300 && response.status < 400 && target) {
    return openFile(new URL(target, address).href, provider);
  }
  if (!response.ok || !response.body) throw new Error(`${provider} does not give this file (${response.status}).`);
  return Readable.fromWeb(response.body as ReadableStream);
}
