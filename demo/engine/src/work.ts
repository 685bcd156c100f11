// What people and agents of the demo work on: contexts with items, decisions and messages, and the projects whose
// agents report.

import { minute } from "./clock.ts";
import { contentOf } from "./content.ts";

type Insert = (table: string, row: Record<string, string | number>) => void;

interface Item { id: string; kind: string; title: string; status: string; priority: string; owner: string; summary: string; minutes: number }
interface Context {
  module: string; kind: string; slug: string; title: string; subtitle: string; owner: string; ref?: string; minutes: number;
  items: Item[];
  decisions: { item: string; status: string; proposal: string; rationale: string; risk: string; minutes: number }[];
  evidence: { item?: string; kind: string; title: string; source: string; summary: string; minutes: number }[];
  messages: { speaker: string; role: string; kind: string; body: string; minutes: number }[];
  agents: { name: string; tool: string; role: string; status: string; task: string; minutes: number }[];
  memory: { kind: string; body: string; source: string; status: string; minutes: number }[];
}
interface Project {
  id: string; name: string; goal: string; category: string; priority: number; repo: string; minutes: number;
  tabs: { id: string; name: string; role: string; model: string; task: string; minutes: number }[];
  updates: { kind: string; body: string; minutes: number }[];
  asks: { question: string; urgency: string; answer?: string; by?: string; minutes: number }[];
  srs?: { overview: string; users: string; requirements: string; modules: string; acceptance: string; constraints: string; openQuestions: string };
}
export interface Work { contexts: Context[]; projects: Project[] }

export function readWork(): Work {
  return JSON.parse(contentOf("work.json")) as Work;
}

/** A time in the format of the work records. */
export function stamp(ms: number): string {
  return new Date(ms).toISOString().replace(/\.\d+Z$/, "Z");
}

export function writeWork(since: number, insert: Insert): void {
  const { contexts, projects } = readWork();
  for (const context of contexts) writeContext(context, (minutes) => stamp(since - minutes * minute), insert);
  for (const project of projects) writeProject(project, (minutes) => stamp(since - minutes * minute), insert);
}

function writeContext(context: Context, at: (minutes: number) => string, insert: Insert): void {
  const { module, slug } = context;
  const id = `ctx:${module}:${slug}`;
  const own = { context_id: id, module };
  const rowId = (prefix: string, rest: string | number): string => `${prefix}:demo:${slug}:${rest}`;
  insert("work_context", {
    id, module, kind: context.kind, slug, title: context.title, subtitle: context.subtitle, status: "active",
    owner: context.owner, external_ref: context.ref ?? "", created_at: at(context.minutes + 30_000), updated_at: at(context.minutes),
  });
  for (const { id: name, minutes, ...item } of context.items)
    insert("work_item", { id: rowId("item", name), ...own, ...item, source: "demo", created_at: at(minutes + 600), updated_at: at(minutes) });
  context.decisions.forEach(({ item, minutes, ...decision }, index) =>
    insert("work_decision", {
      id: rowId("dec", index), ...own, title: `Review ${context.items.find((each) => each.id === item)!.title}`,
      ...decision, decided_by: "", created_at: at(minutes), updated_at: at(minutes),
    }),
  );
  context.evidence.forEach(({ item, minutes, ...evidence }, index) =>
    insert("work_evidence", {
      id: rowId("ev", index), ...own, ...(item ? { item_id: rowId("item", item) } : {}), ...evidence, uri: "", created_at: at(minutes),
    }),
  );
  context.messages.forEach(({ minutes, ...message }, index) =>
    insert("work_message", { id: rowId("msg", index), ...own, ...message, status: "posted", created_at: at(minutes) }),
  );
  for (const { minutes, task, ...agent } of context.agents) {
    const session = rowId("sess", agent.name);
    const times = { heartbeat_at: at(minutes), created_at: at(minutes + 90), updated_at: at(minutes) };
    insert("work_session", { id: session, ...own, purpose: task, owner: agent.name, tool: agent.tool, status: agent.status, ...times });
    insert("work_agent", { id: rowId("agent", agent.name), ...own, ...agent, current_task: task, session_id: session, ...times });
  }
  context.memory.forEach(({ minutes, ...memory }, index) =>
    insert("work_memory", {
      id: rowId("mem", index), ...own, ...memory, confidence: "medium", owner: memory.source,
      created_at: at(minutes), updated_at: at(minutes),
    }),
  );
}

function writeProject(project: Project, at: (minutes: number) => string, insert: Insert): void {
  const { id, name, goal, category, priority, minutes } = project;
  insert("project", {
    id: `proj:${id}`, slug: id, name, goal, status: "active", priority, category, repo_path: project.repo,
    created_at: at(minutes + 40_000), updated_at: at(minutes),
  });
  for (const { id: tab, minutes: heard, task, ...rest } of project.tabs)
    insert("tab", {
      id: `tab:${tab}`, current_project_id: `proj:${id}`, ...rest, status: "running", interval_sec: 600, current_task: task,
      heartbeat_at: at(heard), created_at: at(heard + 2000),
    });
  project.updates.forEach(({ minutes: told, ...update }, index) =>
    insert('"update"', { id: `upd:${id}:${index}`, project_id: `proj:${id}`, tab_id: `tab:${project.tabs[0].id}`, ts: at(told), ...update, created_at: at(told) }),
  );
  project.asks.forEach(({ minutes: asked, answer, by, ...ask }, index) =>
    insert("ask", {
      id: `ask:demo:${id}:${index}`, project_id: `proj:${id}`, tab_id: `tab:${project.tabs[0].id}`, ts: at(asked), ...ask,
      ...(answer ? { status: "answered", answer, answered_by: by ?? "", answered_at: at(asked - 30) } : { status: "open" }),
    }),
  );
  if (!project.srs) return;
  const { openQuestions, ...srs } = project.srs;
  insert("dev_srs", { project_id: `proj:${id}`, ...srs, open_questions: openQuestions, updated_at: at(minutes + 3000) });
}
