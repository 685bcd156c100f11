// Listens to Discord's gateway, reports what was missed, and offers the bot's functions.

import type { DatabaseSync } from "node:sqlite";
import { Routes, type APIMessage, type GatewayDispatchPayload } from "discord.js";
import { credential, type Network } from "../lib/channel.ts";
import { providerChat } from "../lib/events.ts";
import { fileOf } from "../lib/files.ts";
import { History } from "../lib/history.ts";
import { People } from "../lib/people.ts";
import { wordsOf, type Place } from "../lib/run.ts";
import { openFile } from "../lib/web.ts";
import { emit, log } from "../lib/wire.ts";
import { Discord } from "./api.ts";
import { Chats, nameOf } from "./chats.ts";
import { Gateway } from "./gateway.ts";
import { discordDeliver, mostFileBytes, react } from "./sending.ts";
import { emojiOf, fileMark, rowsFrom } from "./teller.ts";

const pageSize = 100;

export function joinDiscord(place: Place, db: DatabaseSync): Network {
  const token = credential("DISCORD_BOT_TOKEN", "bot token");
  const discord = new Discord(token);
  let [self, name] = ["", ""];
  const chats = new Chats(discord);
  const people = new People(db, place);

  const tell = async (message: APIMessage, isHistorical: boolean): Promise<void> => {
    const rows = await rowsFrom(message, chats, self);
    for (const row of rows) await emit(isHistorical ? { ...row, historical: true } : row);
    const { channel_id: channel } = message;
    if (rows.length > 0 && (await chats.place(channel)).user) void people.meet(channel, () => chats.person(channel));
  };
  const history = new History<APIMessage>(db, {
    idOf: ({ id }) => id,
    page: (channel, before) => {
      const query = new URLSearchParams({ limit: String(pageSize), ...(before && { before }) });
      return discord.call<APIMessage[]>("get", Routes.channelMessages(channel), { query });
    },
    tell: (_, message, isHistorical) => tell(message, isHistorical),
  });

  const hear = async ({ t: type, d: data }: GatewayDispatchPayload): Promise<void> => {
    if (type === "READY") [self, name] = [data.user.id, nameOf(data.user)];
    else if (type === "MESSAGE_CREATE") await history.live(data.channel_id, data as APIMessage);
    else if (type === "MESSAGE_UPDATE" && "content" in data && data.author) await tell(data as APIMessage, true);
    else if (type === "MESSAGE_REACTION_ADD" || type === "MESSAGE_REACTION_REMOVE") {
      const emoji = type === "MESSAGE_REACTION_ADD" ? emojiOf(data.emoji) : "";
      await emit({ type: "reaction", targetProviderMsgId: data.message_id, emoji });
    }
  };

  const session = async (): Promise<void> => {
    let listening = new AbortController();
    let heard = Promise.resolve();
    let fail = (_: unknown): void => {};
    const failed = new Promise<never>((_, reject) => (fail = reject));
    const open = (): Promise<void> => emit({ type: "status", state: "open", user: name });
    const gateway = new Gateway({
      packet: (packet) => {
        chats.note(packet);
        heard = heard.then(() => hear(packet)).catch((error) => log(wordsOf(error)));
      },
      ready: () => {
        listening.abort();
        const { signal } = (listening = new AbortController());
        heard = heard.then(open).then(() => {
          history.tellAll([...chats.texts(), ...history.known()], signal).catch((error) => signal.aborted || fail(error));
        });
      },
      resumed: () => void open(),
      lost: () => void emit({ type: "status", state: "connecting" }),
    });
    try {
      await Promise.race([gateway.stay(token), failed]);
    } finally {
      listening.abort();
      await gateway.client.destroy().catch(() => {});
      await heard;
    }
  };

  return {
    maxBytes: mostFileBytes,
    deliver: discordDeliver(discord, chats, place.mediaDir),
    session,
    react: (id, chat, emoji) => react(discord, providerChat(chat), fileOf(id).message, emoji),
    fetchFile: async (id, chat, save) => {
      const { message, index } = fileOf(id);
      const { attachments } = await discord.call<APIMessage>("get", Routes.channelMessage(providerChat(chat), message));
      const file = attachments[index];
      if (!file) throw new Error("Discord does not have this file any more.");
      const { name, mediaType } = fileMark(file);
      return { mediaType, mediaPath: await save(name, await openFile(file.url, "Discord")) };
    },
  };
}
