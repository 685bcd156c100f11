// Channels and names in Slack; each member and channel is queried once.

import { groupId } from "../lib/events.ts";
import type { Person } from "../lib/people.ts";
import { wordsOf } from "../lib/run.ts";
import { log } from "../lib/wire.ts";
import type { Slack } from "./api.ts";

interface Channel {
  id: string;
  name?: string;
  is_im?: boolean;
  is_mpim?: boolean;
  /** The other side of a direct chat. */
  user?: string;
}

interface Member {
  name?: string;
  real_name?: string;
  profile?: { display_name?: string; real_name?: string; image_192?: string; avatar_hash?: string };
}

const kinds = "public_channel,private_channel,mpim,im";

export class Chats {
  readonly #slack: Slack;
  readonly #channels = new Map<string, Channel>();
  readonly #members = new Map<string, Promise<Member | undefined>>();
  #isToldMissing = false;

  constructor(slack: Slack) {
    this.#slack = slack;
  }

  /** All chats that the app is in. */
  async list(): Promise<string[]> {
    const ids: string[] = [];
    for await (const { channels } of this.#slack.pages<{ channels: Channel[] }>("users.conversations", { types: kinds, limit: 200 })) {
      for (const channel of channels) this.#channels.set(channel.id, channel);
      ids.push(...channels.map(({ id }) => id));
    }
    return ids;
  }

  async title(id: string): Promise<string | undefined> {
    const { name, is_mpim: isGroup, user } = await this.#channel(id);
    if (user) return this.name(user);
    if (isGroup && name) return name.replace(/^mpdm-|-\d+$/g, "").split("--").join(", ");
    return name && `#${name}`;
  }

  /** A member's name, or the id if the name is not accessible. */
  async name(user: string): Promise<string> {
    return nameOf(await this.#member(user)) ?? user;
  }

  /** The other side of a direct chat. */
  async person(id: string): Promise<Person> {
    const { user } = await this.#channel(id);
    const member = user ? await this.#member(user) : undefined;
    const { image_192: image, avatar_hash: mark } = member?.profile ?? {};
    const picture = image && mark ? { mark, open: () => this.#slack.openFile(image) } : undefined;
    return { name: nameOf(member), picture };
  }

  async #channel(id: string): Promise<Channel> {
    const known = this.#channels.get(id);
    if (known) return known;
    const asked = await this.#slack.call<{ channel: Channel }>("conversations.info", { channel: id }).catch(this.#missing);
    const channel = asked?.channel ?? { id };
    this.#channels.set(id, channel);
    return channel;
  }

  #member(user: string): Promise<Member | undefined> {
    const known = this.#members.get(user);
    if (known) return known;
    const asked = this.#slack.call<{ user: Member }>("users.info", { user }).then((answer) => answer.user, this.#missing);
    this.#members.set(user, asked);
    return asked;
  }

  readonly #missing = async (error: unknown): Promise<undefined> => {
    if (!this.#isToldMissing) await log(`Some names stay unknown: ${wordsOf(error)}`);
    this.#isToldMissing = true;
  };
}

function nameOf(member: Member | undefined): string | undefined {
  const { display_name: shown, real_name: real } = member?.profile ?? {};
  return shown || real || member?.real_name || member?.name;
}

export function chatId(channel: string): string {
  return channel.startsWith("D") ? channel : groupId(channel);
}
