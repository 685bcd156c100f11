// The common part of the chat engines: connects a network's functions to the commands.

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
  /** The total size of the files of one message, in bytes; missing if the network carries none. */
  maxBytes?: number;
  deliver: Deliver;
  /** Connects, reports "open", and returns when the connection ends. */
  session(): Promise<void>;
  fetchFile(messageId: string, chatId: string, save: Save): Promise<FetchedFile>;
  /** Without an emoji, removes the reaction. */
  react?(messageId: string, chatId: string, emoji: string): Promise<void>;
  /** Looks for new messages now. */
  sync?(): void;
  close?(): void;
}

/** Runs the engine of a network. `join` and sessions may throw `SignInRefused`. */
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

/** A credential from the environment. Throws if it is missing. */
export function credential(variable: string, name: string): string {
  const value = process.env[variable]?.trim();
  if (!value) throw new SignInRefused(`The account has no ${name}.`);
  return value;
}
