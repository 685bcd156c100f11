// Parses the conversations in content/*.chat; the README describes their format.

import { daysBefore, day, minute } from "./clock.ts";
import { digest, randomFrom, type Random } from "./random.ts";
import { routineLine } from "./routine.ts";
import { exchanges } from "./small-talk.ts";

export type MediaKind = "image" | "audio" | "video" | "document" | "sticker" | "gif";

export interface Media {
  kind: MediaKind;
  asset: string;
  /** "there": on disk; "remote": delivered on request; "lost": never delivered. */
  state: "there" | "remote" | "lost";
}

export interface Message {
  id: string;
  outgoing: boolean;
  /** In a group, the member who wrote it. */
  sender?: string;
  body: string;
  /** Milliseconds since the epoch; 0 for a live line, which gets the time when it is printed. */
  at: number;
  media?: Media;
  reaction?: string;
  status?: number;
}

/** Something that happens while the demonstration runs. */
export type Turn = { message: Message } | { name: string };

export interface Conversation {
  handle: string;
  name: string;
  language: string;
  isGroup: boolean;
  inAddressBook: boolean;
  /** Has no live lines. */
  isQuiet: boolean;
  picture: "none" | "portrait" | "mark";
  /** The description of a portrait, such as "bun grey fair glasses". */
  look: string;
  /** "announced" with the history, or only sent when "asked" for. */
  pictureComes: "announced" | "asked";
  history: Message[];
  unread: Message[];
  live: Turn[];
}

const kinds: Record<MediaKind, string> = {
  image: "Image",
  audio: "Audio",
  video: "Video",
  document: "Document",
  sticker: "Sticker",
  gif: "GIF",
};
const states: Record<string, Media["state"]> = { "": "there", "?": "remote", "!": "lost" };

/** The provider's id of a message; `key` identifies its position in the conversation. */
export function messageId(channel: string, handle: string, key: string): string {
  const name = digest(`${channel}/${handle}/${key}`, 20);
  if (channel === "whatsapp") return "3EB0" + name.toUpperCase();
  return channel === "email" ? `${name}@mail.tallervidal.example` : `tg-${name}`;
}

/** The conversations of a script, with times relative to `now`; throws on a line that it cannot parse. */
export function readScript(channel: string, script: string, now: number): Conversation[] {
  const reader = new Reader(channel, now);
  script.split("\n").forEach((line, index) => {
    try {
      reader.read(line);
    } catch (error) {
      throw new Error(`${channel}.chat:${index + 1}: ${(error as Error).message}`);
    }
  });
  for (const conversation of reader.conversations) conversation.history.sort((a, b) => a.at - b.at);
  return reader.conversations;
}

class Reader {
  readonly conversations: Conversation[] = [];
  private readonly channel: string;
  private readonly now: number;
  private random: Random;
  private section: "history" | "unread" | "live" = "history";
  private at = 0;
  private count = 0;
  private last: Message | undefined;

  constructor(channel: string, now: number) {
    this.channel = channel;
    this.now = now;
    this.random = randomFrom(channel);
  }

  read(line: string): void {
    const rest = line.slice(1).trim();
    switch (line.charAt(0)) {
      case "":
        return;
      case "#":
        return this.begin(rest);
      case "@":
        return this.moveTo(rest);
      case "<":
        return this.say(line);
      case ">":
        return this.say(line);
      case "|":
        this.previous().body += "\n" + rest;
        return;
      case "^":
        this.previous().reaction = rest;
        return;
      case "%":
        return this.fill(rest.split(" "));
    }
    if (line === "== unread" || line === "== live") this.section = line === "== live" ? "live" : "unread";
    else if (line.startsWith("= ")) this.previous().status = Number(rest);
    else if (line.startsWith("! name ")) this.current().live.push({ name: rest.slice("name ".length) });
    else throw new Error(`no such line: ${line}`);
  }

