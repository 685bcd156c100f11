import { z } from "zod";
import { Refusal } from "./database.ts";
import { projectOf } from "./find.ts";
import { clip, field, page, tool } from "./tool.ts";

/** The common part of a module's lists. */
const ofModule = { module: field.module, context: field.context, limit: field.limit(50) };
const inModule = "module=?1 AND (?2='' OR context_id=?2)";

export const devTools = [
  tool({
    name: "dev_work_contexts",
    effect: "read",
    description: "What is being worked on in a module, last touched first.",
    input: { module: field.module, limit: field.limit(50) },
    run({ module, limit }, { db }) {
      const rows = db.rows(
        `SELECT id, kind, slug, title, subtitle, status, owner, external_ref, updated_at,
           (SELECT COUNT(*) FROM work_item i WHERE i.module=c.module AND i.context_id=c.id AND i.status<>'done')
             AS open_items
         FROM work_context c WHERE module=? ORDER BY updated_at DESC LIMIT ?`,
        module, limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "dev_work_list",
    effect: "read",
    description: "Work items of a module by priority; without a status, open ones only.",
    input: { ...ofModule, status: field.line('Only this status, such as "done".').optional() },
    run({ module, context, status, limit }, { db }) {
      const rows = db.rows(
        `SELECT id, context_id AS context, kind, title, status, priority, owner, source, summary, due_at, updated_at
         FROM work_item WHERE ${inModule}
           AND CASE WHEN ?3='' THEN status NOT IN ('done','closed','rejected') ELSE status=?3 END
         ORDER BY CASE priority WHEN 'high' THEN 0 WHEN 'normal' THEN 1 ELSE 2 END, updated_at DESC LIMIT ?4`,
        module, context ?? "", status ?? "", limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "dev_work_log",
    effect: "read",
    description: "Messages and evidence about the work in a module, newest first.",
    input: ofModule,
    run({ module, context, limit }, { db }) {
      const at = [module, context ?? "", limit + 1] as const;
      const messages = db.rows(
        `SELECT id, speaker, role, kind, body, created_at FROM work_message WHERE ${inModule}
         ORDER BY created_at DESC LIMIT ?3`, ...at,
      );
      const evidence = db.rows(
        `SELECT id, item_id AS item, kind, title, source, uri, summary, created_at FROM work_evidence
         WHERE ${inModule} ORDER BY created_at DESC LIMIT ?3`, ...at,
      );
      return { messages: page(messages, limit, 2), evidence: page(evidence, limit, 2) };
    },
  }),
  tool({
    name: "dev_work_sessions",
    effect: "read",
    description: "Sessions and agents of a module, last changed first.",
    input: ofModule,
    run({ module, context, limit }, { db }) {
      const at = [module, context ?? "", limit + 1] as const;
      const sessions = db.rows(
        `SELECT id, purpose, owner, tool, status, current_item_id AS item, heartbeat_at FROM work_session
         WHERE ${inModule} ORDER BY updated_at DESC LIMIT ?3`, ...at,
      );
      const agents = db.rows(
        `SELECT id, name, tool, role, status, current_task, session_id AS session, heartbeat_at FROM work_agent
         WHERE ${inModule} ORDER BY updated_at DESC LIMIT ?3`, ...at,
      );
      return { sessions: page(sessions, limit, 2), agents: page(agents, limit, 2) };
    },
  }),
  tool({
    name: "dev_work_decisions",
    effect: "read",
    description: "Decisions of a module by risk; by default those that wait for the user.",
    input: { ...ofModule, status: z.enum(["proposed", "approved", "rejected"]).default("proposed") },
    run({ module, context, status, limit }, { db }) {
      const rows = db.rows(
        `SELECT id, title, status, proposal, rationale, risk, decided_by, updated_at FROM work_decision
         WHERE ${inModule} AND status=?3 ORDER BY CASE risk WHEN 'money' THEN 0 WHEN 'credential' THEN 1
           WHEN 'external' THEN 2 WHEN 'high' THEN 3 ELSE 4 END, updated_at DESC LIMIT ?4`,
        module, context ?? "", status, limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "dev_work_memory",
    effect: "read",
    description: "What agents proposed to remember about the work in a module, and what the user decided.",
    input: ofModule,
    run({ module, context, limit }, { db }) {
      const rows = db.rows(
        `SELECT id, kind, body, source, confidence, status, owner, updated_at FROM work_memory WHERE ${inModule}
         ORDER BY CASE status WHEN 'proposed' THEN 0 WHEN 'approved' THEN 1 ELSE 2 END, updated_at DESC LIMIT ?3`,
        module, context ?? "", limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "dev_requirements",
    effect: "read",
    description: "The requirements of a project, as the user wrote them.",
    input: { project: field.line("Slug or id of a project.") },
    run({ project }, { db }) {
      const row = db.row("SELECT * FROM dev_srs WHERE project_id=?", projectOf(db, project));
      if (!row) throw new Refusal(`No requirements are written down for ${project}.`);
      return clip(row);
    },
  }),
];
