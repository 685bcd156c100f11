import { z } from "zod";
import { Refusal, type Connection } from "./database.ts";
import { contactOf, conversationOf, mustBeContext, personBehind } from "./find.ts";
import { freshId, touchContext } from "./report.ts";
import { field, stamp, stampedId, tool, type Call } from "./tool.ts";

// What an agent puts before a person. Each row waits; what comes of it is the program's, on the person's word.

const mostWaiting = 200;
const waits = { waits_for: "a person, under Approvals" };

/** A person can't look through thousands: an agent that runs wild is stopped. */
function makeRoom(db: Connection, table: string, status: string): void {
  const waiting = db.row(`SELECT COUNT(*) AS n FROM ${table} WHERE status=?`, status)?.n;
  if (Number(waiting) >= mostWaiting)
    throw new Refusal(`${mostWaiting} of these wait already; a person has to look at them first.`);
}

interface CrmProposal {
  kind: "note" | "task" | "event";
  title: string;
  contact?: string | undefined;
  payload: object;
}

function proposeToCrm({ store, db, workspace, now }: Call, { kind, title, contact, payload }: CrmProposal): object {
  const person = contact ? String(contactOf(db, workspace, personBehind(db, contact)).contact) : null;
  const id = freshId("prop");
  const ms = now.getTime();
  store.writer.transaction(() => {
    makeRoom(store.writer, "crm_update_proposal", "pending");
    store.writer.run(
      `INSERT INTO crm_update_proposal(id, workspace_id, contact_id, kind, title, payload_json, status, created_at, updated_at)
       VALUES(?,?,?,?,?,?,'pending',?,?)`,
      id, workspace, person, kind, title, JSON.stringify(payload), ms, ms,
    );
  });
  return { id, ...waits };
}

export const proposingTools = [
  tool({
    name: "inbox_propose_draft",
    effect: "propose",
    description: "Prepares a message for a conversation. A person reads it, may change it, and sends it or not.",
    input: { conversation: field.id("Id of a conversation, from inbox_list."), body: field.text("The whole message.") },
    run({ conversation, body }, { store, db, workspace, now }) {
      const to = conversationOf(db, workspace, conversation);
      const id = stampedId("od", now);
      const ms = now.getTime();
      store.writer.transaction(() => {
        makeRoom(store.writer, "outbound_draft", "pending");
        store.writer.run(
          `INSERT INTO outbound_draft(id, workspace_id, conversation_id, channel, account_id, external_id, title, body,
             status, source, created_at, updated_at) VALUES(?,?,?,?,?,?,?,?,'pending','mcp',?,?)`,
          id, workspace, conversation, to.channel ?? "", to.account_id ?? "", to.external_id ?? "", to.title ?? "",
          body, ms, ms,
        );
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
      title: field.line("What the proposal is called.").default("Add a note"),
    },
    run: ({ contact, body, title }, call) => proposeToCrm(call, { kind: "note", title, contact, payload: { body } }),
  }),
  tool({
    name: "crm_propose_task",
    effect: "propose",
    description: "Proposes a task, for a person or on its own.",
    input: {
      title: field.line("What is to be done."),
      contact: field.id("Id of the person whom it is about.").optional(),
      due: field.line('When, in free words, such as "Friday" or "2026-03-01".').optional(),
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
      title: field.line("What the event is called."),
      start: field.time("When it starts."),
      end: field.time("When it ends."),
      location: field.line("Where.").optional(),
      notes: field.text("More about it.").optional(),
      calendar: field.line("Name of the calendar; the usual one where it is missing.").optional(),
      contact: field.id("Id of the person whom it is about.").optional(),
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
      "Holds an action for a person: anything that sends, pays, deploys, deletes or touches a credential. The answer " +
      "shows in dev_work_decisions; approval does nothing by itself.",
    input: {
      title: field.line("The action in a few words."),
      proposal: field.text("What exactly would be done."),
      rationale: field.text("Why.").optional(),
      risk: z.enum(["money", "credential", "external", "high", "normal"]).describe("The worst that it touches."),
      module: field.module,
      context: field.context,
    },
    run({ title, proposal, rationale = "", risk, module, context }, { store, now }) {
      const id = freshId("dec");
      const at = stamp(now);
      store.writer.transaction(() => {
        mustBeContext(store.writer, module, context);
        makeRoom(store.writer, "work_decision", "proposed");
        store.writer.run(
          `INSERT INTO work_decision(id, context_id, module, title, status, proposal, rationale, risk, decided_by, created_at, updated_at)
           VALUES(?,?,?,?,'proposed',?,?,?,'',?,?)`,
          id, context ?? null, module, title, proposal, rationale, risk, at, at,
        );
        touchContext(store.writer, context, at);
      });
      return { id, ...waits };
    },
  }),
  tool({
    name: "dev_propose_memory",
    effect: "propose",
    description: "Proposes something to remember of the work: a person confirms it or not.",
    input: {
      body: field.text("What to remember."),
      kind: field.line('Such as "fact", "decision" or "pitfall".').default("fact"),
      source: field.line("Where it comes from.").optional(),
      confidence: z.enum(["low", "medium", "high"]).default("medium"),
      module: field.module,
      context: field.context,
    },
    run({ body, kind, source = "mcp", confidence, module, context }, { store, now }) {
      const id = freshId("mem");
      const at = stamp(now);
      store.writer.transaction(() => {
        mustBeContext(store.writer, module, context);
        makeRoom(store.writer, "work_memory", "proposed");
        store.writer.run(
          `INSERT INTO work_memory(id, context_id, module, kind, body, source, confidence, status, owner, verified_at, created_at, updated_at)
           VALUES(?,?,?,?,?,?,?,'proposed','','',?,?)`,
          id, context ?? null, module, kind, body, source, confidence, at, at,
        );
        touchContext(store.writer, context, at);
      });
      return { id, waits_for: "a person, in the module's memory" };
    },
  }),
];
