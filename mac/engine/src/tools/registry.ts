import { calendarTools } from "./calendar.ts";
import { crmTools } from "./crm.ts";
import { devTools } from "./dev.ts";
import type { Writable } from "./guard.ts";
import { inboxTools } from "./inbox.ts";
import { opsTools } from "./ops.ts";
import { proposingTools } from "./propose.ts";
import { opsReportTools } from "./report-ops.ts";
import { workReportTools } from "./report-work.ts";
import { scanTools } from "./scan.ts";
import type { Tool } from "./tool.ts";

/** All tools, in the order in which they are listed. */
export const tools: readonly Tool[] = [
  ...inboxTools,
  ...crmTools,
  ...calendarTools,
  ...opsTools,
  ...devTools,
  ...proposingTools,
  ...workReportTools,
  ...opsReportTools,
  ...scanTools,
];

/** The tables that tools write, and how. */
export const writable: Writable = {
  outbound_draft: "insert",
  crm_update_proposal: "insert",
  work_decision: "insert",
  work_memory: "insert",
  work_session: "both",
  work_agent: "both",
  work_item: "both",
  work_context: "update",
  work_message: "insert",
  work_evidence: "insert",
  update: "insert",
  ask: "insert",
  tab: "both",
  message: "update",
  project: "update",
  dev_browser_session: "both",
};
