// The sender and recipients of a mail, and its chat.

import type { MessageAddressObject, MessageEnvelopeObject } from "imapflow";
import { oneLine } from "../lib/text.ts";

export interface Person {
  /** In lower case; used in chat ids. */
  address: string;
  name: string;
}

export type Direction = "IN" | "OUT";

/** Chats with several people have their addresses as id, followed by this. */
const groupMark = "@g.us";

/** A mail to more people than this belongs to its sender's chat. */
const largestGroup = 50;

/** In place of a sender without an address. */
const nobody: Person = { address: "nobody@invalid", name: "" };

/** The form in which addresses are compared. */
export function normalAddress(address: string): string {
  return address.toLowerCase().replace(/[\s,;<>()"\p{Cc}\p{Cf}]/gu, "").slice(0, 254).toWellFormed();
}

export function isAddress(text: string): boolean {
  return /^[^\s@<>,;:"()\\]+@[^\s@<>,;:"()\\]+$/.test(text) && !text.endsWith("@invalid");
}

/** What servers use in place of a missing or invalid address. */
const invented = /@(missing_domain|\.missing-host-name\.|\.syntax-error\.)$|^missing_mailbox@|^@|@$/i;

export function peopleOf(list: MessageAddressObject[] | undefined): Person[] {
  return (list ?? [])
    .filter(({ address = "" }) => address.includes("@") && !invented.test(address))
    .map(({ address = "", name = "" }) => ({ address: normalAddress(address), name: nameOf(name, address) }));
}

/** A name that only repeats the address is dropped. */
function nameOf(name: string, address: string): string {
  const line = oneLine(name, 200).replace(/^["']+|["']+$/g, "");
  return line.toLowerCase() === address.toLowerCase() ? "" : line;
}

export function senderOf(envelope: MessageEnvelopeObject): Person {
  return peopleOf(envelope.from)[0] ?? peopleOf(envelope.sender)[0] ?? nobody;
}

/** Outgoing mail is in the sent folder, or from the account to others; mail to oneself counts as incoming, too. */
export function directionOf(envelope: MessageEnvelopeObject, isSentFolder: boolean, own: ReadonlySet<string>): Direction {
  if (isSentFolder) return "OUT";
  const isToMyself = [...peopleOf(envelope.to), ...peopleOf(envelope.cc)].some(({ address }) => own.has(address));
  return own.has(senderOf(envelope).address) && !isToMyself ? "OUT" : "IN";
}

/** The other people of the mail: the recipients of an answer. */
export function participantsOf(envelope: MessageEnvelopeObject, direction: Direction, own: ReadonlySet<string>): Person[] {
  const from = senderOf(envelope);
  const answerTo = peopleOf(envelope.replyTo)[0];
  const start = direction === "OUT" ? [] : [answerTo ? { ...answerTo, name: answerTo.name || from.name } : from];
  const receivers = [...peopleOf(envelope.to), ...peopleOf(envelope.cc)];
  if (direction === "OUT") receivers.push(...peopleOf(envelope.bcc));
  const others = new Map<string, Person>();
  for (const person of [...start, ...receivers]) {
    if (!own.has(person.address) && !others.has(person.address)) others.set(person.address, person);
  }
  if (others.size === 0) return [direction === "OUT" ? (receivers[0] ?? from) : from];
  return others.size > largestGroup ? [direction === "IN" ? start[0] : [...others.values()][0]] : [...others.values()];
}

export function chatIdOf(people: Person[]): string {
  const addresses = people.map(({ address }) => address).sort();
  return addresses.length === 1 ? addresses[0] : addresses.join(",") + groupMark;
}

/** Exactly the addresses in a chat's id. */
export function addressesIn(chatId: string): string[] {
  const names = chatId.endsWith(groupMark) ? chatId.slice(0, -groupMark.length) : chatId;
  return names.split(",").map((name) => name.trim().toLowerCase());
}
