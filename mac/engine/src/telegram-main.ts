// A Telegram bot: everybody who writes to it, and the groups that it is in.

import { runChannel } from "./lib/channel.ts";
import { joinTelegram } from "./telegram/network.ts";
import { fileTable } from "./telegram/files.ts";

await runChannel(fileTable, joinTelegram);
