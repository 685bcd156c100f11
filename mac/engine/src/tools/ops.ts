import { z } from "zod";
import { projectOf } from "./find.ts";
import { field, page, tool } from "./tool.ts";

const askColumns = `SELECT a.id, p.slug AS project, a.tab_id AS tab, a.ts AS at, a.question, a.urgency, a.status,
  a.answer, a.answered_by, a.answered_at FROM ask a LEFT JOIN project p ON p.id=a.project_id`;
const askOrder = `ORDER BY CASE a.status WHEN 'open' THEN 0 ELSE 1 END,
  CASE a.urgency WHEN 'high' THEN 0 WHEN 'normal' THEN 1 ELSE 2 END, COALESCE(a.answered_at, a.ts) DESC`;

const project = field.line("Slug or id of a project.").optional();

export const opsTools = [
  tool({
    name: "ops_projects",
    effect: "read",
    description: "Projects by priority, with their open asks and latest update.",
    input: { limit: field.limit(50) },
    run({ limit }, { db }) {
      const rows = db.rows(
        `SELECT p.id, p.slug, p.name, p.goal, p.status, p.category, COALESCE(p.priority,3) AS priority,
           p.repo_path, p.updated_at,
           (SELECT COUNT(*) FROM ask a WHERE a.project_id=p.id AND a.status='open') AS open_asks,
           (SELECT u.body FROM "update" u WHERE u.project_id=p.id ORDER BY u.ts DESC LIMIT 1) AS latest
         FROM project p ORDER BY COALESCE(p.priority,3), p.updated_at DESC LIMIT ?`,
        limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "ops_inbox",
    effect: "read",
    description:
      "Where an agent starts: orders for it, answers to its asks, asks that are still open, and decisions " +
      "that wait for the user.",
    input: { project, tab: field.id("Id of the agent's own tab, for its orders and asks only.").optional() },
    run({ project: named, tab = "" }, { db }) {
      const id = named ? projectOf(db, named) : "";
      const mine = "(?1='' OR a.project_id=?1) AND (?2='' OR a.tab_id=?2)";
      return {
        orders: page(
          db.rows(
            `SELECT a.id, p.slug AS project, a.to_tab_id AS tab, a.from_tab_id AS from_tab, a.ts AS at, a.body
             FROM message a LEFT JOIN project p ON p.id=a.project_id
             WHERE a.status='pending' AND (?1='' OR a.project_id=?1) AND (?2='' OR a.to_tab_id=?2)
             ORDER BY a.ts LIMIT 31`, id, tab,
          ), 30, 4,
        ),
        open_asks: page(db.rows(`${askColumns} WHERE a.status='open' AND ${mine} ${askOrder} LIMIT 31`, id, tab), 30, 4),
        answers: page(db.rows(`${askColumns} WHERE a.status='answered' AND ${mine} ${askOrder} LIMIT 11`, id, tab), 10, 4),
        waiting_decisions: page(
          db.rows(`SELECT id, module, title, risk, updated_at FROM work_decision WHERE status='proposed'
            ORDER BY updated_at DESC LIMIT 11`), 10, 4,
        ),
      };
    },
  }),
  tool({
    name: "ops_asks",
    effect: "read",
    description: "Questions of agents to the user: open ones by urgency, then answered ones if wanted.",
    input: { project, answered: z.boolean().default(false).describe("Includes answered ones."), limit: field.limit(50) },
    run({ project: named, answered, limit }, { db }) {
      const id = named ? projectOf(db, named) : "";
      const rows = db.rows(
        `${askColumns} WHERE (?1='' OR a.project_id=?1) AND (?2=1 OR a.status='open') ${askOrder} LIMIT ?3`,
        id, answered ? 1 : 0, limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "ops_updates",
    effect: "read",
    description: "Updates of one project or of all, newest first.",
    input: { project, limit: field.limit(30) },
    run({ project: named, limit }, { db }) {
      const rows = db.rows(
        `SELECT u.id, p.slug AS project, u.tab_id AS tab, u.ts AS at, u.kind, u.body
         FROM "update" u LEFT JOIN project p ON p.id=u.project_id
         WHERE (?1='' OR u.project_id=?1) ORDER BY u.ts DESC LIMIT ?2`,
        named ? projectOf(db, named) : "", limit + 1,
      );
      return page(rows, limit);
    },
  }),
];
