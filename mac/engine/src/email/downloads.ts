// Fetches a file of a mail on request.

import type { ImapFlow } from "imapflow";
import { reportDownload, type FetchedFile, type Save } from "../lib/files.ts";
import { assertOpen, searchUids } from "./client.ts";
import { partsOf } from "./parts.ts";
import type { MailPlace, MailStore } from "./store.ts";

/** Fetches the file with the id "{mail}/{number}" and reports the outcome. */
export async function download(client: ImapFlow | undefined, store: MailStore, mediaDir: string, id: string): Promise<void> {
  await reportDownload(mediaDir, id, async (save) => {
    if (!client) throw new Error("The mail server is not connected.");
    const [mail, number] = id.split("/");
    const place = store.place(mail);
    if (!place || !Number(number)) throw new Error("This file is not known any more.");
    return fetchFile(client, store, place, Number(number), save);
  });
}

async function fetchFile(
  client: ImapFlow,
  store: MailStore,
  place: MailPlace,
  number: number,
  save: Save,
): Promise<FetchedFile> {
  for await (const { path, uid } of candidates(client, store, place)) {
    const lock = await client.getMailboxLock(path);
    try {
      const message = await client.fetchOne(String(uid), { uid: true, envelope: true, bodyStructure: true }, { uid: true });
      if (!message || !message.bodyStructure || (message.envelope?.messageId ?? "").slice(0, 998) !== place.messageId) continue;
      const file = partsOf(message.bodyStructure).files[number - 1];
      if (!file) continue;
      const { content } = await client.download(String(uid), file.key, { uid: true, chunkSize: 1 << 20 });
      if (!content) continue;
      return { mediaPath: await save(file.name, content), mediaType: file.mediaType };
    } finally {
      lock.release();
    }
  }
  assertOpen(client);
  throw new Error("The mail is no longer on the server.");
}

/** Looks where the mail was last seen, then for its Message-ID: it may have been moved. */
async function* candidates(client: ImapFlow, store: MailStore, place: MailPlace): AsyncGenerator<{ path: string; uid: number }> {
  const known = store.folderById(place.folder);
  if (known) yield { path: known.path, uid: place.uid };
  if (!place.messageId) return;
  for (const { path, flags } of await client.list()) {
    if (flags.has("\\Noselect") || flags.has("\\NonExistent")) continue;
    for (const uid of await uidsOf(client, path, place.messageId)) yield { path, uid };
  }
}

/** The mails in a folder with that Message-ID. */
export async function uidsOf(client: ImapFlow, path: string, messageId: string): Promise<number[]> {
  const lock = await client.getMailboxLock(path);
  try {
    return await searchUids(client, { header: { "message-id": messageId } });
  } finally {
    lock.release();
  }
}
