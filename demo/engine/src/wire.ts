// The two streams of a demo engine, based on those of the real ones. Output is not awaited; `drained` is.

import type { EngineEvent } from "../../../mac/engine/src/lib/events.ts";
import { closeOutput, emit as printNumbered, readCommands, whenStored, type Command } from "../../../mac/engine/src/lib/wire.ts";

export type { MediaType, MessageEvent, SendName } from "../../../mac/engine/src/lib/events.ts";
export { drained, textOf, type Command } from "../../../mac/engine/src/lib/wire.ts";

/** Prints one line; `stored` runs once the desktop has it on disk. */
export function emit(event: EngineEvent, stored?: () => void): void {
  void printNumbered(event);
  if (stored) whenStored(stored);
}

/** Hands over every command. Ends the process with its input, once what it was saying then is `said`; a signal ends it at
 *  once. */
export function listen(handle: (command: Command) => void, said: () => Promise<void>): void {
  let isLeaving = false;
  const leave = (): void => {
    if (isLeaving) return;
    isLeaving = true;
    void closeOutput().then(() => process.exit(0));
  };
  process.stdout.on("error", () => process.exit(0));
  process.on("SIGTERM", leave);
  void readCommands(handle).then(said).then(leave);
}
