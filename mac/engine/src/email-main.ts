// A mailbox: IMAP for incoming mail, SMTP for outgoing mail.

import { SendJournal } from "./lib/journal.ts";
import { Outbox } from "./lib/outbox.ts";
import { runEngine, signOut, type Engine, type Place } from "./lib/run.ts";
import { openState } from "./lib/state.ts";
import { emit, log, textOf, type Command } from "./lib/wire.ts";
import { mostFileBytes } from "./email/compose.ts";
import { runConnectSheet } from "./email/connect-sheet.ts";
import { serverFinder } from "./email/discovery.ts";
import { download } from "./email/downloads.ts";
import { Mailbox } from "./email/mailbox.ts";
import { Sender } from "./email/sending.ts";
import { settingsFrom, type Settings } from "./email/settings.ts";
import { mailTables } from "./email/store.ts";
import { markRead } from "./email/unread.ts";

const [, , mode] = process.argv;
if (mode) await runConnectSheet(mode);
else await runEngine(start);

async function start(place: Place): Promise<Engine> {
  const nothing: Engine = { handle: () => {}, close: async () => {} };
  let settings: Settings;
  try {
    settings = settingsFrom(process.env);
  } catch (error) {
    await signOut((error as Error).message);
    return nothing;
  }

  const servers = serverFinder(settings);
  const db = openState(place.stateDir, mailTables);
  const journal = new SendJournal(db);
  const mailbox = new Mailbox(place.account, settings, servers, db);
  const sender = new Sender(place, settings, servers, mailbox, journal);
  const outbox = new Outbox(journal, sender.deliver);
  await emit({ type: "features", files: true, maxBytes: mostFileBytes, subject: true });
  await outbox.resume();
  const staying = mailbox.stay(() => sender.fileCopies());

  const handlers: Record<string, (command: Command) => void> = {
    send: (command) => outbox.send(command),
    sendAudio: () => void log("Voice notes cannot be sent by e-mail."),
    downloadMedia: (command) =>
      void download(mailbox.session?.client, mailbox.store, place.mediaDir, textOf(command, "messageId")),
    markRead: (command) => {
      const client = mailbox.session?.client;
      if (client) markRead(client, mailbox.store, textOf(command, "chatId")).catch((error: Error) => log(error.message));
    },
  };
  return {
    handle: (command) => handlers[textOf(command, "cmd")]?.(command),
    close: async () => {
      await outbox.idle();
      await sender.filed();
      const { session } = mailbox;
      session?.close();
      if (session) await staying; // otherwise it may be looking for servers for longer than there is time
      db.close();
    },
  };
}
