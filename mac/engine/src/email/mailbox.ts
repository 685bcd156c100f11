// Stays connected to the account's mailbox, through everything that a network does.

import { setTimeout as sleep } from "node:timers/promises";
import type { DatabaseSync } from "node:sqlite";
import { Backoff } from "../lib/limits.ts";
import { signOut, stopping, wordsOf } from "../lib/run.ts";
import { readFact, writeFact } from "../lib/state.ts";
import { emit, log } from "../lib/wire.ts";
import { SignInRefused } from "./client.ts";
import type { Mirror } from "./mirror.ts";
import { Names } from "./names.ts";
import { Session } from "./session.ts";
import type { Servers, Settings } from "./settings.ts";
import { MailStore } from "./store.ts";

/** A session that lasted so long was a good one. */
const goodSession = 30_000;

export class Mailbox {
  readonly store: MailStore;
  readonly names: Names;
  readonly #settings: Settings;
  readonly #servers: Servers;
  readonly #db: DatabaseSync;
  readonly #mirror: Mirror;
  /** The present session; nothing while the mailbox is out of reach. */
  session: Session | undefined;

  constructor(account: string, settings: Settings, servers: Servers, db: DatabaseSync) {
    this.#settings = settings;
    this.#servers = servers;
    this.#db = db;
    this.store = new MailStore(db);
    this.names = new Names(this.store);
    this.#mirror = {
      account: { name: account, own: settings.own },
      store: this.store,
      names: this.names,
      sent: undefined,
      since: this.#since(),
      troubles: new Map(),
    };
  }

  /** Until the process ends. `opened` is called at the start of each session. */
  async stay(opened: (session: Session) => void): Promise<void> {
    const backoff = new Backoff();
    while (!stopping.aborted) {
      const began = Date.now();
      try {
        await emit({ type: "status", state: "connecting" });
        this.session = await Session.open(this.#settings, this.#servers.imap, this.#mirror);
        await emit({ type: "status", state: "open", user: this.#settings.address });
        opened(this.session);
        await this.session.run();
        if (!stopping.aborted) await log("The connection to the mail server ended.");
      } catch (error) {
        if (error instanceof SignInRefused) return signOut(error.message);
        if (!stopping.aborted) await log(wordsOf(error));
      }
      this.session = undefined;
      if (stopping.aborted) return;
      await emit({ type: "status", state: "close" });
      if (Date.now() - began > goodSession) backoff.reset();
      await sleep(backoff.next(), undefined, { signal: stopping }).catch(() => {});
    }
  }

  /** When the account was first connected: what is older is history. */
  #since(): number {
    const known = readFact(this.#db, "since");
    if (known) return Number(known);
    const now = Date.now();
    writeFact(this.#db, "since", String(now));
    return now;
  }
}
