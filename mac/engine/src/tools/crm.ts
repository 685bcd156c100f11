import { z } from "zod";
import { contactOf, personBehind } from "./find.ts";
import { field, page, tool } from "./tool.ts";

export const crmTools = [
  tool({
    name: "crm_people",
    effect: "read",
    description: "People and groups by name, address or number; who wrote last comes first.",
    input: { query: z.string().trim().max(200).default("").describe("Empty for everybody."), limit: field.limit(20) },
    run({ query, limit }, { db, workspace }) {
      const pattern = `%${query.replace(/[\\%_]/g, "\\$&")}%`;
      const rows = db.rows(
        `SELECT ct.id AS contact, ct.display_name AS name, group_concat(DISTINCT c.channel) AS channels,
           MAX(c.last_ts) AS last_ms
         FROM contact ct JOIN unified_conversation c ON c.contact_id=ct.id AND c.deleted_at IS NULL
         WHERE ct.workspace_id=?1 AND ct.deleted_at IS NULL AND (ct.display_name LIKE ?2 ESCAPE '\\'
           OR EXISTS (SELECT 1 FROM contact_identity i WHERE i.contact_id=ct.id AND i.deleted_at IS NULL
             AND (i.handle LIKE ?2 ESCAPE '\\' OR i.email LIKE ?2 ESCAPE '\\' OR i.phone LIKE ?2 ESCAPE '\\')))
         GROUP BY ct.id ORDER BY MAX(c.last_ts) DESC LIMIT ?3`,
        workspace, pattern, limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "crm_deals",
    effect: "read",
    description: "Deals, last changed first.",
    input: {
      contact: field.id("Only those of this person.").optional(),
      stage: field.line("Only this stage.").optional(),
      limit: field.limit(50),
    },
    run({ contact, stage, limit }, { db, workspace }) {
      const person = contact && personBehind(db, contact);
      const rows = db.rows(
        `SELECT id, contact_id AS contact, name, company, stage, value, close_date, updated_at AS updated_ms
         FROM crm_deal WHERE workspace_id=?1 AND deleted_at IS NULL AND (?2='' OR contact_id=?2)
           AND (?3='' OR lower(stage)=lower(?3)) ORDER BY updated_at DESC LIMIT ?4`,
        workspace, person ?? "", stage ?? "", limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "crm_tasks",
    effect: "read",
    description: "Tasks of the CRM, last changed first.",
    input: {
      contact: field.id("Only those of this person.").optional(),
      done: z.boolean().default(false).describe("Includes tasks that are done."),
      limit: field.limit(50),
    },
    run({ contact, done, limit }, { db, workspace }) {
      const person = contact && personBehind(db, contact);
      const rows = db.rows(
        `SELECT id, contact_id AS contact, title, due, priority, status, updated_at AS updated_ms
         FROM crm_task WHERE workspace_id=?1 AND deleted_at IS NULL AND (?2='' OR contact_id=?2)
           AND (?3=1 OR lower(status) NOT IN ('done','completed','closed')) ORDER BY updated_at DESC LIMIT ?4`,
        workspace, person ?? "", done ? 1 : 0, limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "crm_notes",
    effect: "read",
    description: "Notes on one person, newest first.",
    input: { contact: field.id("Id of a person."), limit: field.limit(30) },
    run({ contact, limit }, { db, workspace }) {
      const id = personBehind(db, contact);
      contactOf(db, workspace, id);
      const rows = db.rows(
        `SELECT id, body, ts AS at_ms FROM contact_note WHERE contact_id=? AND workspace_id=? AND deleted_at IS NULL
         ORDER BY ts DESC LIMIT ?`,
        id, workspace, limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "crm_proposals",
    effect: "read",
    description: "Changes that were proposed to the user, newest first, with the outcome.",
    input: { status: z.enum(["pending", "applied", "rejected"]).default("pending"), limit: field.limit(30) },
    run({ status, limit }, { db, workspace }) {
      const rows = db.rows(
        `SELECT id, kind, contact_id AS contact, call_id AS call, title, payload_json AS payload, status, error,
           created_at AS created_ms
         FROM crm_update_proposal WHERE workspace_id=? AND status=? ORDER BY created_at DESC LIMIT ?`,
        workspace, status, limit + 1,
      );
      return page(rows, limit);
    },
  }),
];
