// The order in which things happen while the demonstration runs.

import { randomFrom } from "./random.ts";
import { messageId, type Conversation, type Turn } from "./script.ts";
import { exchanges } from "./small-talk.ts";

export interface LiveTurn {
  conversation: Conversation;
  turn: Turn;
  /** The same talk goes on, so it comes sooner than a new one. */
  goesOn: boolean;
}

/** Conversations take turns with a line or two until the scripts are through, then small talk: `total` in all. */
export function liveTurns(channel: string, since: number, conversations: Conversation[], total: number): LiveTurn[] {
  const random = randomFrom(`live/${channel}`);
  const waiting = new Map(conversations.map((conversation) => [conversation, [...conversation.live]]));
  const turns: LiveTurn[] = [];
  const add = (conversation: Conversation, talk: Turn[]): void => {
    talk.forEach((turn, index) => turns.push({ conversation, turn, goesOn: index > 0 }));
  };

  while ([...waiting.values()].some((rest) => rest.length > 0)) {
    for (const conversation of random.shuffled(conversations)) {
      const rest = waiting.get(conversation) ?? [];
      add(conversation, rest.splice(0, random.whole(1, conversation.isGroup ? 3 : 2)));
    }
  }
  const talkers = conversations.filter(({ isGroup, picture }) => !isGroup && picture !== "mark");
  for (let round = 0; turns.length < total; round++) {
    for (const conversation of random.shuffled(talkers)) {
      const talk = random.pick(exchanges(conversation.language));
      add(
        conversation,
        talk.map(({ outgoing, text }, index) => ({
          message: {
            id: messageId(channel, conversation.handle, `${since}/talk/${round}/${index}`),
            outgoing,
            body: text,
            at: 0,
          },
        })),
      );
    }
  }
  return turns.slice(0, total);
}
