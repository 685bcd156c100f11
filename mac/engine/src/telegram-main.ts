// A Telegram bot: everyone who writes to it, and the groups it is in.

import { runChannel } from "./lib/channel.ts";
import { joinTelegram } from "./telegram/network.ts";
import { fileTables } from "./telegram/files.ts";

await runChannel(fileTables, joinTelegram);
