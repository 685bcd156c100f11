// A telephone number at Twilio: SMS, and the pictures received with them.

import { runChannel } from "./lib/channel.ts";
import { joinTwilio } from "./sms/network.ts";
import { toldTables } from "./sms/mirror.ts";

await runChannel(toldTables, joinTwilio);
