// Calls to Slack's Web API.

import { openAsBlob } from "node:fs";
import { LogLevel, WebAPIHTTPError, WebAPIPlatformError, WebAPIRateLimitedError, WebAPIRequestError, WebClient } from "@slack/web-api";
import type { Readable } from "node:stream";
import { Limited } from "../lib/limits.ts";
import { Refused } from "../lib/outbox.ts";
import { SignInRefused } from "../lib/stay.ts";
import { baseAddress, networkError, openFile } from "../lib/web.ts";

const longestRequest = 60_000;
const longestUpload = 300_000;

/** Slack's address and client. The library does not retry, since the caller decides what a failure means. */
export function clientOptions() {
  const slackApiUrl = `${baseAddress("CORVANE_SLACK_API", "https://slack.com")}/api/`;
  return { slackApiUrl, logLevel: LogLevel.ERROR, retryConfig: { retries: 0 }, rejectRateLimitedCalls: true, timeout: longestRequest };
}

export class Slack {
  readonly #web: WebClient;
  readonly #token: string;

  constructor(token: string) {
    this.#token = token;
    this.#web = new WebClient(token, clientOptions());
  }

  async call<T>(method: string, words: Record<string, unknown> = {}): Promise<T> {
    try {
      return (await this.#web.apiCall(method, words)) as T;
    } catch (error) {
      throw judged(error, "bot token");
    }
  }

  /** All pages of a list. */
  async *pages<T>(method: string, words: Record<string, unknown>): AsyncGenerator<T> {
    type Page = T & { response_metadata?: { next_cursor?: string } };
    for (let cursor: string | undefined = ""; cursor !== undefined; ) {
      const page: Page = await this.call<Page>(method, { ...words, cursor: cursor || undefined });
      yield page as T;
      cursor = page.response_metadata?.next_cursor || undefined;
    }
  }

  /** The token is sent only to Slack's own hosts: a file may be elsewhere. */
  openFile(address: string): Promise<Readable> {
    return openFile(address, "Slack", isSlacks(address) ? { authorization: `Bearer ${this.#token}` } : {});
  }

  async upload(address: string, path: string): Promise<void> {
    if (!isSlacks(address)) throw new Refused("Slack names a strange place for the file.");
    const signal = AbortSignal.timeout(longestUpload);
    const answer = await fetch(address, { method: "POST", body: await openAsBlob(path), signal }).catch((error: unknown) => {
      throw networkError(error, "Slack");
    });
    if (!answer.ok) throw new Refused(`Slack does not take the file (${answer.status}).`);
  }
}

function isSlacks(address: string): boolean {
  const { protocol, hostname } = new URL(address);
  if (protocol === "https:" && /(^|\.)slack\.com$/.test(hostname)) return true;
  return address.startsWith(`${baseAddress("CORVANE_SLACK_API", "https://slack.com")}/`);
}

const signIn = new Set(["invalid_auth", "not_authed", "account_inactive", "token_revoked", "token_expired", "not_allowed_token_type"]);
const unclear = new Set(["internal_error", "fatal_error", "service_unavailable", "request_timeout"]);
const explained: Record<string, string> = {
  channel_not_found: "Slack does not know this channel, or the app is not in it.",
  not_in_channel: "The app is not in this channel: invite it there first.",
  is_archived: "This channel is archived.",
  msg_too_long: "This text is too long for Slack.",
};

/** The meaning of an error of the library. `token` is what the call was signed with. */
export function judged(error: unknown, token: string): Error {
  if (error instanceof WebAPIRateLimitedError) return new Limited(error.retryAfter * 1000, "Slack asks for fewer messages.");
  if (error instanceof WebAPIRequestError) return networkError(error.original, "Slack");
  if (error instanceof WebAPIHTTPError) {
    const words = `Slack answers ${error.statusCode}.`;
    return error.statusCode >= 500 ? new Error(words) : new Refused(words);
  }
  if (!(error instanceof WebAPIPlatformError)) return error as Error;
  const { error: code, needed } = error.data as { error: string; needed?: string };
  if (signIn.has(code)) return new SignInRefused(`Slack does not accept the ${token} (${code}).`);
  if (code === "missing_scope") return new Refused(`The ${token} lacks the scope ${needed ?? "for this"}.`);
  return unclear.has(code) ? new Error(`Slack: ${code}`) : new Refused(explained[code] ?? `Slack says ${code}.`);
}
