// The app's own reaction to a message: one at a time, as in the window.

import { Refused } from "../lib/outbox.ts";
import type { Slack } from "./api.ts";
import type { Self } from "./teller.ts";
import { nameOfEmoji } from "./text.ts";

interface Reacted {
  message: { reactions?: { name: string; users: string[] }[] };
}

export async function react(slack: Slack, { channel, ts }: { channel: string; ts: string }, emoji: string, self: () => Promise<Self>): Promise<void> {
  const wanted = emoji ? nameOfEmoji(emoji) : undefined;
  if (emoji && !wanted) throw new Refused(`Slack's name for ${emoji} is not known.`);
  const { user_id: me } = await self();
  const place = { channel, timestamp: ts };
  const { message } = await slack.call<Reacted>("reactions.get", { ...place, full: true });
  const mine = (message.reactions ?? []).filter(({ users }) => users.includes(me)).map(({ name }) => name);
  for (const name of mine.filter((name) => name !== wanted)) await slack.call("reactions.remove", { ...place, name });
  if (wanted && !mine.includes(wanted)) await slack.call("reactions.add", { ...place, name: wanted });
}
