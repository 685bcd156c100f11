import { z } from "zod";
import { Refusal, type Columns } from "./database.ts";
import { contactOf, conversationOf, personBehind } from "./find.ts";
import { addWork, makeRoom, write } from "./report.ts";
import { field, stampedId, tool, type Call } from "./tool.ts";

// What agents propose to the user. Each row waits; the desktop acts on it after the user's decision.

const waits = { waits_for: "a person, under Approvals" };

interface CrmProposal {
  kind: "note" | "task" | "event";
  title: string;
  contact?: string | undefined;
  payload: object;
}

function proposeToCrm(call: Call, { kind, title, contact, payload }: CrmProposal): object {
  const { db, workspace, now } = call;
  const person = contact ? String(contactOf(db, workspace, personBehind(db, contact)).contact) : undefined;
  const ms = now.getTime();
  const id = write(call, "prop", ({ id, db }) => {
    makeRoom(db, "crm_update_proposal", "pending");
    db.insert("crm_update_proposal", {
      id, workspace_id: workspace, contact_id: person, kind, title, payload_json: JSON.stringify(payload),
      status: "pending", created_at: ms, updated_at: ms,
    });
  });
  return { id, ...waits };
}

function proposeWork(
  call: Call,
  table: string,
  prefix: string,
  where: { module: string; context?: string | undefined },
  columns: Columns,
): string {
  return write(call, prefix, (fresh) => {
    makeRoom(fresh.db, table, "proposed");
    addWork(fresh, table, where, { ...columns, status: "proposed", updated_at: fresh.at });
  });
}

export const proposingTools = [
  tool({
    name: "inbox_propose_draft",
    effect: "propose",
    description: "Prepares a message for a conversation. The user reads it, can edit it, and decides whether to send it.",
    input: { conversation: field.id("Id of a conversation, from inbox_list."), body: field.text("The full text of the message.") },
    run({ conversation, body }, { store, db, workspace, now }) {
      const to = conversationOf(db, workspace, conversation);
      const id = stampedId("od", now);
      const ms = now.getTime();
      store.writer.transaction(() => {
        makeRoom(store.writer, "outbound_draft", "pending");
        store.writer.insert("outbound_draft", {
          id, workspace_id: workspace, conversation_id: conversation, channel: to.channel ?? "",
          account_id: to.account_id ?? "", external_id: to.external_id ?? "", title: to.title ?? "", body,
          status: "pending", source: "mcp", created_at: ms, updated_at: ms,
        });
      });
      return { id, ...waits };
    },
  }),
  tool({
    name: "crm_propose_note",
    effect: "propose",
    description: "Proposes a note on a person.",
    input: {
      contact: field.id("Id of a person."),
      body: field.text("The note."),
      title: field.line("Title of the proposal.").default("Add a note"),
    },
    run: ({ contact, body, title }, call) => proposeToCrm(call, { kind: "note", title, contact, payload: { body } }),
  }),
  tool({
    name: "crm_propose_task",
    effect: "propose",
    description: "Proposes a task, about a person or not.",
    input: {
      title: field.line("What to do."),
      contact: field.id("Id of the person that it is about.").optional(),
      due: field.line('When, as free text, such as "Friday" or "2026-03-01".').optional(),
      priority: z.enum(["Low", "Normal", "High"]).default("Normal"),
    },
    run: ({ title, contact, due = "", priority }, call) =>
      proposeToCrm(call, { kind: "task", title, contact, payload: { title, due, priority } }),
  }),
  tool({
    name: "calendar_propose_event",
    effect: "propose",
    description: "Proposes an event for the calendar. Nobody is invited.",
    input: {
      title: field.line("Title of the event."),
      start: field.time("When it starts."),
      end: field.time("When it ends."),
      location: field.line("Where.").optional(),
      notes: field.text("Details.").optional(),
      calendar: field.line("Name of the calendar; by default the usual one.").optional(),
      contact: field.id("Id of the person that it is about.").optional(),
    },
    run({ title, start, end, location = "", notes = "", calendar = "", contact }, call) {
      const startMs = Date.parse(start);
      const endMs = Date.parse(end);
      if (endMs <= startMs) throw new Refusal("The event ends before it starts.");
      return proposeToCrm(call, {
        kind: "event", title, contact, payload: { title, startMs, endMs, location, notes, calendar },
      });
    },
  }),
  tool({
    name: "ops_propose_decision",
    effect: "propose",
    description:
      "Submits an action to the user: anything that sends, pays, deploys, deletes or uses a credential. The answer " +
      "appears in dev_work_decisions; approval does not execute anything.",
    input: {
      title: field.line("The action in a few words."),
      proposal: field.text("What exactly would be done."),
      rationale: field.text("Why.").optional(),
      risk: z.enum(["money", "credential", "external", "high", "normal"]).describe("The highest risk of the action."),
      module: field.module,
      context: field.context,
    },
    run({ module, context, rationale = "", ...asked }, call) {
      return { id: proposeWork(call, "work_decision", "dec", { module, context }, { rationale, ...asked, decided_by: "" }), ...waits };
    },
  }),
  tool({
    name: "dev_propose_memory",
    effect: "propose",
    description: "Proposes something to remember about the work; the user confirms or rejects it.",
    input: {
      body: field.text("What to remember."),
      kind: field.line('Such as "fact", "decision" or "pitfall".').default("fact"),
      source: field.line("Where it comes from.").optional(),
      confidence: z.enum(["low", "medium", "high"]).default("medium"),
      module: field.module,
      context: field.context,
    },
    run({ module, context, source = "mcp", ...fact }, call) {
      const row = { source, ...fact, owner: "", verified_at: "" };
      return { id: proposeWork(call, "work_memory", "mem", { module, context }, row), waits_for: "a person, in the module's memory" };
    },
  }),
];
