import { z } from "zod";
import { Refusal, type Connection } from "./database.ts";
import { mustExist, projectOf } from "./find.ts";
import { agentName, freshId } from "./report.ts";
import { field, stamp, tool } from "./tool.ts";

function touchProject(db: Connection, project: string | null, at: string): void {
  if (project) db.run("UPDATE project SET updated_at=? WHERE id=?", at, project);
}

export const opsReportTools = [
  tool({
    name: "ops_report",
    effect: "report",
    description: "News of a project from the agent in one of its tabs; it counts as the tab's heartbeat, too.",
    input: {
      project: field.line("Slug or id of a project."),
      body: field.text("What happened."),
      kind: z.enum(["progress", "done", "blocked", "note"]).default("progress"),
      tab: field.id("Id of the agent's tab, from ops_open_tab.").optional(),
      task: field.line("What the tab works on now.").optional(),
    },
    run({ project, body, kind, tab, task }, { store, now }) {
      const db = store.writer;
      const id = freshId("upd");
      const at = stamp(now);
      return db.transaction(() => {
        const of = projectOf(db, project);
        mustExist(db, "tab", tab);
        db.run(
          `INSERT INTO "update"(id, project_id, tab_id, ts, kind, body, created_at) VALUES(?,?,?,?,?,?,?)`,
          id, of, tab ?? null, at, kind, body, at,
        );
        if (tab)
          db.run("UPDATE tab SET heartbeat_at=?, current_task=COALESCE(?, current_task) WHERE id=?", at, task ?? null, tab);
        touchProject(db, of, at);
        return { id };
      });
    },
  }),
  tool({
    name: "ops_open_tab",
    effect: "report",
    description: "Tells that an agent works on a project in a terminal tab; orders can be left for it then.",
    input: {
      project: field.line("Slug or id of a project."),
      agent: agentName,
      role: field.line('Such as "implementer".').default("worker"),
      model: field.line("The model that the agent is.").optional(),
      interval_seconds: z.int().min(30).max(86_400).default(600).describe("How often it reports."),
    },
    run({ project, agent, role, model = "", interval_seconds: interval }, { store, now }) {
      const db = store.writer;
      const id = freshId("tab");
      const at = stamp(now);
      return db.transaction(() => {
        db.run(
          `INSERT INTO tab(id, current_project_id, name, role, status, model, interval_sec, heartbeat_at, created_at)
           VALUES(?,?,?,?,'running',?,?,?,?)`,
          id, projectOf(db, project), agent, role, model, interval, at, at,
        );
        return { tab: id };
      });
    },
  }),
  tool({
    name: "ops_ask",
    effect: "report",
    description: "Asks a person something and waits; the answer shows in ops_inbox.",
    input: {
      question: field.text("The question, with all that is needed to answer it."),
      urgency: z.enum(["high", "normal", "low"]).default("normal"),
      project: field.line("Slug or id of a project.").optional(),
      tab: field.id("Id of the agent's tab.").optional(),
    },
    run({ question, urgency, project, tab }, { store, now }) {
      const db = store.writer;
      const id = freshId("ask");
      const at = stamp(now);
      return db.transaction(() => {
        const of = project ? projectOf(db, project) : null;
        mustExist(db, "tab", tab);
        db.run(
          "INSERT INTO ask(id, project_id, tab_id, ts, question, urgency, status) VALUES(?,?,?,?,?,?,'open')",
          id, of, tab ?? null, at, question, urgency,
        );
        touchProject(db, of, at);
        return { id };
      });
    },
  }),
  tool({
    name: "ops_take_order",
    effect: "report",
    description: "Notes that an order from ops_inbox was read, so that it is not listed again.",
    input: { order: field.id("Id of an order.") },
    run({ order }, { store }) {
      if (!store.writer.run("UPDATE message SET status='taken' WHERE id=? AND status='pending'", order))
        throw new Refusal(`There is no order ${order} that waits.`);
      return { order, status: "taken" };
    },
  }),
];