  private begin(header: string): void {
    const [handle, name, traits, look = ""] = header.split("|").map((part) => part.trim());
    const [language, ...flags] = traits.split(" ");
    this.random = randomFrom(`${this.channel}/${handle}`);
    this.section = "history";
    this.at = 0;
    this.count = 0;
    this.last = undefined;
    const portrait = flags.includes("photo") || flags.includes("photo?");
    this.conversations.push({
      handle,
      name,
      language,
      isGroup: handle.endsWith("@g.us"),
      inAddressBook: flags.includes("book"),
      isQuiet: flags.includes("quiet"),
      picture: portrait ? "portrait" : flags.includes("mark") ? "mark" : "none",
      look,
      pictureComes: flags.includes("photo?") ? "asked" : "announced",
      history: [],
      unread: [],
      live: [],
    });
  }

  private moveTo(when: string): void {
    const past = /^(\d+)d (\d\d):(\d\d)$/.exec(when);
    const recent = /^-(\d+)m$/.exec(when);
    if (past) this.at = daysBefore(this.now, Number(past[1]), Number(past[2]), Number(past[3]));
    else if (recent) this.at = this.now - Number(recent[1]) * minute;
    else throw new Error(`no such time: ${when}`);
  }

  private say(line: string): void {
    const conversation = this.current();
    const outgoing = line.startsWith(">");
    const written = outgoing ? /^> (.*)$/ : conversation.isGroup ? /^<([^:]+): (.*)$/ : /^< (.*)$/;
    const parts = written.exec(line);
    if (parts === null) throw new Error(`nobody says: ${line}`);
    this.add(outgoing, parts[parts.length - 1], parts.length > 2 ? parts[1] : undefined);
  }

  private add(outgoing: boolean, text: string, sender?: string): void {
    const conversation = this.current();
    const key = `${this.section}/${this.count++}`;
    const place = this.section === "history" ? key : `${this.now}/${key}`;
    const { media, body } = withMedia(text);
    const id = messageId(this.channel, conversation.handle, place);
    const message: Message = { id, outgoing, sender, body, at: this.section === "live" ? 0 : this.at, media };
    this.at += Math.round(this.random.between(0.4, 2.6) * minute);
    this.last = message;
    if (this.section === "live") conversation.live.push({ message });
    else if (this.section === "unread") conversation.unread.push(message);
    else conversation.history.push(message);
  }

  /** Lines that a table writes, spread over days: "exchanges 5 30d 23d", "rounds 12", "kiln-log 40", "orders 12". */
  private fill([what, number, from = "28d", until = "0d"]: string[]): void {
    const conversation = this.current();
    const talks = this.random.shuffled(exchanges(conversation.language));
    const gap = (parseInt(from, 10) - parseInt(until, 10)) / Number(number);
    for (let index = 0; index < Number(number); index++) {
      const age = parseInt(from, 10) - gap * index;
      if (what === "exchanges") {
        this.at = daysBefore(
          this.now,
          Math.max(Math.floor(age), 1),
          this.random.whole(8, 18),
          this.random.whole(0, 59),
        );
        for (const { outgoing, text } of talks[index % talks.length]) {
          this.add(outgoing, text);
        }
        continue;
      }
      const line = routineLine(what, this.section === "live" ? 100 + index : index, this.random);
      this.at =
        line.hour === undefined
          ? this.now - Math.round((age - gap * this.random.between(0, 0.6)) * day)
          : daysBefore(this.now, Math.max(Math.floor(age), 1), line.hour, this.random.whole(0, 9));
      this.add(false, line.text, line.sender);
    }
  }

  private current(): Conversation {
    const conversation = this.conversations.at(-1);
    if (conversation === undefined) throw new Error("no conversation yet");
    return conversation;
  }

  private previous(): Message {
    if (this.last === undefined) throw new Error("no message yet");
    return this.last;
  }
}

function withMedia(text: string): { media?: Media; body: string } {
  const parts = /^\[(\w+)([?!]?) ([\w-]+)\] ?(.*)$/.exec(text);
  if (parts === null) return { body: text };
  const kind = parts[1] as MediaKind;
  if (kinds[kind] === undefined) throw new Error(`no such medium: ${kind}`);
  const media: Media = { kind, asset: parts[3], state: states[parts[2]] };
  return { media, body: `[${kinds[kind]}] ${parts[4]}`.trim() };
}
