// A Slack app: the channels it is in, and everyone who writes to it.

import { runChannel } from "./lib/channel.ts";
import { chatTables } from "./lib/history.ts";
import { joinSlack } from "./slack/network.ts";

await runChannel(chatTables, joinSlack);
