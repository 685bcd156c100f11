// Reports the number's messages to Corvane, each of them once.

import type { DatabaseSync } from "node:sqlite";
import { mediaTypeOf, type MessageEvent } from "../lib/events.ts";
import { rowsOf, type FileMark } from "../lib/files.ts";
import type { People } from "../lib/people.ts";
import { readFact, writeFact, type Tables } from "../lib/state.ts";
import { emit, log, untilStored, whenStored } from "../lib/wire.ts";
import type { Sms, SmsMedia, Twilio } from "./api.ts";

export const toldTables: Tables = {
  create: "CREATE TABLE IF NOT EXISTS told(sid TEXT PRIMARY KEY, status TEXT NOT NULL) WITHOUT ROWID;",
  retell: "DELETE FROM told; DELETE FROM fact WHERE name LIKE 'history %'",
};

/** The delivery state, by Twilio's name for it. */
const steps: Record<string, number> = { sent: 2, delivered: 3, read: 4 };
const failures = new Set(["failed", "undelivered"]);

export class SmsMirror {
  readonly #twilio: Twilio;
  readonly #db: DatabaseSync;
  readonly #people: People;

  constructor(twilio: Twilio, db: DatabaseSync, people: People) {
    this.#twilio = twilio;
    this.#db = db;
    this.#people = people;
  }

  /** Reports new messages in one direction; the first time all of them, as history. */
  async look(side: "To" | "From"): Promise<void> {
    const fact = `history ${side}`;
    const isHistory = readFact(this.#db, fact) === undefined;
    const news: Sms[] = [];
    for await (const page of this.#twilio.pages(side)) {
      const unknown: Sms[] = [];
      for (const sms of page) {
        const status = this.#toldStatus(sms.sid);
        if (status === undefined) unknown.push(sms);
        else if (status !== sms.status) await this.#tellStatus(sms);
      }
      if (isHistory) for (const sms of unknown) await this.tell(sms, true);
      else news.push(...unknown);
      if (!isHistory && unknown.length < page.length) break;
    }
    for (const sms of news.reverse()) await this.tell(sms, false);
    if (isHistory) whenStored(() => writeFact(this.#db, fact, "told"));
    await untilStored();
  }

  async tell(sms: Sms, isHistorical: boolean): Promise<void> {
    for (const row of await this.rows(sms, isHistorical)) await emit(row);
    const phone = otherSide(sms);
    void this.#people.meet(phone, async () => (phone.startsWith("+") ? { phone } : {}));
    await this.#tellStatus(sms);
  }

  async rows(sms: Sms, isHistorical: boolean): Promise<MessageEvent[]> {
    const message: MessageEvent = {
      type: "message",
      convExternalId: otherSide(sms),
      providerMsgId: sms.sid,
      direction: isInbound(sms) ? "IN" : "OUT",
      body: sms.body ?? "",
      ts: new Date(sms.date_created).getTime() || Date.now(),
      historical: isHistorical ? true : undefined,
    };
    const media = Number(sms.num_media) > 0 ? await this.#twilio.media(sms.sid) : [];
    return rowsOf(message, media.map(fileMark));
  }

  /** Remembers that the message was reported, and its state. */
  async #tellStatus(sms: Sms): Promise<void> {
    const step = isInbound(sms) ? undefined : steps[sms.status];
    if (step) await emit({ type: "msgStatus", providerMsgId: sms.sid, status: step });
    const isNews = this.#toldStatus(sms.sid) !== undefined;
    if (isNews && failures.has(sms.status)) {
      const reason = sms.error_message ?? (sms.error_code ? `error ${sms.error_code}` : sms.status);
      await log(`A message to ${sms.to} was not delivered: ${reason}`);
    }
    whenStored(() => this.#db.prepare("INSERT OR REPLACE INTO told VALUES(?,?)").run(sms.sid, sms.status));
  }

  #toldStatus(sid: string): string | undefined {
    return this.#db.prepare("SELECT status FROM told WHERE sid=?").get(sid)?.status as string | undefined;
  }
}

const isInbound = ({ direction }: Sms): boolean => direction === "inbound";

/** Who the message came from or went to. */
function otherSide(sms: Sms): string {
  return isInbound(sms) ? sms.from : sms.to;
}

export function fileMark({ content_type: type }: SmsMedia, index: number): FileMark {
  const ending = type.split(/[/;+]/)[1] ?? "bin";
  return { name: `File ${index + 1}.${ending === "jpeg" ? "jpg" : ending}`, mediaType: mediaTypeOf(type) };
}
