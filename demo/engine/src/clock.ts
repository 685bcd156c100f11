// The time in the demo.

export const minute = 60_000;
export const day = 24 * 60 * minute;

export interface Clock {
  now(): number;
  /** Runs `then` after `milliseconds`; at once if the clock is frozen. */
  after(milliseconds: number, then: () => void): void;
  readonly still: boolean;
}

/**
 * CORVANE_DEMO_NOW fixes the hour at the start; CORVANE_DEMO_STILL=1 keeps it there and waits for nothing;
 * CORVANE_DEMO_PACE stretches every wait, so 0.1 is ten times as fast.
 */
export function clockFrom(environment: NodeJS.ProcessEnv): Clock {
  const still = environment.CORVANE_DEMO_STILL === "1";
  const fixed = Number(environment.CORVANE_DEMO_NOW);
  const start = Number.isSafeInteger(fixed) && fixed > 0 ? fixed : Date.now();
  const named = Number(environment.CORVANE_DEMO_PACE);
  const pace = named > 0 ? named : 1;
  const begun = performance.now();
  return {
    still,
    now: () => (still ? start : start + Math.round(performance.now() - begun)),
    after: (milliseconds, then) => {
      if (still) then();
      else setTimeout(then, milliseconds * pace);
    },
  };
}

/** That hour of the day, this many days before `now`, in local time. */
export function daysBefore(now: number, days: number, hour: number, minutes: number): number {
  const date = new Date(now);
  date.setDate(date.getDate() - days);
  date.setHours(hour, minutes, 0, 0);
  return date.getTime();
}
