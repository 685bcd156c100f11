// A demo engine: it pairs, reports its history, and keeps talking.

import { clockFrom, minute, type Clock } from "./clock.ts";
import { Commands } from "./commands.ts";
import { contentOf } from "./content.ts";
import { liveTurns } from "./live.ts";
import { isPaired, recall, remember, rememberPairing, type Memory } from "./memory.ts";
import { Library } from "./media/library.ts";
import { randomFrom, type Random } from "./random.ts";
import { writeRecords } from "./records.ts";
import { readScript, type Conversation, type Message, type Turn } from "./script.ts";
import { drained, emit, listen, type MediaType, type MessageEvent } from "./wire.ts";

export interface Profile {
  channel: "whatsapp" | "email" | "telegram";
  slug: string;
  /** The signed-in identity. */
  user: string;
  needsPairing: boolean;
  /** Minimum and maximum seconds between two live lines. */
  beat: readonly [number, number];
  /** The number of live lines before it stops. */
  liveTotal: number;
}

/** How many messages per conversation come with the history; older ones follow at a fixed rate per second. */
const atOnce = 100;
const olderPerSecond = 12;

/** Runs until its input ends. */
export function runEngine(profile: Profile): void {
  const engine = new Engine(profile, clockFrom(process.env));
  listen(
    (command) => void engine.told.then(() => engine.commands.handle(command)),
    () => engine.told,
  );
  engine.connect();
}

export class Engine {
  readonly profile: Profile;
  readonly clock: Clock;
  readonly memory: Memory;
  readonly library: Library;
  readonly conversations: Conversation[];
  readonly random: Random;
  readonly commands: Commands;
  isOpen = false;
  /** Resolves when the history is printed; commands wait for it. */
  told: Promise<void> = Promise.resolve();

  constructor(profile: Profile, clock: Clock) {
    this.profile = profile;
    this.clock = clock;
    this.memory = recall(profile.slug, clock.now());
    this.library = new Library(profile.slug);
    this.conversations = readScript(profile.channel, contentOf(`${profile.channel}.chat`), this.memory.since);
    this.random = randomFrom(`engine/${profile.channel}/${this.memory.said}/${this.memory.sent}`);
    this.commands = new Commands(this);
  }

  connect(): void {
    emit({ type: "status", state: "connecting" });
    if (this.profile.needsPairing && !isPaired(this.profile.slug)) this.pair();
    else this.open();
  }

  /** Shows two codes, as with a slow phone, and then counts as scanned. */
  private pair(): void {
    const seconds = pairingSeconds(process.env.CORVANE_DEMO_PAIRING_SECONDS, this.clock.still);
    const showCode = (): void => emit({ type: "qr", qr: pairingCode(this.random) });
    showCode();
    if (seconds >= 4) setTimeout(showCode, seconds * 500);
    const scanned = (): void => {
      rememberPairing(this.profile.slug);
      this.open();
    };
    if (seconds === 0) return scanned();
    setTimeout(scanned, seconds * 1000);
    setTimeout(() => this.prepareMedia(), 50);
  }

  /** Draws the pictures while the code is shown, one per turn of the event loop. */
  private prepareMedia(): void {
    const wanted = this.conversations.flatMap((conversation) => [
      ...conversation.history.flatMap(({ media }) =>
        media?.state === "there" ? [() => this.library.file(media)] : [],
      ),
      ...(conversation.picture === "none" ? [] : [() => this.library.avatar(conversation)]),
    ]);
    const next = (): void => {
      if (this.isOpen) return;
      wanted.shift()?.();
      if (wanted.length > 0) setImmediate(next);
    };
    next();
  }

  private open(): void {
    this.told = this.begin();
  }

  private async begin(): Promise<void> {
    this.isOpen = true;
    emit({ type: "status", state: "open", user: this.profile.user });
    const unread = this.conversations
      .flatMap((conversation) => conversation.unread.map((message) => ({ conversation, message })))
      .sort((a, b) => a.message.at - b.message.at);
    const turns = liveTurns(this.profile.channel, this.memory.since, this.conversations, this.profile.liveTotal);
    for (const { conversation, turn } of turns.slice(0, Math.max(this.memory.said - unread.length, 0))) {
      if ("name" in turn) conversation.name = turn.name;
    }
    this.save();
    await this.tellHistory();
    this.keepRecords();
    // What the desktop has not stored yet is reported again at the next start.
    let said = this.memory.said;
    for (const { conversation, message } of unread.slice(said)) {
      said += 1;
      this.say(conversation, message, message.at, "live", this.keeping(said));
    }
    if (this.clock.still) return;

    const next = (): void => {
      const live = turns[said - unread.length];
      if (live === undefined) return;
      const [least, most] = this.profile.beat;
      const pause = this.random.between(least, most) * (live.goesOn ? 0.5 : 1);
      this.clock.after(pause * 1000, () => {
        said += 1;
        this.happen(live.conversation, live.turn, this.keeping(said));
        next();
      });
    };
    next();
  }

