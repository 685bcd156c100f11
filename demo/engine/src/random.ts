// Repeatable randomness: the same seed gives the same run.

import { createHash } from "node:crypto";

export interface Random {
  /** At least `low`, below `high`. */
  between(low: number, high: number): number;
  /** An integer from `low` to `high`, inclusive. */
  whole(low: number, high: number): number;
  pick<T>(values: readonly T[]): T;
  shuffled<T>(values: readonly T[]): T[];
}

/** mulberry32, seeded by a text. */
export function randomFrom(seed: string): Random {
  let state = createHash("sha256").update(seed).digest().readUInt32LE(0);
  const next = (): number => {
    state = (state + 0x6d2b79f5) | 0;
    let mixed = Math.imul(state ^ (state >>> 15), 1 | state);
    mixed = (mixed + Math.imul(mixed ^ (mixed >>> 7), 61 | mixed)) ^ mixed;
    return ((mixed ^ (mixed >>> 14)) >>> 0) / 4294967296;
  };
  const whole = (low: number, high: number): number => low + Math.floor(next() * (high - low + 1));
  return {
    between: (low, high) => low + next() * (high - low),
    whole,
    pick: (values) => values[whole(0, values.length - 1)],
    shuffled: (values) => {
      const mixed = [...values];
      for (let last = mixed.length - 1; last > 0; last--) {
        const other = whole(0, last);
        [mixed[last], mixed[other]] = [mixed[other], mixed[last]];
      }
      return mixed;
    },
  };
}

/** A short, stable name for a text. */
export function digest(text: string, length: number): string {
  return createHash("sha256").update(text).digest("hex").slice(0, length);
}
