// Channels and names in Discord.

import { ChannelType, Routes, type APIChannel, type APIUser, type GatewayDispatchPayload, type GatewayGuildCreateDispatchData } from "discord.js";
import { groupId } from "../lib/events.ts";
import type { Person } from "../lib/people.ts";
import { openFile } from "../lib/web.ts";
import { addresses, type Discord } from "./api.ts";

interface Place {
  title?: string;
  /** The other side of a direct chat. */
  user?: APIUser;
}

/** Channels that hold a conversation; those of forums are in threads. */
const written = new Set<ChannelType>([ChannelType.GuildText, ChannelType.GuildAnnouncement]);

export class Chats {
  readonly #discord: Discord;
  readonly #places = new Map<string, Place>();
  readonly #guilds = new Map<string, string>();
  readonly #texts = new Map<string, string>();

  constructor(discord: Discord) {
    this.#discord = discord;
  }

  /** Updates servers and channels from a packet. */
  note({ t: type, d: data }: GatewayDispatchPayload): void {
    if (type === "GUILD_CREATE" && "channels" in data) this.#noteGuild(data as GatewayGuildCreateDispatchData);
    else if (type === "GUILD_DELETE") for (const [id, guild] of this.#texts) if (guild === data.id) this.#texts.delete(id);
    if (type === "CHANNEL_CREATE" || type === "CHANNEL_UPDATE" || type === "THREAD_CREATE") this.#note(data as APIChannel);
    if (type === "CHANNEL_DELETE") this.#texts.delete(data.id);
  }

  /** Every channel with a conversation on the bot's servers. */
  texts(): string[] {
    return [...this.#texts.keys()];
  }

  async place(id: string): Promise<Place> {
    return this.#places.get(id) ?? this.#note(await this.#discord.call<APIChannel>("get", Routes.channel(id)));
  }

  async chatId(id: string): Promise<string> {
    return (await this.place(id)).user ? id : groupId(id);
  }

  /** The other side of a direct chat. */
  async person(id: string): Promise<Person> {
    const { user } = await this.place(id);
    if (!user) return {};
    const { avatar } = user;
    const address = `${addresses().cdn}/avatars/${user.id}/${avatar}.png?size=256`;
    return { name: nameOf(user), picture: avatar ? { mark: avatar, open: () => openFile(address, "Discord") } : undefined };
  }

  /** The channel to write to; opens one if only the person is known. */
  async channelOf(target: string): Promise<string> {
    if (this.#places.has(target)) return target;
    const channel = await this.#discord.call<APIChannel>("get", Routes.channel(target)).catch(() => undefined);
    const opened = channel ?? (await this.#discord.call<APIChannel>("post", Routes.userChannels(), { body: { recipient_id: target } }));
    this.#note(opened);
    return opened.id;
  }

  #noteGuild({ id, name, channels, threads }: GatewayGuildCreateDispatchData): void {
    this.#guilds.set(id, name);
    for (const channel of [...channels, ...threads]) this.#note({ ...channel, guild_id: id } as APIChannel);
  }

  #note(channel: APIChannel): Place {
    const guild = "guild_id" in channel ? channel.guild_id : undefined;
    const server = this.#guilds.get(guild ?? "");
    const user = channel.type === ChannelType.DM ? channel.recipients?.[0] : undefined;
    const place = { user, title: user ? nameOf(user) : `#${channel.name}${server ? ` (${server})` : ""}` };
    this.#places.set(channel.id, place);
    if (guild && written.has(channel.type)) this.#texts.set(channel.id, guild);
    return place;
  }
}

export function nameOf({ global_name: shown, username }: Pick<APIUser, "global_name" | "username">): string {
  return shown || username;
}
