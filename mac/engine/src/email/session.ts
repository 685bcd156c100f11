// A period of being connected: one connection that waits for new mail, and one for everything else.

import type { ImapFlow, ImapFlowError } from "imapflow";
import { log } from "../lib/wire.ts";
import { connectImap, wordsOfServer } from "./client.ts";
import { mailFolders, type MailFolders } from "./folders.ts";
import { openedFolder, tellNew, tellOlder, type Mirror } from "./mirror.ts";
import { notify } from "./notify.ts";
import type { Server, Settings } from "./settings.ts";
import type { Folder } from "./store.ts";
import { compareRead, readElsewhere } from "./unread.ts";

const pollEvery = 120_000;

export class Session {
  /** For the user's requests. */
  readonly client: ImapFlow;
  readonly folders: MailFolders;
  readonly #listener: ImapFlow;
  readonly #mirror: Mirror;
  readonly #ended = new AbortController();
  /** Folders in which the server announced something new. */
  readonly #stirred = new Set<string>();
  readonly #stir = new Bell(this.#ended.signal);

  private constructor(listener: ImapFlow, client: ImapFlow, folders: MailFolders, mirror: Mirror) {
    this.#listener = listener;
    this.client = client;
    this.folders = folders;
    this.#mirror = { ...mirror, sent: folders.sent };
    for (const connection of [listener, client]) connection.once("close", () => this.#ended.abort());
    if (listener.isClosed || client.isClosed) this.#ended.abort();
  }

  static async open(settings: Settings, server: Server, mirror: Mirror): Promise<Session> {
    const listener = await connectImap(settings, server, 250);
    try {
      const client = await connectImap(settings, server);
      try {
        return new Session(listener, client, await mailFolders(client), mirror);
      } catch (error) {
        client.close();
        throw error;
      }
    } catch (error) {
      listener.close();
      throw error;
    }
  }

  /** Mirrors until the connection ends, possibly with an error. */
  async run(): Promise<void> {
    try {
      await Promise.all([this.#listen(), this.#work()]);
    } catch (error) {
      if (!this.#ended.signal.aborted) throw error;
    } finally {
      this.close();
    }
  }

  close(): void {
    this.#ended.abort();
    this.#listener.close();
    this.client.close();
  }

  /** Keeps the inbox open and reports new mail. */
  async #listen(): Promise<void> {
    const client = this.#listener;
    await client.mailboxOpen("INBOX");
    await notify(client, this.folders.mirrored, (path) => {
      this.#stirred.add(path);
      this.#stir.ring();
    });
    let inbox = openedFolder(client, this.#mirror);
    const bell = new Bell(this.#ended.signal);
    client.on("exists", () => bell.ring());
    client.on("flags", ({ uid, flags }) => {
      if (uid && flags.has("\\Seen")) void readElsewhere(this.#mirror.store, inbox, uid);
    });
    await tellNew(client, this.#mirror, inbox);
    await compareRead(client, this.#mirror.store, inbox);
    for (;;) {
      await bell.rung();
      if (this.#ended.signal.aborted) return;
      inbox = openedFolder(client, this.#mirror, inbox);
      await tellNew(client, this.#mirror, inbox);
    }
  }

  /** Reports the history of all folders, newest first, and checks them periodically. */
  async #work(): Promise<void> {
    const known = new Map<string, Folder>();
    /** How far back each folder has been reported, in milliseconds. */
    const reached = new Map<string, number>();
    const tellPage = async (path: string): Promise<void> =>
      this.#inFolder(path, known, async (folder) => {
        if (folder.bottom === 1) return;
        const oldest = await tellOlder(this.client, this.#mirror, folder);
        reached.set(path, Math.min(oldest, reached.get(path) ?? Infinity));
      });
    let looked = 0;
    for (let paths = this.folders.mirrored; !this.#ended.signal.aborted; ) {
      if (Date.now() - looked >= pollEvery) {
        if (looked > 0) paths = (await mailFolders(this.client)).mirrored;
        for (const path of paths) {
          await this.#look(path, known);
          if (looked === 0) await tellPage(path);
        }
        looked = Date.now();
      }
      for (const path of this.#stirred) {
        this.#stirred.delete(path);
        await this.#look(path, known);
      }
      const behind = paths.filter((path) => (known.get(path)?.bottom ?? 1) > 1);
      const [next] = behind.sort((a, b) => (reached.get(b) ?? Infinity) - (reached.get(a) ?? Infinity));
      if (next !== undefined) await tellPage(next);
      else await this.#stir.rung(looked + pollEvery - Date.now());
    }
  }

  /** Reads new mail in a folder, if there is any. The inbox has its own connection for that. */
  async #look(path: string, known: Map<string, Folder>): Promise<void> {
    const folder = known.get(path);
    if (folder && path !== "INBOX") {
      const now = await this.client.status(path, { uidNext: true, uidValidity: true, highestModseq: true });
      const { uidNext, uidValidity, highestModseq } = now || {};
      const isSame = String(uidValidity) === folder.validity && uidNext === folder.top + 1;
      if (isSame && highestModseq !== undefined && String(highestModseq) === folder.modseq) return;
    }
    await this.#inFolder(path, known, async (opened) => {
      if (path !== "INBOX") await tellNew(this.client, this.#mirror, opened);
      await compareRead(this.client, this.#mirror.store, opened);
    });
  }

  /** Skips a folder that the server does not open; without the inbox, the session ends with the error. */
  async #inFolder(path: string, known: Map<string, Folder>, work: (folder: Folder) => Promise<void>): Promise<void> {
    const lock = await this.client.getMailboxLock(path).catch(async (error: ImapFlowError) => {
      if (!this.client.usable || path === "INBOX") throw error;
      known.delete(path);
      await log(`The folder ${path} cannot be opened: ${wordsOfServer(error)}`);
    });
    if (!lock) return;
    try {
      const folder = openedFolder(this.client, this.#mirror, known.get(path));
      known.set(path, folder);
      await work(folder);
    } finally {
      lock.release();
    }
  }
}

/** A signal; those sent while nobody waits are merged into one. */
class Bell {
  #isRung = false;
  #wake: (() => void) | undefined;

  constructor(ended: AbortSignal) {
    ended.addEventListener("abort", () => this.ring());
  }

  ring(): void {
    this.#isRung = true;
    this.#wake?.();
  }

  /** Waits for the signal, at most this many milliseconds. */
  async rung(longest?: number): Promise<void> {
    let late: NodeJS.Timeout | undefined;
    await new Promise<void>((resolve) => {
      this.#wake = resolve;
      if (this.#isRung) resolve();
      else if (longest !== undefined) late = setTimeout(resolve, longest);
    });
    clearTimeout(late);
    this.#isRung = false;
    this.#wake = undefined;
  }
}
