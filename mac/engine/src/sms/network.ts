// Polls for new messages, since Twilio cannot reach this machine, and sends messages.

import type { DatabaseSync } from "node:sqlite";
import { setTimeout as sleep } from "node:timers/promises";
import type { Network } from "../lib/channel.ts";
import { fileOf } from "../lib/files.ts";
import { Refused, type Deliver } from "../lib/outbox.ts";
import { People } from "../lib/people.ts";
import { stopping, type Place } from "../lib/run.ts";
import { post } from "../lib/web.ts";
import { emit } from "../lib/wire.ts";
import { plainNumber, Twilio } from "./api.ts";
import { fileMark, SmsMirror } from "./mirror.ts";

const pollEvery = 10_000;
const longestText = 1600;

export function joinTwilio(place: Place, db: DatabaseSync): Network {
  const twilio = new Twilio();
  const mirror = new SmsMirror(twilio, db, new People(db, place));
  let waiting = new AbortController();
  const sync = (): void => waiting.abort();

  const deliver: Deliver = async (sending, begin) => {
    const { text, files, chatId } = sending;
    if (files.length > 0) throw new Refused("Files cannot be sent by SMS.");
    if (text.length > longestText) throw new Refused(`An SMS takes ${longestText} characters, and this text has ${text.length}.`);
    const to = plainNumber(chatId);
    if (/^[1-9]\d{6,}$/.test(to) || /^0/.test(to)) throw new Refused("The number needs its country code, such as +34 600 000 000.");
    const sms = await post(sending, begin, () => twilio.send(to, text));
    return { messages: await mirror.rows(sms, false), after: sync };
  };

  return {
    deliver,
    sync,
    fetchFile: async (id, _, save) => {
      const { message, index } = fileOf(id);
      const media = (await twilio.media(message))[index];
      if (!media) throw new Error("Twilio does not have this file any more.");
      const { name, mediaType } = fileMark(media, index);
      return { mediaType, mediaPath: await save(name, await twilio.openMedia(message, media)) };
    },
    session: async () => {
      await twilio.signIn();
      await emit({ type: "status", state: "open", user: twilio.number });
      while (!stopping.aborted) {
        waiting = new AbortController();
        for (const side of ["To", "From"] as const) await mirror.look(side);
        await sleep(pollEvery, undefined, { signal: AbortSignal.any([stopping, waiting.signal]) }).catch(() => {});
      }
    },
  };
}
