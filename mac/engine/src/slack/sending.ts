// Sends messages as the app.

import { stat } from "node:fs/promises";
import { setTimeout as sleep } from "node:timers/promises";
import { providerChat } from "../lib/events.ts";
import { keepSent } from "../lib/files.ts";
import { withinLimits } from "../lib/limits.ts";
import { Refused, type Deliver, type OutgoingFile, type Sending } from "../lib/outbox.ts";
import { stopping } from "../lib/run.ts";
import { post } from "../lib/web.ts";
import type { Slack } from "./api.ts";
import type { Chats } from "./chats.ts";
import { rowsFrom, type Self, type SlackFile, type SlackMessage } from "./teller.ts";
import { escaped } from "./text.ts";

/** Slack accepts more, but waits for all of it. */
export const mostFileBytes = 200_000_000;
const longestText = 40_000;

export function slackDeliver(slack: Slack, chats: Chats, self: () => Promise<Self>, mediaDir: string): Deliver {
  return async (sending, begin) => {
    if (sending.text.length > longestText) throw new Refused(`Slack takes ${longestText} characters, and this text has ${sending.text.length}.`);
    const patiently = <T>(ask: () => Promise<T>): Promise<T> =>
      withinLimits(ask, { signal: stopping, progress: () => sending.progress() });
    const me = await patiently(self);
    const channel = await patiently(() => channelOf(slack, providerChat(sending.chatId)));
    const message = sending.files.length > 0
      ? await sendFiles(slack, channel, sending, begin, patiently)
      : await sendText(slack, channel, sending, begin);
    if (!message) return { messages: [] }; // its event reports it
    const rows = await rowsFrom(channel, { ...message, user: me.user_id }, chats, me);
    await keepSent(mediaDir, rows, sending.files);
    return { messages: rows };
  };
}

/** The channel to write to; opens one if only the person is known. */
async function channelOf(slack: Slack, target: string): Promise<string> {
  if (/^[CDG][A-Z0-9]+$/.test(target)) return target;
  const user = target.includes("@") ? await memberWith(slack, target) : target;
  if (!/^[UW][A-Z0-9]+$/.test(user)) throw new Refused("Slack needs a member's e-mail address or ID, or a channel's ID.");
  const { channel } = await slack.call<{ channel: { id: string } }>("conversations.open", { users: user });
  return channel.id;
}

async function memberWith(slack: Slack, email: string): Promise<string> {
  return (await slack.call<{ user: { id: string } }>("users.lookupByEmail", { email })).user.id;
}

async function sendText(slack: Slack, channel: string, sending: Sending, begin: () => void): Promise<SlackMessage> {
  const words = { channel, text: escaped(sending.text), mrkdwn: false };
  const { message, ts } = await post(sending, begin, () => slack.call<{ ts: string; message?: SlackMessage }>("chat.postMessage", words));
  return { ...message, subtype: undefined, ts };
}

async function sendFiles(
  slack: Slack,
  channel: string,
  sending: Sending,
  begin: () => void,
  patiently: <T>(ask: () => Promise<T>) => Promise<T>,
): Promise<SlackMessage | undefined> {
  const files: { id: string; title: string }[] = [];
  for (const file of sending.files) files.push({ id: await patiently(() => upload(slack, file)), title: file.name });
  const words = { channel_id: channel, files, initial_comment: escaped(sending.text) || undefined };
  const done = await post(sending, begin, () => slack.call<{ files: SlackFile[] }>("files.completeUploadExternal", words));
  const ts = await timeOf(slack, channel, files[0].id);
  return ts === undefined ? undefined : { ts, text: words.initial_comment, files: shown(done.files, sending.files) };
}

function shown(files: SlackFile[], sent: OutgoingFile[]): SlackFile[] {
  return sent.map(({ name }, index) => ({ ...files[index], name }));
}

async function upload(slack: Slack, { path, name }: OutgoingFile): Promise<string> {
  type Place = { upload_url: string; file_id: string };
  const { size } = await stat(path);
  const { upload_url: address, file_id: id } = await slack.call<Place>("files.getUploadURLExternal", { filename: name, length: size });
  await slack.upload(address, path);
  return id;
}

/** When the message of a file was posted, which Slack reports a moment later; undefined if it does not. */
async function timeOf(slack: Slack, channel: string, file: string): Promise<string | undefined> {
  type Shares = Record<string, Record<string, { ts: string }[]>>;
  for (const pause of [300, 1000, 2000]) {
    const info = await slack.call<{ file: SlackFile & { shares?: Shares } }>("files.info", { file }).catch(() => undefined);
    const shares = Object.values(info?.file.shares ?? {}).flatMap((places) => places[channel] ?? []);
    if (shares[0]) return shares[0].ts;
    await sleep(pause, undefined, { signal: stopping }).catch(() => {});
  }
}
