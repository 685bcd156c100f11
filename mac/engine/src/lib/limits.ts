// Pauses requested by a provider, and pauses between attempts.

import { setTimeout as sleep } from "node:timers/promises";

/** The longest time that a message waits for its provider, all pauses together. */
export const longestPause = 110_000;

/** The provider demands a pause. */
export class Limited extends Error {
  readonly pause: number;

  /** `pause` in milliseconds. */
  constructor(pause: number, words: string) {
    super(words);
    this.pause = pause;
  }
}

/** Repeats `attempt` after each pause demanded by `Limited`. Throws if they add up to more than `budget`; the error
 *  says how long to wait. */
export async function withinLimits<T>(
  attempt: () => Promise<T>,
  { budget = longestPause, signal, progress = () => {} }: { budget?: number; signal: AbortSignal; progress?: () => void },
): Promise<T> {
  for (let left = budget; ; ) {
    try {
      return await attempt();
    } catch (error) {
      if (!(error instanceof Limited)) throw error;
      left -= error.pause;
      if (left < 0) throw new Error(`${error.message} Try again in ${inWords(error.pause)}.`, { cause: error });
      progress();
      await sleep(error.pause, undefined, { signal });
    }
  }
}

function inWords(pause: number): string {
  const seconds = Math.ceil(pause / 1000);
  return seconds <= 120 ? `${seconds} seconds` : `${Math.ceil(seconds / 60)} minutes`;
}

/** Growing pauses between attempts to connect, with some jitter so that accounts do not retry in lockstep. */
export class Backoff {
  readonly #longest: number;
  #tries = 0;

  /** In milliseconds. */
  constructor(longest = 120_000) {
    this.#longest = longest;
  }

  next(): number {
    const pause = Math.min(1000 * 2 ** this.#tries++, this.#longest);
    return pause * (0.75 + Math.random() / 2);
  }

  reset(): void {
    this.#tries = 0;
  }
}