  /** The desktop has stored every live line up to this one. */
  private kept(number: number): void {
    if (number <= this.memory.said) return;
    this.memory.said = number;
    this.save();
  }

  private keeping(number: number): () => void {
    return () => this.kept(number);
  }

  /** Everyone's messages first, so that the list fills at once; then names and faces. */
  private async tellHistory(): Promise<void> {
    const older: (() => void)[] = [];
    for (const conversation of this.conversations) {
      const tell = (message: Message): void => this.say(conversation, message, message.at, "historical");
      const first = this.clock.still ? 0 : Math.max(conversation.history.length - atOnce, 0);
      for (const message of conversation.history.slice(first)) {
        tell(message);
        await drained();
      }
      older.push(...conversation.history.slice(0, first).map((message) => () => tell(message)));
    }
    this.tellOlder(older);
    for (const conversation of this.conversations) {
      const { handle, name, inAddressBook, pictureComes } = conversation;
      if (inAddressBook) emit({ type: "contactName", jid: handle, name });
      if (pictureComes === "announced") this.showPicture(conversation);
    }
  }

  /** Messages of earlier years, newest first and a few per second, so that live ones do not wait. */
  private tellOlder(older: (() => void)[]): void {
    if (older.length === 0) return;
    this.clock.after(1000, async () => {
      for (const tell of older.splice(-olderPerSecond).reverse()) {
        tell();
        await drained();
      }
      this.tellOlder(older);
    });
  }

  /** Once, and by only one of the three engines. Reporting a face again makes the desktop reload it. */
  private keepRecords(): void {
    if (this.profile.channel !== "whatsapp" || this.memory.recorded) return;
    writeRecords(this.memory.since, () => {
      this.memory.recorded = true;
      this.save();
      this.showPicture(this.conversations[0]);
    });
  }

  showPicture(conversation: Conversation): void {
    if (conversation.picture === "none") return;
    const path = this.library.avatar(conversation);
    emit({ type: "avatar", jid: conversation.handle, path });
  }

  private happen(conversation: Conversation, turn: Turn, stored: () => void): void {
    if ("message" in turn) return this.say(conversation, turn.message, this.clock.now(), "live", stored);
    conversation.name = turn.name;
    emit({ type: "contactName", jid: conversation.handle, name: turn.name }, stored);
  }

  say(
    conversation: Conversation,
    message: Message,
    at: number,
    how: "historical" | "live" = "live",
    stored?: () => void,
  ): void {
    const event: MessageEvent = {
      type: "message",
      convExternalId: conversation.handle,
      convTitle: conversation.name,
      providerMsgId: message.id,
      direction: message.outgoing ? "OUT" : "IN",
      body: message.body,
      ts: at,
    };
    if (!message.outgoing) event.sender = message.sender ?? conversation.name;
    if (message.media !== undefined) {
      event.mediaType = message.media.kind as MediaType; // the desktop can also show unknown kinds
      if (message.media.state === "there") event.mediaPath = this.library.file(message.media);
    }
    if (how === "historical") event.historical = true;
    emit(event, stored);
    if (message.outgoing && how === "live") this.followDelivery(message.id);
    else if (message.outgoing) emit({ type: "msgStatus", providerMsgId: message.id, status: this.statusOf(message) });
    if (message.reaction !== undefined) {
      emit({ type: "reaction", targetProviderMsgId: message.id, emoji: message.reaction });
    }
  }

  /** 1 on its way, 2 at the server, 3 delivered, 4 read; only WhatsApp reports more than the first. */
  followDelivery(id: string): void {
    const steps = this.profile.channel === "whatsapp" ? [0, 400, 1500, 4500] : [0];
    steps.forEach((delay, index) => {
      const report = (): void => emit({ type: "msgStatus", providerMsgId: id, status: index + 1 });
      if (delay === 0) report();
      else this.clock.after(delay, report);
    });
  }

  private statusOf(message: Message): number {
    if (this.profile.channel !== "whatsapp") return 1;
    return message.status ?? (this.memory.since - message.at > 30 * minute ? 4 : 3);
  }

  save(): void {
    remember(this.profile.slug, this.memory);
  }
}

function pairingSeconds(named: string | undefined, still: boolean): number {
  const seconds = named === undefined || named === "" ? NaN : Number(named);
  if (Number.isFinite(seconds) && seconds >= 0) return Math.min(seconds, 86_400);
  return still ? 0 : 6;
}

/** Looks like a code that a phone would scan, but leads nowhere. */
function pairingCode(random: Random): string {
  const key = (): string => Buffer.from(Array.from({ length: 32 }, () => random.whole(0, 255))).toString("base64");
  return `2@${[key() + key(), key(), key(), key()].join(",")}`;
}
