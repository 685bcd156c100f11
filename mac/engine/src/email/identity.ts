// The id of a mail, the same wherever it lies and however often it is read.

import { createHash } from "node:crypto";
import { oneLine } from "../lib/text.ts";
import type { Direction } from "./address.ts";

export interface Marks {
  account: string;
  direction: Direction;
  /** Empty where the mail has none. */
  messageId: string;
  from: string;
  /** In milliseconds. */
  date: number;
  subject: string;
  /** In bytes: tells mails without a Message-ID apart. */
  size: number;
}

export function providerMsgId({ account, direction, messageId, from, date, subject, size }: Marks): string {
  // Mail keeps whole seconds, and folds a subject's blanks as it likes.
  const seconds = Math.floor(date / 1000);
  const marks = [account, direction, messageId || `${size} bytes`, from, seconds, oneLine(subject, 998)];
  return createHash("sha256").update(JSON.stringify(marks)).digest("base64url").slice(0, 27);
}
