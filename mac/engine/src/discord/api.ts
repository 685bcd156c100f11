// Calls to Discord's REST API, and what its errors mean.

import { DiscordAPIError, HTTPError, RateLimitError, REST, type RawFile } from "discord.js";
import { Limited } from "../lib/limits.ts";
import { Refused } from "../lib/outbox.ts";
import { SignInRefused } from "../lib/stay.ts";
import { baseAddress, networkError } from "../lib/web.ts";

const longestRequest = 100_000;

/** The API and the image server. */
export function addresses(): { api: string; cdn: string } {
  const base = baseAddress("CORVANE_DISCORD_API", "https://discord.com");
  return { api: `${base}/api`, cdn: base === "https://discord.com" ? "https://cdn.discordapp.com" : base };
}

/** The library only tracks rate limits. It does not retry, since the caller decides what a failure means. */
export function restOptions() {
  return { ...addresses(), retries: 0, timeout: longestRequest, rejectOnRateLimit: () => true };
}

type Method = "get" | "post" | "put" | "delete";
type Words = { query?: URLSearchParams; body?: unknown; files?: RawFile[] };

export class Discord {
  readonly #rest: REST;

  constructor(token: string) {
    this.#rest = new REST(restOptions()).setToken(token);
  }

  async call<T>(method: Method, route: `/${string}`, words: Words = {}): Promise<T> {
    try {
      return (await this.#rest[method](route, words)) as T;
    } catch (error) {
      throw judged(error as Error);
    }
  }
}

const tokenRefused = "Discord does not accept the bot token.";

function judged(error: Error): Error {
  if (error instanceof RateLimitError) return new Limited(Math.max(error.retryAfter, 100), "Discord asks for fewer messages.");
  if (error instanceof DiscordAPIError) return error.status === 401 ? new SignInRefused(tokenRefused) : new Refused(error.message);
  if (error instanceof HTTPError) return error.status >= 500 ? new Error(`Discord answers ${error.status}.`) : new Refused(error.message);
  return networkError(error, "Discord");
}

const intentsRefused = "Discord does not show messages to this bot: turn on its Message Content intent in the developer portal, under Bot.";

/** Why the gateway cannot be used. */
export function gatewayError(error: Error & { code?: unknown }): Error {
  if (error.code === "TokenInvalid" || /authentication failed/i.test(error.message)) return new SignInRefused(tokenRefused);
  if (/disallowed intents/i.test(error.message)) return new SignInRefused(intentsRefused);
  return judged(error);
}

/** The same for the code with which the gateway closes a connection for good. */
export function closeError(code: number): Error {
  if (code === 4004) return new SignInRefused(tokenRefused);
  return code === 4014 ? new SignInRefused(intentsRefused) : new Error(`Discord closed the connection (${code}).`);
}
