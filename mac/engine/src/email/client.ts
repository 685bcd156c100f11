// A signed-in IMAP connection, always over verified TLS.

import { ImapFlow, type ImapFlowError, type SearchObject } from "imapflow";
import { stopping } from "../lib/run.ts";
import { SignInRefused } from "../lib/stay.ts";
import { credentials, NoToken, type Server, type Settings } from "./settings.ts";

const mebibyte = 1 << 20;

/** `idleAfter`: milliseconds without a command. */
export async function connectImap(settings: Settings, { host, port, security }: Server, idleAfter = 15_000): Promise<ImapFlow> {
  const client = new ImapFlow({
    host,
    port,
    secure: security === "tls",
    doSTARTTLS: security === "starttls" ? true : undefined,
    auth: await credentials(settings),
    clientInfo: { name: "Corvane" },
    logger: false,
    qresync: true,
    autoIdleDelay: idleAfter,
    maxIdleTime: 60_000,
    connectionTimeout: 20_000,
    socketTimeout: 120_000,
    // A server that sends wrong sizes loses its connection but does not crash this process.
    maxLineLength: 8 * mebibyte,
    maxLiteralSize: 4 * mebibyte,
    maxResponseSize: 16 * mebibyte,
  });
  client.on("error", (error: ImapFlowError) => lastErrors.set(client, error)); // "close" follows
  const giveUp = (): void => client.close();
  stopping.addEventListener("abort", giveUp);
  try {
    await client.connect();
    return client;
  } catch (error) {
    client.close();
    throw understood(error as ImapFlowError, host);
  } finally {
    stopping.removeEventListener("abort", giveUp);
  }
}

const lastErrors = new WeakMap<ImapFlow, ImapFlowError>();

/** Whether the connection or the call failed because of the server's response, not the network. */
export function isUnreadable(client: ImapFlow, error: unknown): boolean {
  const codes = [error as ImapFlowError, lastErrors.get(client)].map((known) => known?.code ?? "");
  return codes.some((code) => /TooLarge|ParserError|NESTING|Processing|UnexpectedTag|InvalidResponse/.test(code));
}

/** Throws if the connection has ended: the library then finds nothing, as if the folder was empty. */
export function assertOpen(client: ImapFlow): void {
  if (!client.usable) throw new Error("The connection ended.", { cause: lastErrors.get(client) });
}

/** The UIDs of the mails in the open folder that match. */
export async function searchUids(client: ImapFlow, query: SearchObject): Promise<number[]> {
  const found = await client.search(query, { uid: true });
  assertOpen(client);
  if (!found) throw new Error("The server refused a search.");
  return found;
}

const passing = new Set(["UNAVAILABLE", "INUSE", "LIMIT", "SERVERBUG"]);

function understood(error: ImapFlowError, host: string): Error {
  if (error instanceof NoToken) return error;
  const words = wordsOfServer(error);
  const isPassing = passing.has(error.serverResponseCode ?? "");
  if (error.authenticationFailed && !isPassing) return new SignInRefused(words, { cause: error });
  if (error.responseText || error.authenticationFailed) return new Error(`${host}: ${words}`, { cause: error });
  return new Error(networkWords(error, host), { cause: error });
}

/** The server's message without protocol codes. */
export function wordsOfServer(error: ImapFlowError): string {
  const words = error.responseText || (typeof error.response === "string" ? error.response : "") || error.message;
  return words.replace(/^\S+ (NO|BAD) /, "").replace(/^\[[A-Z-]+\]\s*/, "").slice(0, 500);
}

/** Why a connection to a host failed. */
export function networkWords(error: Error & { code?: string }, host: string): string {
  const code = `${error.code ?? ""} ${/\b(E[A-Z]+)\b/.exec(error.message)?.[1] ?? ""}`.trim();
  if (/ENOTFOUND|EAI_AGAIN|EDNS/.test(code)) return `${host} cannot be found; is there a network?`;
  const isDistrusted = /CERT|SELF_SIGNED|ALTNAME|UNABLE_TO/.test(code) || /certificate/i.test(error.message);
  if (isDistrusted) return `${host} has no valid certificate: ${error.message}`;
  if (/REFUSED|TIMEOUT|TIMEDOUT|UNREACH|ECONNECTION|ECONNRESET|ClosedAfterConnect/.test(code)) return `${host} does not answer.`;
  return `${host}: ${error.message}`;
}
