// Who a mail is from and for, and which chat it belongs to.

import type { MessageAddressObject, MessageEnvelopeObject } from "imapflow";
import { oneLine } from "../lib/text.ts";

export interface Person {
  /** In lower case; a chat's id is made of it. */
  address: string;
  name: string;
}

export type Direction = "IN" | "OUT";

/** A chat of several people is named by their addresses; this marks it. */
const groupMark = "@g.us";

/** A mail to more people than these counts as one between two: its chat is the sender's. */
const largestGroup = 50;

/** Stands for a sender who has no address. */
const nobody: Person = { address: "nobody@invalid", name: "" };

/** The form in which addresses are compared. */
export function normalAddress(address: string): string {
  return address.toLowerCase().replace(/[\s,;<>()"\p{Cc}\p{Cf}]/gu, "").slice(0, 254).toWellFormed();
}

export function isAddress(text: string): boolean {
  return /^[^\s@<>,;:"()\\]+@[^\s@<>,;:"()\\]+$/.test(text) && !text.endsWith("@invalid");
}

/** What servers put in the place of an address that is none. */
const invented = /@(missing_domain|\.missing-host-name\.|\.syntax-error\.)$|^missing_mailbox@|^@|@$/i;

export function peopleOf(list: MessageAddressObject[] | undefined): Person[] {
  return (list ?? [])
    .filter(({ address = "" }) => address.includes("@") && !invented.test(address))
    .map(({ address = "", name = "" }) => ({ address: normalAddress(address), name: nameOf(name, address) }));
}

/** A name that is only the address again is none. */
function nameOf(name: string, address: string): string {
  const line = oneLine(name, 200).replace(/^["']+|["']+$/g, "");
  return line.toLowerCase() === address.toLowerCase() ? "" : line;
}

export function senderOf(envelope: MessageEnvelopeObject): Person {
  return peopleOf(envelope.from)[0] ?? peopleOf(envelope.sender)[0] ?? nobody;
}

/** What the account itself sent lies among the sent mail or is from it to others; a mail to oneself comes in, too. */
export function directionOf(envelope: MessageEnvelopeObject, isSentFolder: boolean, own: ReadonlySet<string>): Direction {
  if (isSentFolder) return "OUT";
  const isToMyself = [...peopleOf(envelope.to), ...peopleOf(envelope.cc)].some(({ address }) => own.has(address));
  return own.has(senderOf(envelope).address) && !isToMyself ? "OUT" : "IN";
}

/** The others of the mail: whom an answer would go to. */
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

/** Exactly the addresses that a chat's id names. */
export function addressesIn(chatId: string): string[] {
  const names = chatId.endsWith(groupMark) ? chatId.slice(0, -groupMark.length) : chatId;
  return names.split(",").map((name) => name.trim().toLowerCase());
}
