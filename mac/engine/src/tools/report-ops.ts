import { z } from "zod";
import { Refusal, type Columns } from "./database.ts";
import { mustExist, projectOf } from "./find.ts";
import { agentName, write, type Fresh } from "./report.ts";
import { field, tool } from "./tool.ts";

/** Adds a row about a project, perhaps from one of its tabs, and marks the project as changed. */
function addNews(
  { id, at, db }: Fresh,
  table: "update" | "ask",
  { project, tab }: { project?: string | undefined; tab?: string | undefined },
  columns: Columns,
): void {
  const of = project && projectOf(db, project);
  mustExist(db, "tab", tab);
  db.insert(table, { id, project_id: of, tab_id: tab, ts: at, ...columns });
  if (of) db.run("UPDATE project SET updated_at=? WHERE id=?", at, of);
}

export const opsReportTools = [
  tool({
    name: "ops_report",
    effect: "report",
    description: "Posts an update of a project from the agent in one of its tabs; this is also the tab's heartbeat.",
    input: {
      project: field.line("Slug or id of a project."),
      body: field.text("What happened."),
      kind: z.enum(["progress", "done", "blocked", "note"]).default("progress"),
      tab: field.id("Id of the agent's tab, from ops_open_tab.").optional(),
      task: field.line("What the tab is working on.").optional(),
    },
    run({ body, kind, task, ...of }, call) {
      const id = write(call, "upd", (fresh) => {
        const { db, at } = fresh;
        addNews(fresh, "update", of, { kind, body, created_at: at });
        if (of.tab)
          db.run("UPDATE tab SET heartbeat_at=?, current_task=COALESCE(?, current_task) WHERE id=?", at, task ?? null, of.tab);
      });
      return { id };
    },
  }),
  tool({
    name: "ops_open_tab",
    effect: "report",
    description: "Registers an agent that works on a project in a terminal tab, so that orders can be left for it.",
    input: {
      project: field.line("Slug or id of a project."),
      agent: agentName,
      role: field.line('Such as "implementer".').default("worker"),
      model: field.line("The agent's model.").optional(),
      interval_seconds: z.int().min(30).max(86_400).default(600).describe("How often it will report."),
    },
    run({ project, agent, role, model = "", interval_seconds: interval }, call) {
      const tab = write(call, "tab", ({ id, at, db }) =>
        db.insert("tab", {
          id, current_project_id: projectOf(db, project), name: agent, role, status: "running", model,
          interval_sec: interval, heartbeat_at: at, created_at: at,
        }),
      );
      return { tab };
    },
  }),
  tool({
    name: "ops_ask",
    effect: "report",
    description: "Asks the user a question; the answer appears in ops_inbox.",
    input: {
      question: field.text("The question, with everything needed to answer it."),
      urgency: z.enum(["high", "normal", "low"]).default("normal"),
      project: field.line("Slug or id of a project.").optional(),
      tab: field.id("Id of the agent's tab.").optional(),
    },
    run({ question, urgency, ...of }, call) {
      return { id: write(call, "ask", (fresh) => addNews(fresh, "ask", of, { question, urgency, status: "open" })) };
    },
  }),
  tool({
    name: "ops_take_order",
    effect: "report",
    description: "Marks an order from ops_inbox as read, so that it is not listed again.",
    input: { order: field.id("Id of an order.") },
    run({ order }, { store }) {
      if (!store.writer.run("UPDATE message SET status='taken' WHERE id=? AND status='pending'", order))
        throw new Refusal(`There is no order ${order} that waits.`);
      return { order, status: "taken" };
    },
  }),
];
