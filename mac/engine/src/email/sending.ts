// Sends mails and stores copies in the sent folder.

import { readFile, rm } from "node:fs/promises";
import { extname, join } from "node:path";
import { detectMimeType } from "nodemailer/lib/mime-funcs";
import { mediaTypeOf, type MediaType, type MessageEvent } from "../lib/events.ts";
import { fileRows, keepSent } from "../lib/files.ts";
import { withinLimits } from "../lib/limits.ts";
import type { SendJournal } from "../lib/journal.ts";
import type { Deliver, Sending } from "../lib/outbox.ts";
import { stopping, wordsOf, type Place } from "../lib/run.ts";
import { log } from "../lib/wire.ts";
import { chatIdOf, normalAddress } from "./address.ts";
import { chatAfter, writeMail, type Written } from "./compose.ts";
import type { FindServers } from "./discovery.ts";
import { uidsOf } from "./downloads.ts";
import { providerMsgId } from "./identity.ts";
import type { Mailbox } from "./mailbox.ts";
import { providerOfHost } from "./providers.ts";
import type { Settings } from "./settings.ts";
import type { Outgoing } from "./store.ts";
import { submit } from "./submission.ts";
import { bodyOf } from "./text.ts";

const keepAlive = 20_000;
/** How long to retry with a server that temporarily refuses mail. */
const patience = 20_000;

export class Sender {
  readonly #place: Place;
  readonly #settings: Settings;
  readonly #servers: FindServers;
  readonly #mailbox: Mailbox;
  readonly #journal: SendJournal;
  #filing: Promise<void> = Promise.resolve();

  constructor(place: Place, settings: Settings, servers: FindServers, mailbox: Mailbox, journal: SendJournal) {
    this.#place = place;
    this.#settings = settings;
    this.#servers = servers;
    this.#mailbox = mailbox;
    this.#journal = journal;
  }

  readonly deliver: Deliver = async (sending, begin) => {
    const { store, names } = this.#mailbox;
    const from = { address: this.#settings.address, name: names.nameOf(normalAddress(this.#settings.address)) };
    const mail = await writeMail(sending, from, store, join(this.#place.stateDir, "outgoing"));
    const chat = chatIdOf(mail.to.map((address) => ({ address, name: "" })));
    const messages = await this.#messages(sending, mail, chat);
    const alive = setInterval(() => sending.progress(), keepAlive);
    try {
      const limits = { signal: stopping, budget: patience };
      const envelope = { from: from.address, to: mail.to };
      await withinLimits(async () => {
        const { smtp } = await this.#servers();
        await submit(this.#settings, smtp, envelope, mail.file, begin);
      }, limits);
    } finally {
      clearInterval(alive);
    }
    const after = (): void => {
      store.keepChat(chatAfter(chat, mail, store.chat(chat)));
      this.fileCopies();
    };
    return { messages, after };
  };

  /** Stores copies of accepted mail in the sent folder, now or when the mailbox is reachable again. */
  fileCopies(): void {
    this.#filing = this.#filing.then(() => this.#fileAll()).catch((error) => log(`The sent copy: ${wordsOf(error)}`));
  }

  async filed(): Promise<void> {
    await this.#filing;
  }

  async #fileAll(): Promise<void> {
    for (const mail of this.#mailbox.store.outgoing()) {
      const entry = this.#journal.find(mail.key);
      const isOurs = entry?.digest === mail.digest;
      if (isOurs && entry.stage === "begun") continue; // the user may send it again
      if (isOurs && entry.stage === "sent" && !(await this.#file(mail))) return;
      if (!isOurs && Date.now() - mail.date < 24 * 3600_000) continue; // it is being sent, or will be
      this.#mailbox.store.forgetOutgoing(mail);
      await rm(mail.file, { force: true });
    }
  }

  /** Whether the copy is stored now. */
  async #file({ file, messageId, date }: Outgoing): Promise<boolean> {
    const { session } = this.#mailbox;
    if (!session) return false;
    const { smtp } = await this.#servers();
    if (providerOfHost(smtp.host)?.keepsSent || !session.folders.sent) return true;
    const copies = await uidsOf(session.client, session.folders.sent, messageId);
    if (copies.length === 0) {
      await session.client.append(session.folders.sent, await readFile(file), ["\\Seen"], new Date(date));
    }
    return true;
  }

  /** The message and copies of its files: the outbox keeps them only until the message is sent. */
  async #messages({ text, files }: Sending, { to, subject, messageId, date }: Written, chat: string): Promise<MessageEvent[]> {
    const from = normalAddress(this.#settings.address);
    const marks = { account: this.#place.account, direction: "OUT" as const, messageId, from, date, subject, size: 0 };
    const message: MessageEvent = {
      type: "message",
      convExternalId: chat,
      providerMsgId: providerMsgId(marks),
      direction: "OUT",
      body: bodyOf([text]),
      ts: date,
      convTitle: this.#mailbox.names.titleOf(to.map((address) => ({ address, name: "" }))),
      subject: subject || undefined,
    };
    const kindOf = (name: string): MediaType => mediaTypeOf(detectMimeType(extname(name).slice(1)));
    const rows = fileRows(message, files.map(({ name }) => ({ name, mediaType: kindOf(name) })));
    await keepSent(this.#place.mediaDir, rows, files);
    return [message, ...rows];
  }
}
