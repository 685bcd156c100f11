// Accepts accounts, chats and messages of this machine. Duplicates are stored once.

import { createHash } from "node:crypto";
import { fieldsOf, Refused, textAt, type Answer, type Call, type Fields } from "./answer.ts";

interface Chat {
  account: string;
  messages: Map<string, Fields>;
}

const mostMessages = 500;

export class Ingest {
  readonly #accounts = new Set<string>();
  readonly #chats = new Map<string, Chat>();

  /** `POST .../accounts`: the same type and provider's id are the same account. */
  account(call: Call): Answer {
    const fields = fieldsOf(call);
    const id = idOf("account", textAt(fields, "account_type"), textAt(fields, "provider_id"));
    const isNew = !this.#accounts.has(id);
    this.#accounts.add(id);
    return this.#taken({ data: { id } }, isNew ? 1 : 0, isNew ? 0 : 1);
  }

  /** `POST .../chats`: the same account and provider's id are the same chat. */
  chat(call: Call): Answer {
    const fields = fieldsOf(call);
    const account = textAt(fields, "account_id");
    if (!this.#accounts.has(account)) throw new Refused(422, `There is no account ${account}.`);
    checkChat(fields);
    const id = idOf("chat", account, textAt(fields, "provider_id"));
    const isNew = !this.#chats.has(id);
    if (isNew) this.#chats.set(id, { account, messages: new Map() });
    return this.#taken({ data: { chat: { id } } }, isNew ? 1 : 0, isNew ? 0 : 1);
  }

  /** `POST .../chats/{id}/messages`: one message, or a list under "messages", of which all are taken or none. */
  messages(call: Call, chatId: string): Answer {
    const chat = this.#chats.get(chatId);
    if (!chat) throw new Refused(422, `There is no chat ${chatId}.`);
    const fields = fieldsOf(call);
    const list = Array.isArray(fields.messages) ? (fields.messages as Fields[]) : [fields];
    if (list.length > mostMessages) throw new Refused(413, `A request takes ${mostMessages} messages.`);
    for (const message of list) checkMessage(message ?? {}, chatId, chat.account);
    const before = chat.messages.size;
    for (const message of list) chat.messages.set(String(message.id), message);
    const fresh = chat.messages.size - before;
    return this.#taken({ data: { new: fresh, known: list.length - fresh } }, fresh, list.length - fresh);
  }

  counts(): { accounts: number; chats: number; messages: number } {
    let messages = 0;
    for (const chat of this.#chats.values()) messages += chat.messages.size;
    return { accounts: this.#accounts.size, chats: this.#chats.size, messages };
  }

  #taken(json: object, fresh: number, known: number): Answer {
    const { accounts, chats, messages } = this.counts();
    const note = `${fresh} new, ${known} known; in all ${accounts} accounts, ${chats} chats, ${messages} messages`;
    return { status: 200, json, note };
  }
}

/** The same id for the same names, so that stored ids stay valid. */
function idOf(kind: string, ...names: string[]): string {
  return `${kind}-${createHash("sha256").update(names.join("\n")).digest("hex").slice(0, 16)}`;
}

function checkChat(fields: Fields): void {
  const { object, type, timestamp, unread_count: unread, muted_until: muted } = fields;
  if (object !== "Chat") throw new Refused(422, '"object" must be "Chat".');
  if (type !== 0 && type !== 1) throw new Refused(422, '"type" must be 0 for a person or 1 for a group.');
  if (!isTime(timestamp)) throw new Refused(422, '"timestamp" must be a time.');
  if (!Number.isInteger(unread)) throw new Refused(422, '"unread_count" must be a whole number.');
  if (muted !== null && !isTime(muted)) throw new Refused(422, '"muted_until" must be null or a time.');
  for (const key of ["archived", "read_only", "pinned"]) {
    if (typeof fields[key] !== "boolean") throw new Refused(422, `"${key}" must be true or false.`);
  }
}

function checkMessage(message: Fields, chat: string, account: string): void {
  textAt(message, "id");
  textAt(message, "sender_id");
  if (message.chat_id !== chat || message.account_id !== account) throw new Refused(422, "The message belongs to another chat.");
  if (!isTime(message.timestamp)) throw new Refused(422, '"timestamp" must be a time.');
  if (typeof message.is_outgoing !== "boolean") throw new Refused(422, '"is_outgoing" must be true or false.');
  if (typeof message.text !== "string") throw new Refused(422, '"text" must be a text.');
  const { reactions = [] } = message;
  if (!Array.isArray(reactions)) throw new Refused(422, '"reactions" must be a list.');
  for (const reaction of reactions) for (const key of ["type", "actor_id"]) textAt((reaction ?? {}) as Fields, key);
}

/** ISO 8601 in UTC. */
function isTime(value: unknown): boolean {
  return typeof value === "string" && /^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d+)?Z$/.test(value) && !Number.isNaN(Date.parse(value));
}
