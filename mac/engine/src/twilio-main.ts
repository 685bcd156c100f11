// A telephone number at Twilio: SMS, and the pictures that come with them.

import { runChannel } from "./lib/channel.ts";
import { joinTwilio } from "./sms/network.ts";
import { toldTables } from "./sms/mirror.ts";

await runChannel(toldTables, joinTwilio);
