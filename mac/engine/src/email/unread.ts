// Keeps unread mails in sync, here and at the provider.

import type { ImapFlow } from "imapflow";
import { emit } from "../lib/wire.ts";
import { assertOpen } from "./client.ts";
import type { Folder, MailStore } from "./store.ts";

/** Mails of the open folder that were read elsewhere or are gone no longer count as unread. */
export async function compareRead(client: ImapFlow, store: MailStore, folder: Folder): Promise<void> {
  if (!client.mailbox) return;
  const modseq = String(client.mailbox.highestModseq ?? "");
  if (modseq && modseq === folder.modseq) return;
  const unread = store.unreadIn(folder.id);
  for (let start = 0; start < unread.length; start += 500) {
    const some = unread.slice(start, start + 500);
    const still = new Set<number>();
    const uids = some.map(({ uid }) => uid).join(",");
    for await (const { uid, flags } of client.fetch(uids, { uid: true, flags: true }, { uid: true })) {
      if (!flags?.has("\\Seen")) still.add(uid);
    }
    assertOpen(client);
    await forget(store, some.filter(({ uid }) => !still.has(uid)));
  }
  if (modseq) store.keepModseq(folder, modseq);
}

/** A mail of the folder was read elsewhere. */
export async function readElsewhere(store: MailStore, folder: Folder, uid: number): Promise<void> {
  await forget(store, store.unreadIn(folder.id).filter((mail) => mail.uid === uid));
}

async function forget(store: MailStore, mails: { id: string; chat: string }[]): Promise<void> {
  for (const { id } of mails) store.forgetUnread(id);
  for (const chat of new Set(mails.map(({ chat }) => chat))) {
    await emit({ type: "unread", convExternalId: chat, count: store.unreadOf(chat).length });
  }
}

/** The user has seen the chat: marks it as read at the provider. */
export async function markRead(client: ImapFlow, store: MailStore, chat: string): Promise<void> {
  const mails = store.unreadOf(chat);
  for (const id of new Set(mails.map(({ folder }) => folder))) {
    const folder = store.folderById(id);
    if (!folder) continue;
    const lock = await client.getMailboxLock(folder.path);
    try {
      if (client.mailbox && String(client.mailbox.uidValidity) !== folder.validity) continue;
      const uids = mails.filter((mail) => mail.folder === id).map(({ uid }) => uid);
      await client.messageFlagsAdd(uids.join(","), ["\\Seen"], { uid: true, silent: true });
      assertOpen(client);
    } finally {
      lock.release();
    }
  }
  for (const { id } of mails) store.forgetUnread(id);
}
