// A Discord bot: the servers it is in, and everyone who writes to it.

import { runChannel } from "./lib/channel.ts";
import { chatTables } from "./lib/history.ts";
import { joinDiscord } from "./discord/network.ts";

await runChannel(chatTables, joinDiscord);
