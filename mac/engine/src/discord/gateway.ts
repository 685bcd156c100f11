// Discord's gateway, the connection that delivers all events.

import { setTimeout as sleep } from "node:timers/promises";
import { Client, Events, GatewayIntentBits, Options, SimpleShardingStrategy, type GatewayDispatchPayload } from "discord.js";
import { Backoff } from "../lib/limits.ts";
import { stopping } from "../lib/run.ts";
import { closeError, gatewayError, restOptions } from "./api.ts";

const { Guilds, GuildMessages, MessageContent, DirectMessages, GuildMessageReactions, DirectMessageReactions } = GatewayIntentBits;

export interface Heard {
  packet(packet: GatewayDispatchPayload): void;
  /** A new session started: events may have been missed. */
  ready(): void;
  /** The session was resumed without missing anything. */
  resumed(): void;
  lost(): void;
}

/** Only names are cached: messages and members would fill the memory. */
const kept = {
  MessageManager: 0, PresenceManager: 0, ReactionManager: 0, ReactionUserManager: 0, GuildEmojiManager: 0, GuildStickerManager: 0,
  VoiceStateManager: 0, ThreadMemberManager: 0, StageInstanceManager: 0, GuildScheduledEventManager: 0, GuildBanManager: 0,
  GuildInviteManager: 0, AutoModerationRuleManager: 0, ApplicationCommandManager: 0,
  GuildMemberManager: { maxSize: 10, keepOverLimit: (member: { id: string; client: Client }) => member.id === member.client.user?.id },
  UserManager: { maxSize: 100, keepOverLimit: (user: { id: string; client: Client }) => user.id === user.client.user?.id },
};

export class Gateway {
  readonly client: Client;
  readonly #backoff = new Backoff();
  #isLost = false;

  constructor(heard: Heard) {
    this.client = new Client({
      intents: [Guilds, GuildMessages, MessageContent, DirectMessages, GuildMessageReactions, DirectMessageReactions],
      makeCache: Options.cacheWithLimits(kept),
      rest: restOptions(),
      ws: {
        buildStrategy: (manager) => {
          // The library calls this before each attempt to connect; it would not pause between them otherwise.
          const { retrieveSessionInfo } = manager.options;
          manager.options.retrieveSessionInfo = async (shard) => {
            await this.#pause();
            return retrieveSessionInfo(shard);
          };
          return new SimpleShardingStrategy(manager);
        },
      },
    });
    const back = (tell: () => void) => () => {
      this.#backoff.reset();
      tell();
    };
    this.client.on(Events.Raw, (packet: GatewayDispatchPayload) => heard.packet(packet));
    this.client.on(Events.ShardReady, back(() => heard.ready()));
    this.client.on(Events.ShardResume, back(() => heard.resumed()));
    this.client.on(Events.ShardReconnecting, () => {
      this.#isLost = true;
      heard.lost();
    });
    this.client.on(Events.Error, () => {}); // a close follows
    this.client.on(Events.ShardError, () => {});
  }

  /** Connects, and stays connected until an error. */
  async stay(token: string): Promise<never> {
    const ended = new Promise<never>((_, reject) => {
      this.client.on(Events.ShardDisconnect, ({ code }) => reject(closeError(code)));
      this.client.on(Events.Invalidated, () => reject(new Error("Discord ended the session.")));
    });
    const login = this.client.login(token).catch((error: Error) => Promise.reject(gatewayError(error)));
    return Promise.race([ended, login.then(() => ended)]);
  }

  async #pause(): Promise<void> {
    if (!this.#isLost) return;
    this.#isLost = false;
    await sleep(this.#backoff.next(), undefined, { signal: stopping });
  }
}
