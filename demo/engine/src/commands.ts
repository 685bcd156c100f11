// Handles commands from the desktop.

import { copyFileSync, mkdirSync } from "node:fs";
import { dirname, extname, isAbsolute } from "node:path";
import { day } from "./clock.ts";
import type { Engine } from "./engine.ts";
import { randomFrom } from "./random.ts";
import { messageId, type Conversation, type Media, type Message } from "./script.ts";
import { exchanges, replies } from "./small-talk.ts";
import { emit, textOf, type Command, type MediaType, type SendName } from "./wire.ts";

/** Each conversation has this many pages of older messages. */
const olderPages = 4;

export class Commands {
  private readonly engine: Engine;

  constructor(engine: Engine) {
    this.engine = engine;
  }

  /** Commands that make no sense here are ignored. */
  handle(command: Command): void {
    switch (command.cmd) {
      case "send":
        return this.send(textOf(command, "chatId"), textOf(command, "text"), nameOf(command));
      case "sendAudio":
        return this.sendAudio(textOf(command, "chatId"), textOf(command, "path"));
      case "draft":
        return this.refuse(nameOf(command), "This channel sends at once and places no drafts");
      case "react":
        return this.react(textOf(command, "messageId"), textOf(command, "emoji"));
      case "loadMore":
        return this.loadMore(textOf(command, "chatId"), Number(command.count));
      case "downloadMedia":
        return this.downloadMedia(textOf(command, "messageId"));
      case "fetchAvatar":
        return this.fetchAvatar(textOf(command, "jid"));
      case "sync":
        return emit({ type: "log", msg: "Everything is up to date" });
    }
  }

  private send(chatId: string, text: string, name: SendName | undefined): void {
    if (!this.engine.isOpen) return this.refuse(name, "Not connected yet");
    if (chatId === "" || text.trim() === "") return this.refuse(name, "There is nothing to send");
    const { drafts } = this.engine.memory;
    // A retry of what was sent already, if the desktop missed the answer.
    const key = name && Object.values(name)[0];
    if (name && key && drafts[key]?.text === text) return this.acknowledge(name, drafts[key].id);
    const conversation = this.conversationWith(chatId);
    const id = this.nextSentId(chatId);
    if (key) {
      drafts[key] = { text, id };
      this.engine.save();
    }
    const message: Message = { id, outgoing: true, body: text, at: 0 };
    this.engine.say(conversation, message, this.engine.clock.now());
    if (name) this.acknowledge(name, id);
    this.sometimesAnswer(conversation);
  }

  private acknowledge(name: SendName, providerMsgId: string): void {
    emit({ type: "sendAck", ...name, status: "sent", providerMsgId });
  }

  private refuse(name: SendName | undefined, error: string): void {
    if (!name) emit({ type: "log", msg: error });
    else emit({ type: "sendAck", ...name, status: "failed", error });
  }

  /** Keeps a copy: the recording itself is a temporary file. */
  private sendAudio(chatId: string, path: string): void {
    if (!this.engine.isOpen || chatId === "") return this.refuse(undefined, "Not connected yet");
    if (!isAbsolute(path)) return this.refuse(undefined, "The voice note has no file");
    const id = this.nextSentId(chatId);
    const copy = this.engine.library.pathOf(`voice-${id.replace(/\W/g, "-")}${extname(path)}`);
    try {
      mkdirSync(dirname(copy), { recursive: true });
      copyFileSync(path, copy);
    } catch (error) {
      return this.refuse(undefined, `The voice note could not be read: ${(error as Error).message}`);
    }
    emit({
      type: "message",
      convExternalId: chatId,
      convTitle: this.conversationWith(chatId).name,
      providerMsgId: id,
      direction: "OUT",
      body: "[Audio]",
      ts: this.engine.clock.now(),
      mediaType: "audio",
      mediaPath: copy,
    });
    this.engine.followDelivery(id);
  }

  private react(target: string, emoji: string): void {
    if (target !== "") emit({ type: "reaction", targetProviderMsgId: target, emoji });
  }

