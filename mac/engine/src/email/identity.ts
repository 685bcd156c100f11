// The id of a mail, which does not depend on its folder or on how it is read.

import { createHash } from "node:crypto";
import { oneLine } from "../lib/text.ts";
import type { Direction } from "./address.ts";

export interface Marks {
  account: string;
  direction: Direction;
  /** Empty if the mail has none. */
  messageId: string;
  from: string;
  /** In milliseconds. */
  date: number;
  subject: string;
  /** In bytes: distinguishes mails without a Message-ID. */
  size: number;
}

export function providerMsgId({ account, direction, messageId, from, date, subject, size }: Marks): string {
  // Mail stores whole seconds, and folds the spaces of a subject arbitrarily.
  const seconds = Math.floor(date / 1000);
  const marks = [account, direction, messageId || `${size} bytes`, from, seconds, oneLine(subject, 998)];
  return createHash("sha256").update(JSON.stringify(marks)).digest("base64url").slice(0, 27);
}
