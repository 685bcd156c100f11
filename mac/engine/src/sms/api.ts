// Calls to Twilio's REST API.

import type { Readable } from "node:stream";
import { credential } from "../lib/channel.ts";
import { Limited } from "../lib/limits.ts";
import { Refused } from "../lib/outbox.ts";
import { SignInRefused } from "../lib/stay.ts";
import { baseAddress, networkError, openFile } from "../lib/web.ts";

/** The used part of a Twilio message. */
export interface Sms {
  sid: string;
  from: string;
  to: string;
  body: string | null;
  direction: string;
  status: string;
  date_created: string;
  num_media: string;
  error_code: number | null;
  error_message: string | null;
}

export interface SmsMedia {
  sid: string;
  content_type: string;
}

const longestRequest = 60_000;
const usualPause = 2;

export class Twilio {
  /** The account's own number, as it appears in messages. */
  readonly number: string;
  readonly #address: string;
  readonly #folder: string;
  readonly #headers: Record<string, string>;

  /** Throws `SignInRefused` if part of the credentials is missing. */
  constructor() {
    const sid = credential("TWILIO_SID", "Account SID");
    const secret = credential("TWILIO_AUTH", "Auth Token");
    this.number = plainNumber(credential("TWILIO_FROM", "telephone number"));
    this.#address = baseAddress("CORVANE_TWILIO_API", "https://api.twilio.com");
    this.#folder = `/2010-04-01/Accounts/${encodeURIComponent(sid)}`;
    this.#headers = { authorization: `Basic ${Buffer.from(`${sid}:${secret}`).toString("base64")}` };
  }

  /** Throws `SignInRefused` if the account cannot be used. */
  async signIn(): Promise<void> {
    const { status } = await this.#call<{ status: string }>("GET", `${this.#folder}.json`);
    if (status !== "active") throw new SignInRefused(`Twilio says that this account is ${status}.`);
  }

  /** All messages of the account's number in that direction, newest first, page by page. */
  async *pages(side: "To" | "From"): AsyncGenerator<Sms[]> {
    type Page = { messages: Sms[]; next_page_uri: string | null };
    const query = new URLSearchParams({ [side]: this.number, PageSize: "100" });
    for (let next: string | null = `${this.#folder}/Messages.json?${query}`; next; ) {
      const page: Page = await this.#call<Page>("GET", next);
      yield page.messages;
      next = page.next_page_uri;
    }
  }

  send(to: string, text: string): Promise<Sms> {
    const form = new URLSearchParams({ To: to, From: this.number, Body: text });
    return this.#call<Sms>("POST", `${this.#folder}/Messages.json`, form);
  }

  async media(sid: string): Promise<SmsMedia[]> {
    type List = { media_list: SmsMedia[] };
    return (await this.#call<List>("GET", `${this.#folder}/Messages/${encodeURIComponent(sid)}/Media.json`)).media_list;
  }

  openMedia(message: string, media: SmsMedia): Promise<Readable> {
    const path = `${this.#folder}/Messages/${encodeURIComponent(message)}/Media/${encodeURIComponent(media.sid)}`;
    return openFile(this.#address + path, "Twilio", this.#headers);
  }

  async #call<T>(method: string, path: string, body?: URLSearchParams): Promise<T> {
    const signal = AbortSignal.timeout(longestRequest);
    let answer: Response;
    let said: T & { message?: string };
    try {
      answer = await fetch(this.#address + path, { method, body, headers: this.#headers, signal, redirect: "error" });
      said = (await answer.json()) as typeof said;
    } catch (error) {
      throw networkError(error, "Twilio");
    }
    if (answer.ok) return said;
    const words = said.message ?? `Twilio answers ${answer.status}.`;
    if (answer.status === 401 || answer.status === 403) throw new SignInRefused(`Twilio does not accept the account: ${words}`);
    if (answer.status === 429) throw new Limited(Number(answer.headers.get("retry-after") ?? usualPause) * 1000, words);
    throw answer.status >= 500 ? new Error(words) : new Refused(words);
  }
}

/** A number in Twilio's format. Other addresses, such as alphanumeric senders, are not changed. */
export function plainNumber(address: string): string {
  const number = address.replace(/[\s().\-/]/g, "").replace(/^00/, "+");
  return /^\+?\d+$/.test(number) ? number : address.trim();
}
