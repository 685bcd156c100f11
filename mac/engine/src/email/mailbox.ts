// Stays connected to the account's mailbox through any network trouble.

import type { DatabaseSync } from "node:sqlite";
import { stopping } from "../lib/run.ts";
import { readFact, writeFact } from "../lib/state.ts";
import { stayConnected } from "../lib/stay.ts";
import { emit } from "../lib/wire.ts";
import type { FindServers } from "./discovery.ts";
import type { Mirror } from "./mirror.ts";
import { Names } from "./names.ts";
import { Session } from "./session.ts";
import type { Settings } from "./settings.ts";
import { MailStore } from "./store.ts";

export class Mailbox {
  readonly store: MailStore;
  readonly names: Names;
  readonly #settings: Settings;
  readonly #servers: FindServers;
  readonly #db: DatabaseSync;
  readonly #mirror: Mirror;
  /** The current session; undefined while the mailbox is unreachable. */
  session: Session | undefined;

  constructor(account: string, settings: Settings, servers: FindServers, db: DatabaseSync) {
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

  /** Runs until the process ends. `opened` is called at the start of each session. */
  async stay(opened: (session: Session) => void): Promise<void> {
    await stayConnected(async () => {
      try {
        const { imap } = await this.#servers();
        this.session = await Session.open(this.#settings, imap, this.#mirror);
        if (stopping.aborted) return this.session.close(); // the code that stopped it found no session to close
        await emit({ type: "status", state: "open", user: this.#settings.address });
        opened(this.session);
        await this.session.run();
      } finally {
        this.session = undefined;
      }
    });
  }

  /** When the account was first connected: older mail is history. */
  #since(): number {
    const known = readFact(this.#db, "since");
    if (known) return Number(known);
    const now = Date.now();
    writeFact(this.#db, "since", String(now));
    return now;
  }
}
