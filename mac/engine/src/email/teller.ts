// Reports mails to Corvane: each mail as a message, followed by one message per file.

import { emit } from "../lib/wire.ts";
import type { MessageEvent } from "../lib/events.ts";
import { fileRows } from "../lib/files.ts";
import { oneLine } from "../lib/text.ts";
import { chatIdOf, directionOf, participantsOf, senderOf, type Person } from "./address.ts";
import type { Content, Header } from "./fetch.ts";
import { providerMsgId } from "./identity.ts";
import type { Names } from "./names.ts";
import type { Folder, Told } from "./store.ts";

export interface Account {
  /** The slug. */
  name: string;
  own: ReadonlySet<string>;
}

/** A mail of a page, from its header. */
export interface Mail {
  header: Header;
  id: string;
  direction: "IN" | "OUT";
  people: Person[];
  chat: string;
  /** In milliseconds. */
  date: number;
  subject: string;
}

export const longestSubject = 998;

export function mailOf({ name, own }: Account, header: Header, isSentFolder: boolean): Mail {
  const { envelope, size, arrived } = header;
  const direction = directionOf(envelope, isSentFolder, own);
  const people = participantsOf(envelope, direction, own);
  const written = new Date(envelope.date ?? NaN).getTime();
  const date = Number.isNaN(written) ? arrived : written;
  const subject = oneLine(envelope.subject ?? "", longestSubject);
  const messageId = envelope.messageId ?? "";
  const from = senderOf(envelope).address;
  const id = providerMsgId({ account: name, direction, messageId, from, date, subject, size });
  return { header, id, direction, people, chat: chatIdOf(people), date: shownDate(date, arrived), subject };
}

const day = 24 * 3600 * 1000;
const firstMail = Date.UTC(1985, 0);

/** The time of a mail in its chat: the sender's, unless it is before e-mail existed, or in the future, where the
 *  mail would stay on top. */
function shownDate(written: number, arrived: number): number {
  const latest = arrived > 0 ? arrived + day : Date.now();
  return written > latest || written < firstMail ? arrived || Date.now() : written;
}

export function nothingTold(): Told {
  return { places: [], people: [], chats: [], unread: [] };
}

/** Prints one mail and adds what has to be remembered to `told`. */
export async function tell(
  { mail, content: { body, files }, folder, isNew }: { mail: Mail; content: Content; folder: Folder; isNew: boolean },
  names: Names,
  told: Told,
): Promise<void> {
  const { header, id, direction, people, chat, date, subject } = mail;
  const from = senderOf(header.envelope);
  for (const person of [...people, from]) {
    if (person.name && names.note(person, date)) told.people.push({ ...person, at: date });
  }
  const message: MessageEvent = {
    type: "message",
    convExternalId: chat,
    providerMsgId: id,
    direction,
    body,
    ts: date,
    convTitle: names.titleOf(people),
    sender: from.name || from.address,
    subject: subject || undefined,
    historical: isNew ? undefined : true,
  };
  await emit(message);
  for (const row of fileRows(message, files)) await emit(row);

  const messageId = header.envelope.messageId ?? "";
  const trail = header.references || header.envelope.inReplyTo || "";
  told.places.push({ id, folder: folder.id, uid: header.uid, messageId });
  told.chats.push({ id: chat, at: date, messageId, trail, subject });
  if (isNew) told.unread.push({ id, chat, folder: folder.id, uid: header.uid });
}