  private loadMore(chatId: string, count: number): void {
    const conversation = this.engine.conversations.find(({ handle }) => handle === chatId);
    const page = this.engine.memory.pages[chatId] ?? 0;
    if (conversation === undefined || page >= olderPages) {
      return emit({ type: "log", msg: "There are no older messages" });
    }
    const size = Number.isInteger(count) && count > 0 ? Math.min(count, 200) : 50;
    this.engine.memory.pages[chatId] = page + 1;
    this.engine.save();
    for (const message of this.olderMessages(conversation, page, size)) {
      this.engine.say(conversation, message, message.at, "historical");
    }
  }

  /** Small talk from the month before the following page, oldest first. */
  private olderMessages(conversation: Conversation, page: number, size: number): Message[] {
    const { channel } = this.engine.profile;
    const random = randomFrom(`older/${channel}/${conversation.handle}/${page}`);
    const talks = exchanges(conversation.language);
    const end = this.engine.memory.since - (32 + page * 30) * day;
    const lines = Array.from({ length: size }, () => random.pick(talks))
      .flat()
      .slice(0, size);
    return lines.map(({ outgoing, text }, index) => ({
      id: messageId(channel, conversation.handle, `older/${page}/${index}`),
      outgoing,
      body: text,
      at: end - Math.round((28 * day * (size - index)) / size),
    }));
  }

  private downloadMedia(id: string): void {
    const media = this.mediaOf(id);
    if (media === undefined) {
      return emit({ type: "media", providerMsgId: id, state: "failed", error: "This message holds no media." });
    }
    emit({ type: "media", providerMsgId: id, state: "requested" });
    this.engine.clock.after(1800, () => {
      if (media.state === "lost") {
        const error = "This photo is no longer on the sender's phone.";
        return emit({ type: "media", providerMsgId: id, state: "failed", error });
      }
      const mediaPath = this.engine.library.file(media);
      emit({ type: "media", providerMsgId: id, state: "success", mediaPath, mediaType: media.kind as MediaType });
    });
  }

  private mediaOf(id: string): Media | undefined {
    for (const { history, unread, live } of this.engine.conversations) {
      const said = live.flatMap((turn) => ("message" in turn ? [turn.message] : []));
      const found = [...history, ...unread, ...said].find((message) => message.id === id);
      if (found !== undefined) return found.media;
    }
    return undefined;
  }

  private fetchAvatar(jid: string): void {
    const conversation = this.engine.conversations.find(({ handle }) => handle === jid);
    if (conversation !== undefined) this.engine.showPicture(conversation);
  }

  /** In two of three cases somebody answers a few seconds later. */
  private sometimesAnswer(conversation: Conversation): void {
    const { clock, random } = this.engine;
    const isPerson = this.engine.conversations.includes(conversation) && conversation.picture !== "mark";
    if (clock.still || !isPerson || random.between(0, 3) > 2) return;
    const text = random.pick(replies(conversation.language));
    clock.after(random.between(5000, 9000), () => {
      const id = this.nextSentId(conversation.handle);
      const answer: Message = { id, outgoing: false, body: text, at: 0 };
      this.engine.say(conversation, answer, clock.now());
    });
  }

  /** The counter is in the memory file, so ids stay unique after a restart. */
  private nextSentId(chatId: string): string {
    const { memory, profile } = this.engine;
    memory.sent += 1;
    this.engine.save();
    return messageId(profile.channel, chatId, `${memory.since}/sent/${memory.sent}`);
  }

  /** A new person is named after the handle. */
  private conversationWith(chatId: string): Conversation {
    const known = this.engine.conversations.find(({ handle }) => handle === chatId);
    if (known !== undefined) return known;
    const phone = /^(\d+)@s\.whatsapp\.net$/.exec(chatId);
    return {
      handle: chatId,
      name: phone === null ? chatId : `+${phone[1]}`,
      language: "en",
      isGroup: false,
      isQuiet: false,
      inAddressBook: false,
      picture: "none",
      look: "",
      pictureComes: "asked",
      history: [],
      unread: [],
      live: [],
    };
  }
}

function nameOf(command: Command): SendName | undefined {
  const [draftId, sendId] = [textOf(command, "draftId"), textOf(command, "sendId")];
  if (draftId !== "") return { draftId };
  return sendId === "" ? undefined : { sendId };
}
