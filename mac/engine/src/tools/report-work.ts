import { z } from "zod";
import { Refusal } from "./database.ts";
import { addWork, agentName, freshId, write } from "./report.ts";
import { field, stamp, tool } from "./tool.ts";

const item = field.id("Id of a work item.").optional();
const session = field.id("Id of a session, from dev_session_start.").optional();

export const workReportTools = [
  tool({
    name: "dev_session_start",
    effect: "report",
    description: "Records that a work session began, and who works in it. Report a heartbeat every few minutes.",
    input: {
      agent: agentName,
      tool: field.line('Program of the agent, such as "claude" or "codex".'),
      purpose: field.line("What the session is for."),
      role: field.line('Such as "implementer".').default("worker"),
      item,
      module: field.module,
      context: field.context,
    },
    run({ agent, tool: program, purpose, role, item: workItem, ...where }, call) {
      const session = write(call, "sess", (fresh) => {
        const { id, at, db } = fresh;
        addWork(fresh, "work_session", where, {
          purpose, owner: agent, tool: program, status: "running", endpoint: "", current_item_id: workItem,
          heartbeat_at: at, updated_at: at,
        });
        db.run(
          `INSERT INTO work_agent(id, context_id, module, name, tool, role, status, current_task, session_id,
             heartbeat_at, created_at, updated_at) VALUES(?,?,?,?,?,?,'running',?,?,?,?,?)
           ON CONFLICT(module, context_id, name, tool) DO UPDATE SET role=excluded.role, status=excluded.status,
             current_task=excluded.current_task, session_id=excluded.session_id, heartbeat_at=excluded.heartbeat_at,
             updated_at=excluded.updated_at`,
          freshId("agent"), where.context ?? "", where.module, agent, program, role, purpose, id, at, at, at,
        );
      });
      return { session };
    },
  }),
  tool({
    name: "dev_session_heartbeat",
    effect: "report",
    description: "Records that a session is alive, what it is doing, or that it is over.",
    input: {
      session: field.id("Id of a session, from dev_session_start."),
      status: z.enum(["running", "blocked", "done", "failed"]).default("running"),
      task: field.line("What it is doing.").optional(),
    },
    run({ session: id, status, task }, { store, now }) {
      const db = store.writer;
      const at = stamp(now);
      return db.transaction(() => {
        if (!db.run("UPDATE work_session SET status=?, heartbeat_at=?, updated_at=? WHERE id=?", status, at, at, id))
          throw new Refusal(`There is no session ${id}.`);
        db.run(
          `UPDATE work_agent SET status=?, heartbeat_at=?, updated_at=?, current_task=COALESCE(?, current_task)
           WHERE session_id=?`,
          status, at, at, task ?? null, id,
        );
        return { session: id, status };
      });
    },
  }),
  tool({
    name: "dev_report_message",
    effect: "report",
    description: "Posts a message to the thread of the work.",
    input: {
      agent: agentName,
      body: field.text("The text."),
      kind: z.enum(["message", "status", "ask", "answer", "error"]).default("message"),
      session,
      module: field.module,
      context: field.context,
    },
    run({ agent, session: of, module, context, ...said }, call) {
      const row = { session_id: of, speaker: agent, role: "assistant", status: "posted", ...said };
      return { id: write(call, "msg", (fresh) => addWork(fresh, "work_message", { module, context }, row)) };
    },
  }),
  tool({
    name: "dev_report_evidence",
    effect: "report",
    description: "Records evidence of something done or found: a test run, a picture, a log. Only its location is stored; nothing is uploaded.",
    input: {
      title: field.line("What it shows."),
      kind: field.line('Such as "test-run", "screenshot" or "note".').default("note"),
      uri: field.line("Where it is, as a path or URL.").optional(),
      summary: field.text("A short summary.").optional(),
      source: field.line("Who or what created it.").default("mcp"),
      item,
      session,
      module: field.module,
      context: field.context,
    },
    run({ item: of, session: workSession, module, context, uri = "", summary = "", ...proof }, call) {
      const row = { item_id: of, session_id: workSession, uri, summary, ...proof };
      return { id: write(call, "ev", (fresh) => addWork(fresh, "work_evidence", { module, context }, row)) };
    },
  }),
  tool({
    name: "dev_report_item",
    effect: "report",
    description: "Records something to do, such as a bug.",
    input: {
      title: field.line("What to do."),
      kind: field.line('Such as "task", "bug" or "research".').default("task"),
      priority: z.enum(["high", "normal", "low"]).default("normal"),
      summary: field.text("Details.").optional(),
      agent: agentName.optional(),
      session,
      module: field.module,
      context: field.context,
    },
    run({ agent = "unassigned", session: of, module, context, summary = "", ...found }, call) {
      const row = { status: "open", owner: agent, session_id: of, source: "mcp", due_at: "", summary, ...found };
      const id = write(call, "item", (fresh) =>
        addWork(fresh, "work_item", { module, context }, { ...row, updated_at: fresh.at }),
      );
      return { id };
    },
  }),
  tool({
    name: "dev_update_item",
    effect: "report",
    description: "Sets the status of a work item.",
    input: { item: field.id("Id of a work item, from dev_work_list."), status: z.enum(["open", "in_progress", "blocked", "done"]) },
    run({ item: id, status }, { store, now }) {
      const db = store.writer;
      const at = stamp(now);
      return db.transaction(() => {
        if (!db.run("UPDATE work_item SET status=?, updated_at=? WHERE id=?", status, at, id))
          throw new Refusal(`There is no work item ${id}.`);
        db.run("UPDATE work_context SET updated_at=? WHERE id=(SELECT context_id FROM work_item WHERE id=?)", at, id);
        return { item: id, status };
      });
    },
  }),
];
