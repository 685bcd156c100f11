// Reads mails a page at a time: first the structure, then only the text parts, never files.

import type { FetchMessageObject, ImapFlow, MessageEnvelopeObject, MessageStructureObject } from "imapflow";
import { assertOpen, searchUids } from "./client.ts";
import { partsOf, type FilePart, type Parts, type TextPart } from "./parts.ts";
import { bodyOf, textOfPart } from "./text.ts";

export interface Header {
  uid: number;
  isSeen: boolean;
  isDraft: boolean;
  /** When the server received it, in milliseconds. */
  arrived: number;
  size: number;
  envelope: MessageEnvelopeObject;
  structure: MessageStructureObject | undefined;
  /** The Message-IDs that it refers to, oldest first. */
  references: string;
}

export interface Content {
  body: string;
  files: FilePart[];
}

/** The limit for one text part, in bytes as transferred. */
const mostOfText = 128 * 1024;
/** The limit for a mail whose structure the server cannot report. */
const mostOfSource = 256 * 1024;

const known = { uid: true, flags: true, internalDate: true, size: true };
const described = { ...known, envelope: true, headers: ["references"] };

/** How much of each mail to request: a server or the library may fail at its structure, or even at its header. */
const forms = [{ ...described, bodyStructure: true }, described, known];

/** The mails with these UIDs, in any order, including those that cannot be described. */
export async function fetchHeaders(client: ImapFlow, uids: string, from = 0): Promise<Header[]> {
  const missing = new Set(await searchUids(client, { uid: uids }));
  const headers: Header[] = [];
  for (const form of forms.slice(from)) {
    if (missing.size === 0) break;
    for await (const message of client.fetch([...missing].join(","), form, { uid: true })) {
      if (missing.delete(message.uid)) headers.push(headerOf(message));
    }
    assertOpen(client);
  }
  return headers;
}

/** For `fetchHeaders`: only check that the mails exist. */
export const bareForm = forms.length - 1;

const unreadable: MessageEnvelopeObject = { subject: "(This mail could not be read.)" };

function headerOf(message: FetchMessageObject): Header {
  const { uid, flags, internalDate, size = 0, envelope = unreadable, bodyStructure, headers } = message;
  const references = (headers?.toString("latin1") ?? "").match(/<[^<>\s]{1,250}>/g) ?? [];
  return {
    uid,
    isSeen: flags?.has("\\Seen") ?? false,
    isDraft: flags?.has("\\Draft") ?? false,
    arrived: new Date(internalDate ?? 0).getTime() || 0,
    size,
    envelope,
    structure: bodyStructure,
    references: references.slice(-20).join(" "),
  };
}

/** Yields each mail with its content, in the server's order. Mails whose texts are in the same parts are requested
 *  together. */
export async function* fetchContents(client: ImapFlow, headers: Header[]): AsyncGenerator<{ header: Header; content: Content }> {
  const groups = new Map<string, { header: Header; parts: Parts }[]>();
  for (const header of headers) {
    const parts = header.structure ? partsOf(header.structure) : { texts: [], files: [] };
    const keys = parts.texts.map(({ key }) => key).join(" ");
    groups.set(keys, [...(groups.get(keys) ?? []), { header, parts }]);
  }
  for (const [keys, group] of groups) {
    if (keys !== "") yield* fetchGroup(client, keys.split(" "), group);
    else for (const { header, parts } of group) yield { header, content: await withoutText(client, header, parts) };
  }
}

async function* fetchGroup(
  client: ImapFlow,
  keys: string[],
  group: { header: Header; parts: Parts }[],
): AsyncGenerator<{ header: Header; content: Content }> {
  const wanted = new Map(group.map((mail) => [mail.header.uid, mail]));
  const bodyParts = keys.map((key) => ({ key, start: 0, maxLength: mostOfText }));
  const uids = [...wanted.keys()].join(",");
  for await (const { uid, bodyParts: found } of client.fetch(uids, { uid: true, bodyParts }, { uid: true })) {
    const mail = wanted.get(uid);
    if (!mail || !found) continue;
    wanted.delete(uid);
    yield { header: mail.header, content: contentOf(mail.parts, found) };
  }
  assertOpen(client);
  // Mails that are gone by now have only their header.
  for (const { header, parts } of wanted.values()) yield { header, content: { body: "", files: parts.files } };
}

function contentOf({ texts, files }: Parts, found: Map<string, Buffer>): Content {
  const text = (part: TextPart): string => textOfPart(part, found.get(part.key.toLowerCase()) ?? Buffer.alloc(0));
  return { body: bodyOf(texts.map(text)), files };
}

/** A mail that consists only of files, or whose structure the server did not report. */
async function withoutText(client: ImapFlow, { uid, structure, envelope }: Header, { files }: Parts): Promise<Content> {
  if (structure || envelope === unreadable) return { body: "", files };
  const message = await client.fetchOne(String(uid), { source: { start: 0, maxLength: mostOfSource } }, { uid: true });
  assertOpen(client);
  const source = message ? message.source : undefined;
  if (!source) return { body: "", files: [] };
  const { simpleParser } = await import("mailparser"); // 10 MB that few mailboxes need
  const { text = "" } = await simpleParser(source, { skipImageLinks: true, skipTextToHtml: true, skipTextLinks: true });
  return { body: bodyOf([text]), files: [] };
}
