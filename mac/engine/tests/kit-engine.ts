// A channel of files: what is sent to it is a line of `sent`. The text says how it goes wrong.

import { appendFileSync } from "node:fs";
import { join } from "node:path";
import { SendJournal } from "../src/lib/journal.ts";
import { Outbox, Refused } from "../src/lib/outbox.ts";
import { runEngine } from "../src/lib/run.ts";
import { openState } from "../src/lib/state.ts";
import { emit } from "../src/lib/wire.ts";

runEngine(async ({ stateDir }) => {
  const journal = new SendJournal(openState(stateDir));
  const outbox = new Outbox(journal, async ({ key, chatId, text }, begin) => {
    if (text === "too late") throw new Refused("closed");
    begin();
    if (text === "no") throw new Refused("go away");
    appendFileSync(join(stateDir, "sent"), `${text}\n`);
    if (text === "die") process.kill(process.pid, "SIGKILL");
    if (text === "cable") throw new Error("connection reset");
    const id = `id ${key}`;
    return { messages: [{ type: "message", convExternalId: chatId, providerMsgId: id, direction: "OUT", body: text, ts: 1 }] };
  });
  await outbox.resume();
  await emit({ type: "status", state: "open" });
  return { handle: (command) => command.cmd === "send" && outbox.send(command), close: () => outbox.idle() };
});
