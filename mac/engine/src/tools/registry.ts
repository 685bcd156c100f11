import { calendarTools } from "./calendar.ts";
import { crmTools } from "./crm.ts";
import { devTools } from "./dev.ts";
import { inboxTools } from "./inbox.ts";
import { opsTools } from "./ops.ts";
import type { Tool } from "./tool.ts";

/** Every tool that there is, in the order in which they are listed. */
export const tools: readonly Tool[] = [
  ...inboxTools,
  ...crmTools,
  ...calendarTools,
  ...opsTools,
  ...devTools,
];

/** The tables that tools write, and how. */
export const writable = {};
