// The order of events while the demo runs.

import { randomFrom, type Random } from "./random.ts";
import { messageId, type Conversation, type Turn } from "./script.ts";
import { exchanges } from "./small-talk.ts";

export interface LiveTurn {
  conversation: Conversation;
  turn: Turn;
  /** The next line of the same talk comes sooner than a new talk. */
  goesOn: boolean;
}

/** Conversations take turns with a line or two, first from their scripts, then small talk: at most `total`. */
export function liveTurns(channel: string, since: number, conversations: Conversation[], total: number): LiveTurn[] {
  const random = randomFrom(`live/${channel}`);
  const waiting = conversations.map((conversation) => {
    const talk = channel === "email" ? [] : smallTalk(channel, since, conversation, random);
    return { conversation, rest: [...conversation.live, ...talk] };
  });
  const turns: LiveTurn[] = [];
  while (turns.length < total && waiting.some(({ rest }) => rest.length > 0)) {
    for (const { conversation, rest } of random.shuffled(waiting)) {
      const visit = rest.splice(0, random.whole(1, conversation.isGroup ? 3 : 2));
      visit.forEach((turn, index) => turns.push({ conversation, turn, goesOn: index > 0 }));
    }
  }
  return turns.slice(0, total);
}

/** Each talk of the language once; not in groups or with machines. */
function smallTalk(channel: string, since: number, conversation: Conversation, random: Random): Turn[] {
  const { handle, isGroup, isQuiet, language, picture } = conversation;
  if (isGroup || isQuiet || picture === "mark") return [];
  return random
    .shuffled(exchanges(language))
    .flat()
    .map(({ outgoing, text }, index) => ({
      message: { id: messageId(channel, handle, `${since}/talk/${index}`), outgoing, body: text, at: 0 },
    }));
}
