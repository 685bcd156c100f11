// Mirrors one folder after the other, a page at a time: new mail upwards, the history downwards.

import type { ImapFlow } from "imapflow";
import { whenStored } from "../lib/wire.ts";
import { isUnreadable } from "./client.ts";
import { bareForm, fetchContents, fetchHeaders, type Header } from "./fetch.ts";
import type { Names } from "./names.ts";
import type { Folder, MailStore } from "./store.ts";
import { mailOf, nothingTold, tell, type Account } from "./teller.ts";

const pageSize = 200;
/** Small, so that the first screen fills quickly. */
const firstPage = 50;
const minute = 60_000;

/** What does not depend on the page. */
export interface Mirror {
  account: Account;
  store: MailStore;
  names: Names;
  /** The path of the folder with sent mail. */
  sent: string | undefined;
  /** When the account was first connected, in milliseconds: mail that arrived earlier is history, whatever its
   *  folder. */
  since: number;
  /** How often a page failed: what was being read, and how many UIDs from the start the page ended. */
  troubles: Map<string, { end: number; count: number }>;
}

/** The folder that `client` has open; starts over if the folder is new or its UIDs were renumbered. */
export function openedFolder(client: ImapFlow, { store }: Mirror, known?: Folder): Folder {
  if (!client.mailbox) throw new Error("no folder is open");
  const { path, uidValidity, uidNext } = client.mailbox;
  const validity = String(uidValidity);
  if (known?.path === path && known.validity === validity) return known;
  const folder = store.folder(path);
  if (folder?.validity === validity) return folder;
  const liveAfter = folder?.synced ? folder.synced - 10 * minute : null;
  return store.beginFolder(path, validity, Math.max(uidNext - 1, 0), liveAfter);
}

/** Reports mail above the folder's top, in order of arrival. */
export async function tellNew(client: ImapFlow, mirror: Mirror, folder: Folder): Promise<void> {
  if (!client.mailbox) return;
  const last = client.mailbox.uidNext - 1;
  for (let isDone = false; !isDone; ) {
    const first = folder.top + 1;
    await readPage(client, mirror, { what: `new in ${folder.path}`, from: first, usual: pageSize }, async (size, form) => {
      const end = Math.min(first + size - 1, last);
      const isOpen = first > last;
      const found = await fetchHeaders(client, `${first}:${isOpen ? "*" : end}`, form);
      const headers = found.filter(({ uid }) => uid >= first);
      isDone = isOpen && headers.length === 0;
      const top = isOpen ? Math.max(folder.top, ...headers.map(({ uid }) => uid)) : end;
      if (!isDone) await tellPage(client, mirror, folder, headers, { top, liveAfter: mirror.since - 24 * 60 * minute });
    });
  }
  const now = Date.now();
  whenStored(() => mirror.store.keepSynced(folder, now));
}

/** Reports the page below the folder's bottom, newest first; returns when its oldest mail arrived, in milliseconds. */
export async function tellOlder(client: ImapFlow, mirror: Mirror, folder: Folder): Promise<number> {
  let oldest = Infinity;
  const usual = folder.bottom > folder.top - firstPage ? firstPage : pageSize;
  const from = folder.top - folder.bottom;
  await readPage(client, mirror, { what: `history of ${folder.path}`, from, usual }, async (size, form) => {
    const bottom = Math.max(folder.bottom - size, 1);
    const headers = await fetchHeaders(client, `${bottom}:${folder.bottom - 1}`, form);
    await tellPage(client, mirror, folder, headers.sort((a, b) => b.uid - a.uid), { bottom, liveAfter: folder.liveAfter });
    oldest = Math.min(...headers.map(({ arrived }) => arrived));
  });
  return oldest;
}

/** Reads the page with this distance from the start. If the server's responses for part of it broke the connection
 *  before, reads fewer mails at a time, until the offending one is alone; only its existence is reported. */
async function readPage(
  client: ImapFlow,
  { troubles }: Mirror,
  { what, from, usual }: { what: string; from: number; usual: number },
  read: (size: number, form: number) => Promise<void>,
): Promise<void> {
  const { end, count } = troubles.get(what) ?? { end: 0, count: 0 };
  const size = [usual, 10][count] ?? 1;
  try {
    await read(size, count < 3 ? 0 : bareForm);
    if (from + size >= end) troubles.delete(what);
  } catch (error) {
    if (isUnreadable(client, error)) troubles.set(what, { end: from + size, count: count + 1 });
    throw error;
  }
}

async function tellPage(
  client: ImapFlow,
  { account, store, names, sent }: Mirror,
  folder: Folder,
  headers: Header[],
  { liveAfter, ...bounds }: { top?: number; bottom?: number; liveAfter: number | null },
): Promise<void> {
  const told = nothingTold();
  const mails = new Map<number, ReturnType<typeof mailOf>>();
  for (const header of headers) {
    if (header.isDraft) continue;
    const mail = mailOf(account, header, folder.path === sent);
    if (!store.isTold(mail.id)) mails.set(header.uid, mail);
    else told.places.push({ id: mail.id, folder: folder.id, uid: header.uid, messageId: header.envelope.messageId ?? "" });
  }
  const unknown = headers.filter(({ uid }) => mails.has(uid));
  for await (const { header, content } of fetchContents(client, unknown)) {
    const mail = mails.get(header.uid);
    if (!mail) continue;
    const isLate = liveAfter !== null && header.arrived > liveAfter;
    await tell({ mail, content, folder, isNew: isLate && !header.isSeen && mail.direction === "IN" }, names, told);
  }
  Object.assign(folder, bounds);
  whenStored(() => store.keep(told, folder, bounds));
}
