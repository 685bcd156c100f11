// Writes an outgoing mail to a file, so that the same bytes are sent, stored in the sent folder, and sent again.

import { randomUUID } from "node:crypto";
import { createWriteStream, mkdirSync } from "node:fs";
import { rename, stat } from "node:fs/promises";
import { join } from "node:path";
import { pipeline } from "node:stream/promises";
import MailComposer from "nodemailer/lib/mail-composer";
import { Refused, type Sending } from "../lib/outbox.ts";
import { oneLine } from "../lib/text.ts";
import { addressesIn, isAddress } from "./address.ts";
import type { ChatMark, MailStore, Outgoing } from "./store.ts";
import { longestSubject } from "./teller.ts";

/** The total size of the files of one mail, in bytes. Providers take mails of 25 MB, a third of which is encoding. */
export const mostFileBytes = 18 * 1024 * 1024;

export interface Written extends Outgoing {
  to: string[];
  subject: string;
}

/** The sender as recipients see it. */
export interface Sender {
  address: string;
  name: string;
}

/** The mail for a `send` command; reuses the file of an earlier attempt to send the same message. */
export async function writeMail(sending: Sending, from: Sender, store: MailStore, folder: string): Promise<Written> {
  const to = addressesIn(sending.chatId);
  const wrong = to.find((address) => !isAddress(address));
  if (wrong !== undefined) throw new Refused(`"${wrong}" is no e-mail address.`);
  await checkFiles(sending);
  const chat = store.chat(sending.chatId.toLowerCase());
  const subject = subjectOf(sending.subject, chat);
  const { key, digest } = sending;
  const earlier = store.outgoing().find((mail) => mail.key === key && mail.digest === digest);
  if (earlier && (await isThere(earlier.file))) return { ...earlier, to, subject };

  const messageId = `<${randomUUID()}@${from.address.split("@").at(-1)}>`;
  const date = Math.floor(Date.now() / 1000) * 1000;
  const file = join(folder, `${digest.slice(0, 32)}.eml`);
  const mail = new MailComposer({
    from: from.name ? { name: from.name, address: from.address } : from.address,
    to,
    subject,
    text: sending.text,
    attachments: sending.files.map(({ path, name }) => ({ path, filename: oneLine(name, 255) || "file" })),
    messageId,
    date: new Date(date),
    disableUrlAccess: true,
    ...replyTo(chat, subject),
  }).compile();
  mkdirSync(folder, { recursive: true, mode: 0o700 });
  await pipeline(mail.createReadStream(), createWriteStream(`${file}.part`, { mode: 0o600, flush: true }));
  await rename(`${file}.part`, file);
  const outgoing = { key, digest, file, messageId, date };
  store.keepOutgoing(outgoing);
  return { ...outgoing, to, subject };
}

async function checkFiles({ files }: Sending): Promise<void> {
  let bytes = 0;
  for (const { path, name } of files) {
    const found = await stat(path).catch(() => undefined);
    if (!found?.isFile()) throw new Refused(`The file "${name}" is gone.`);
    bytes += found.size;
  }
  if (bytes > mostFileBytes) throw new Refused(`The files are larger than ${mostFileBytes >> 20} MB together.`);
}

async function isThere(path: string): Promise<boolean> {
  return (await stat(path).catch(() => undefined)) !== undefined;
}

/** A subject without "Re:", "Fwd:" and the like. */
export function baseSubject(subject: string): string {
  return subject.replace(/^(\s*(re|aw|sv|antw|rép|fw|fwd|wg|tr)\s*(\[\d+\])?\s*:\s*)+/i, "").trim();
}

function subjectOf(given: string, chat: ChatMark | undefined): string {
  if (given.trim()) return oneLine(given, longestSubject);
  const base = baseSubject(chat?.subject ?? "");
  return base ? `Re: ${base}` : "";
}

/** A mail with the same subject is an answer and refers to the last one; a mail with another subject is not. */
function replyTo(chat: ChatMark | undefined, subject: string): { inReplyTo?: string; references?: string[] } {
  if (!chat?.messageId || baseSubject(chat.subject) !== baseSubject(subject)) return {};
  return { inReplyTo: chat.messageId, references: [...trailOf(chat), chat.messageId] };
}

function trailOf({ trail }: ChatMark): string[] {
  return trail.split(" ").filter((id) => id !== "");
}

/** The chat after sending: the next mail answers this one. */
export function chatAfter(id: string, { messageId, subject, date }: Written, before: ChatMark | undefined): ChatMark {
  const { references = [] } = replyTo(before, subject);
  return { id, at: date, messageId, trail: references.slice(-20).join(" "), subject };
}
