// The two short runs with which the connect sheet finds the servers and tests the sign-in.

import { closeOutput, print } from "../lib/wire.ts";
import { connectImap } from "./client.ts";
import { discover, serversFor } from "./discovery.ts";
import { settingsFrom } from "./settings.ts";
import { trySubmission } from "./submission.ts";

const longest = 30_000;

/** Prints one event and ends the process. */
export async function runConnectSheet(mode: string): Promise<void> {
  const late = setTimeout(() => process.exit(1), longest);
  const isGood = mode === "--discover" ? await tellServers() : mode === "--sign-in" && (await tellSignIn());
  clearTimeout(late);
  await closeOutput();
  process.exit(isGood ? 0 : 1);
}

async function tellServers(): Promise<boolean> {
  const found = await discover((process.env.EMAIL_USER ?? "").trim(), process.env.CORVANE_MAIL_AUTOCONFIG);
  print({ type: "servers", ...found });
  return true;
}

type Stage = "settings" | "imap" | "smtp";

async function tellSignIn(): Promise<boolean> {
  let at: Stage = "settings";
  try {
    const settings = settingsFrom(process.env);
    const { imap, smtp } = await serversFor(settings);
    at = "imap";
    await (await connectImap(settings, imap)).logout();
    at = "smtp";
    await trySubmission(settings, smtp);
    print({ type: "signIn", ok: true });
    return true;
  } catch (error) {
    print({ type: "signIn", ok: false, at, error: (error as Error).message });
    return false;
  }
}
