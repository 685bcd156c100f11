// What the engines of chat networks have in common: they wire a network's own parts to the commands.

import type { DatabaseSync } from "node:sqlite";
import { peopleTables } from "./people.ts";
import { SendJournal } from "./journal.ts";
import { reportDownload, type FetchedFile, type Save } from "./files.ts";
import { Outbox, type Deliver } from "./outbox.ts";
import { runEngine, signOut, wordsOf, type Place } from "./run.ts";
import { openState, type Tables } from "./state.ts";
import { SignInRefused, stayConnected } from "./stay.ts";
import { emit, log, textOf, type Command } from "./wire.ts";

export interface Network {
  /** What the files of one message may weigh together, in bytes; missing where it carries none. */
  maxBytes?: number;
  deliver: Deliver;
  /** Connects, reports "open", and lasts until the connection ends. */
  session(): Promise<void>;
  fetchFile(messageId: string, chatId: string, save: Save): Promise<FetchedFile>;
  /** No emoji takes the reaction back. */
  react?(messageId: string, chatId: string, emoji: string): Promise<void>;
  /** Looks for news now. */
  sync?(): void;
  close?(): void;
}

/** Runs the engine of a network. `join` may throw `SignInRefused`, and so may a session. */
export async function runChannel(tables: Tables, join: (place: Place, db: DatabaseSync) => Network): Promise<void> {
  await runEngine(async (place) => {
    const db = openState(place.stateDir, peopleTables, tables);
    let network: Network;
    try {
      network = join(place, db);
    } catch (error) {
      if (!(error instanceof SignInRefused)) throw error;
      await signOut(error.message);
      return { handle: () => {}, close: async () => {} };
    }
    const outbox = new Outbox(new SendJournal(db), network.deliver);
    const files = network.maxBytes !== undefined;
    await emit({ type: "features", files, maxBytes: network.maxBytes, subject: false });
    await outbox.resume();
    void stayConnected(() => network.session());
    return {
      handle: (command) => handle(command, network, outbox, place.mediaDir),
      close: async () => {
        await outbox.idle();
        network.close?.();
        db.close();
      },
    };
  });
}

function handle(command: Command, network: Network, outbox: Outbox, mediaDir: string): void {
  const [chatId, messageId] = [textOf(command, "chatId"), textOf(command, "messageId")];
  const handlers: Record<string, () => void> = {
    send: () => outbox.send(command),
    sendAudio: () => {
      if (network.maxBytes === undefined) void log("This channel carries no voice notes.");
      else outbox.send({ chatId, text: "", files: [{ path: textOf(command, "path"), name: "Voice note.m4a" }] });
    },
    downloadMedia: () =>
      void reportDownload(mediaDir, messageId, (save) => network.fetchFile(messageId, chatId, save)),
    react: () => {
      const reacted = network.react?.(messageId, chatId, textOf(command, "emoji"));
      reacted?.catch((error) => log(`The reaction was not taken: ${wordsOf(error)}`));
    },
    sync: () => network.sync?.(),
  };
  handlers[textOf(command, "cmd")]?.();
}

/** A credential from the environment. Throws where there is none. */
export function credential(variable: string, name: string): string {
  const value = process.env[variable]?.trim();
  if (!value) throw new SignInRefused(`The account has no ${name}.`);
  return value;
}
