// Stays connected: runs one session after the other, with growing pauses between them.

import { setTimeout as sleep } from "node:timers/promises";
import { Backoff, Limited } from "./limits.ts";
import { Refused } from "./outbox.ts";
import { signOut, stopping, wordsOf } from "./run.ts";
import { emit, log } from "./wire.ts";

/** The provider refused the credentials, with this message: retrying would only lock the account. */
export class SignInRefused extends Refused {}

/** After a session of this length, in milliseconds, the pauses start over. */
const goodSession = 30_000;

/** Runs sessions until the process ends. A session connects, reports "open" itself, and lasts until its connection
 *  ends, possibly with an error: `Limited` says how long to wait, `SignInRefused` ends the engine. */
export async function stayConnected(session: () => Promise<void>): Promise<void> {
  const backoff = new Backoff();
  while (!stopping.aborted) {
    const began = Date.now();
    let pause = 0;
    try {
      await emit({ type: "status", state: "connecting" });
      await session();
      if (!stopping.aborted) await log("The connection to the provider ended.");
    } catch (error) {
      if (error instanceof SignInRefused) return signOut(error.message);
      if (error instanceof Limited) pause = error.pause;
      if (!stopping.aborted) await log(wordsOf(error));
    }
    if (stopping.aborted) return;
    await emit({ type: "status", state: "close" });
    if (Date.now() - began > goodSession) backoff.reset();
    await sleep(Math.max(pause, backoff.next()), undefined, { signal: stopping }).catch(() => {});
  }
}
