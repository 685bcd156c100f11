// Sends Corvane's messages one after the other, each of them once.

import { createHash, randomUUID } from "node:crypto";
import { emit, log, textOf, whenStored, type Command } from "./wire.ts";
import type { MessageEvent, SendName } from "./events.ts";
import type { SendEntry, SendJournal } from "./journal.ts";
import { stopping, wordsOf } from "./run.ts";

export interface OutgoingFile {
  path: string;
  name: string;
}

export interface Sending {
  /** Unique among outgoing messages. */
  key: string;
  /** Of the content: the same key and digest mean the same message. */
  digest: string;
  chatId: string;
  text: string;
  subject: string;
  files: OutgoingFile[];
  /** To be called while there is progress, so that Corvane does not time out. */
  progress(): void;
}

/** The provider refused the message, with this reason: it was not sent, even after `begin`. */
export class Refused extends Error {}

export interface Delivered {
  /** The rows to show, starting with the message itself. */
  messages: MessageEvent[];
  /** Work to do after the answer is in the journal. */
  after?: () => void;
}

/** Hands one message to the provider and calls `begin` right before the step that cannot be undone. An error before
 *  `begin`, or `Refused` after it, fails the draft; any other error after `begin` leaves it uncertain. It must end
 *  by itself, even without an answer. */
export type Deliver = (sending: Sending, begin: () => void) => Promise<Delivered>;

interface Waiting extends Sending {
  name: SendName | undefined;
}

const progressEvery = 10_000;
const queueProgressEvery = 30_000;
const noAnswer = "The connection ended before the answer came.";

export class Outbox {
  readonly #journal: SendJournal;
  readonly #deliver: Deliver;
  readonly #queue: Waiting[] = [];
  #working: Promise<void> | undefined;

  constructor(journal: SendJournal, deliver: Deliver) {
    this.#journal = journal;
    this.#deliver = deliver;
    setInterval(() => this.#queue.slice(1).forEach((waiting) => waiting.progress()), queueProgressEvery).unref();
  }

  /** Repeats the outcomes of earlier runs that Corvane may not have received. To be called before the first command. */
  async resume(): Promise<void> {
    for (const entry of this.#journal.untold()) await this.#tell(entry, nameIn(entry.key));
  }

  /** Handles a `send` command. */
  send(command: Command): void {
    const waiting = waitingFrom(command);
    if (this.#queue.some(({ key, digest }) => key === waiting.key && digest === waiting.digest)) return;
    this.#queue.push(waiting);
    this.#working ??= this.#work().finally(() => (this.#working = undefined));
  }

  /** Resolves when nothing is being sent. */
  async idle(): Promise<void> {
    await this.#working;
  }

  async #work(): Promise<void> {
    for (let next = this.#queue[0]; next && !stopping.aborted; next = this.#queue[0]) {
      await this.#sendOne(next);
      this.#queue.shift();
    }
  }

  async #sendOne(waiting: Waiting): Promise<void> {
    const { key, digest, name } = waiting;
    const before = this.#journal.find(key);
    const isKnown = before?.digest === digest && !(before.stage === "begun" && before.told);
    if (isKnown) return this.#tell(before, name);
    let isBegun = false;
    const begin = (): void => {
      this.#journal.begin(key, digest);
      isBegun = true;
    };
    try {
      const { messages, after } = await this.#deliver(waiting, begin);
      this.#journal.sent(key, digest, messages);
      after?.();
      await this.#tell({ key, digest, stage: "sent", told: false, messages }, name);
    } catch (error) {
      if (isBegun && !(error instanceof Refused)) {
        await this.#tell({ key, digest, stage: "begun", told: false, messages: [] }, name);
        return;
      }
      if (isBegun) this.#journal.forget(key);
      if (stopping.aborted) return;
      if (name) await emit({ type: "sendAck", ...name, status: "failed", error: wordsOf(error) });
      else await log(`A message was not sent: ${wordsOf(error)}`);
    }
  }

  async #tell({ key, stage, messages }: SendEntry, name: SendName | undefined): Promise<void> {
    for (const message of messages) await emit(message);
    if (name && stage === "begun") await emit({ type: "sendAck", ...name, status: "uncertain", error: noAnswer });
    else if (name) await emit({ type: "sendAck", ...name, status: "sent", providerMsgId: messages[0]?.providerMsgId });
    whenStored(() => this.#journal.told(key));
  }
}

function waitingFrom(command: Command): Waiting {
  const name = nameOf(command);
  const files = filesOf(command);
  const [chatId, text, subject] = [textOf(command, "chatId"), textOf(command, "text"), textOf(command, "subject")];
  const digest = createHash("sha256").update(JSON.stringify([chatId, text, subject, files])).digest("hex");
  let last = 0;
  const progress = (): void => {
    if (!name || Date.now() - last < progressEvery) return;
    last = Date.now();
    void emit({ type: "sendProgress", ...name });
  };
  return { key: keyOf(name), name, chatId, text, subject, files, digest, progress };
}

function nameOf(command: Command): SendName | undefined {
  const [draftId, sendId] = [textOf(command, "draftId"), textOf(command, "sendId")];
  if (draftId) return { draftId };
  return sendId ? { sendId } : undefined;
}

function keyOf(name: SendName | undefined): string {
  if (!name) return `none/${randomUUID()}`;
  return "draftId" in name ? `draft/${name.draftId}` : `send/${name.sendId}`;
}

function nameIn(key: string): SendName | undefined {
  const [kind, ...rest] = key.split("/");
  if (kind === "draft") return { draftId: rest.join("/") };
  return kind === "send" ? { sendId: rest.join("/") } : undefined;
}

function filesOf(command: Command): OutgoingFile[] {
  const list = Array.isArray(command.files) ? (command.files as Command[]) : [];
  return list.map((file) => ({ path: textOf(file ?? {}, "path"), name: textOf(file ?? {}, "name") }));
}
