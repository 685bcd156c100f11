// Listens to Slack's socket, reports what was missed, and offers the app's functions.

import type { DatabaseSync } from "node:sqlite";
import { SocketModeClient } from "@slack/socket-mode";
import { credential, type Network } from "../lib/channel.ts";
import { providerChat } from "../lib/events.ts";
import { fileOf } from "../lib/files.ts";
import { History } from "../lib/history.ts";
import { Refused } from "../lib/outbox.ts";
import { People } from "../lib/people.ts";
import { wordsOf, type Place } from "../lib/run.ts";
import { emit, log } from "../lib/wire.ts";
import { clientOptions, judged, Slack } from "./api.ts";
import { Chats } from "./chats.ts";
import { react } from "./reactions.ts";
import { mostFileBytes, slackDeliver } from "./sending.ts";
import { fileMark, filesOf, messageId, placeOf, rowsFrom, type Self, type SlackMessage } from "./teller.ts";
import { emojiOf } from "./text.ts";

/** The used part of a socket event. */
interface SlackEvent extends SlackMessage {
  type: string;
  channel?: string;
  /** For a changed message. */
  message?: SlackMessage;
  reaction?: string;
  item?: { type: string; channel: string; ts: string };
}

const pageSize = 100;

export function joinSlack(place: Place, db: DatabaseSync): Network {
  const appToken = credential("SLACK_APP_TOKEN", "app token");
  const slack = new Slack(credential("SLACK_BOT_TOKEN", "bot token"));
  const chats = new Chats(slack);
  const people = new People(db, place);
  let known: Promise<Self> | undefined;
  const self = (): Promise<Self> => (known ??= slack.call<Self>("auth.test").catch((error) => ((known = undefined), Promise.reject(error))));

  const tell = async (channel: string, message: SlackMessage, isHistorical: boolean): Promise<void> => {
    const rows = await rowsFrom(channel, message, chats, await self());
    for (const row of rows) await emit(isHistorical ? { ...row, historical: true } : row);
    if (rows.length > 0 && channel.startsWith("D")) void people.meet(channel, () => chats.person(channel));
  };
  const history = new History<SlackMessage>(db, {
    idOf: ({ ts }) => ts,
    page: async (channel, before) => {
      const words = { channel, limit: pageSize, latest: before };
      return (await slack.call<{ messages: SlackMessage[] }>("conversations.history", words)).messages;
    },
    tell,
  });

  const hear = async (event: SlackEvent): Promise<void> => {
    const { type, channel, subtype, item } = event;
    if (type === "message" && channel && subtype === "message_changed" && event.message) await tell(channel, event.message, true);
    else if (type === "message" && channel && subtype !== "message_deleted") await history.live(channel, event);
    else if (type.startsWith("reaction_") && item?.type === "message") {
      const emoji = type === "reaction_added" ? emojiOf(event.reaction ?? "") : "";
      await emit({ type: "reaction", targetProviderMsgId: messageId(item.channel, item.ts), emoji });
    }
  };

  return {
    maxBytes: mostFileBytes,
    deliver: slackDeliver(slack, chats, self, place.mediaDir),
    react: (id, _, emoji) => react(slack, placeOf(fileOf(id).message), emoji, self),
    fetchFile: async (id, chat, save) => {
      const { message, index } = fileOf(id);
      const file = filesOf(await messageAt(slack, providerChat(chat), placeOf(message).ts))[index];
      const address = file?.url_private_download ?? file?.url_private;
      if (!address) throw new Error("Slack does not have this file any more.");
      const { name, mediaType } = fileMark(file);
      return { mediaType, mediaPath: await save(name, await slack.openFile(address)) };
    },
    session: async () => {
      const { user, team } = await self();
      const socket = new SocketModeClient({ appToken, autoReconnectEnabled: false, clientOptions: clientOptions(), logLevel: clientOptions().logLevel });
      const ended = new AbortController();
      let heard = Promise.resolve();
      socket.on("slack_event", ({ ack, type, body }: { ack(): Promise<void>; type: string; body: { event: SlackEvent } }) => {
        ack().catch(() => {});
        if (type === "events_api") heard = heard.then(() => hear(body.event)).catch((error) => log(wordsOf(error)));
      });
      await socket.start().catch((error) => {
        throw error ? judged(error, "app token") : new Error("Slack closed the connection.");
      });
      const disconnected = new Promise<void>((resolve) => socket.once("disconnected", () => resolve()));
      await emit({ type: "status", state: "open", user: [user, team].filter(Boolean).join(" in ") });
      const told = tellHistory(history, chats, ended.signal);
      try {
        await Promise.race([disconnected, told.then(() => disconnected)]);
      } finally {
        ended.abort();
        socket.disconnect().catch(() => {}); // it may be waiting for an end that has already come
        await told.catch(() => {});
        await heard;
      }
    },
  };
}

async function tellHistory(history: History<SlackMessage>, chats: Chats, ended: AbortSignal): Promise<void> {
  const listed = await chats.list().catch(async (error) => {
    if (!(error instanceof Refused)) throw error;
    await log(`What was written earlier stays unknown: ${error.message}`);
    return [];
  });
  await history.tellAll([...listed, ...history.known()], ended);
}

/** A message that was reported before, possibly in a thread. */
async function messageAt(slack: Slack, channel: string, ts: string): Promise<SlackMessage> {
  const words = { channel, latest: ts, oldest: ts, inclusive: true, limit: 1 };
  const { messages } = await slack.call<{ messages: SlackMessage[] }>("conversations.history", words);
  const found = messages.find((message) => message.ts === ts);
  if (found) return found;
  const replies = await slack.call<{ messages: SlackMessage[] }>("conversations.replies", { ...words, ts });
  return replies.messages.find((message) => message.ts === ts) ?? { ts };
}
