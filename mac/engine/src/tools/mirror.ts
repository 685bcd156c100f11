import { z } from "zod";
import type { Connection } from "./database.ts";
import type { Writable } from "./guard.ts";

// Stores rows from the web. They never overwrite better local rows, and what both sides have (a conversation, a
// message) is kept once, under the local id.

const text = z.string().max(100_000);
const id = z.string().min(1).max(400);
const ms = z.int().nonnegative();
const place = { channel: id, externalId: id }; // identifies a conversation
const optional = { text: text.nullish(), id: id.nullish(), ms: ms.nullish() };

export const page = z.object({
  cursor: ms,
  more: z.boolean().default(false),
  contacts: z
    .array(
      z.object({
        id,
        name: optional.text,
        deletedAt: optional.ms,
        identities: z
          .array(z.object({ channel: id, handle: id, email: optional.text, phone: optional.text }))
          .max(100)
          .default([]),
      }),
    )
    .default([]),
  deals: z
    .array(
      z.object({
        id, contactId: optional.id, name: text, company: optional.text, stage: optional.text, value: optional.text,
        closeDate: optional.text, deletedAt: optional.ms,
      }),
    )
    .default([]),
  tasks: z
    .array(
      z.object({
        id, contactId: optional.id, title: text, due: optional.text, priority: optional.text,
        status: z.string().max(100).default("To do"), deletedAt: optional.ms,
      }),
    )
    .default([]),
  conversations: z
    .array(
      z.object({
        ...place, accountId: text.default(""), title: optional.text, contactId: optional.id, lastTs: ms,
        unread: ms.default(0), archivedAt: optional.ms, deletedAt: optional.ms,
      }),
    )
    .default([]),
  messages: z
    .array(
      z.object({
        id, ...place, direction: z.enum(["IN", "OUT"]), body: optional.text, sender: optional.text, ts: ms,
        providerMsgId: optional.id, attachments: z.array(z.unknown()).nullish(), deletedAt: optional.ms,
      }),
    )
    .default([]),
  drafts: z.array(z.object({ id, ...place, body: text.min(1) })).default([]),
});

export type Page = z.output<typeof page>;

/** What a pull may change: it can queue a draft but not release one. */
export const mirrored: Writable = {
  sync_workspace: "both",
  sync_command: "update",
  sync_health: "both",
  _sync_state: "both",
  contact: "both",
  contact_identity: "both",
  crm_deal: "both",
  crm_task: "both",
  unified_conversation: "both",
  unified_message: "both",
  outbound_draft: "insert",
};

type Rows<Kind extends keyof Page> = Extract<Page[Kind], unknown[]>;

/** Writes the pages of one pull, into one workspace and with one timestamp. */
export class Mirror {
  readonly #db: Connection;
  readonly #workspace: string;
  readonly #now: number;

  constructor(db: Connection, workspace: string, now: Date) {
    this.#db = db;
    this.#workspace = workspace;
    this.#now = now.getTime();
  }

  /** Writes one page within the caller's transaction; returns the number of its rows. */
  write(rows: Page): number {
    this.#contacts(rows.contacts);
    this.#deals(rows.deals);
    this.#tasks(rows.tasks);
    this.#conversations(rows.conversations);
    this.#messages(rows.messages);
    this.#drafts(rows.drafts);
    return Object.values(rows).reduce((sum: number, part) => sum + (Array.isArray(part) ? part.length : 0), 0);
  }

  #id(kind: string, of: string): string {
    return `web:${this.#workspace}:${kind}:${of}`;
  }

  #person(of: string | null | undefined): string | null {
    return of ? this.#id("contact", of) : null;
  }

  /** The local conversation, if it was mirrored here and pushed to the web. */
  #conversation(channel: string, externalId: string): string {
    const own = this.#db.row(
      `SELECT id FROM unified_conversation WHERE workspace_id=? AND channel=? AND external_id=? AND id LIKE 'wa:%' LIMIT 1`,
      this.#workspace, channel, externalId,
    );
    return own ? String(own.id) : this.#id(channel, externalId);
  }

  #contacts(contacts: Rows<"contacts">): void {
    for (const { id: of, name, deletedAt, identities } of contacts) {
      this.#db.run(
        `INSERT INTO contact(id, workspace_id, display_name, updated_at, deleted_at) VALUES(?,?,?,?,?)
         ON CONFLICT(id) DO UPDATE SET display_name=COALESCE(NULLIF(excluded.display_name,''), display_name),
           updated_at=excluded.updated_at, deleted_at=excluded.deleted_at`,
        this.#id("contact", of), this.#workspace, name ?? null, this.#now, deletedAt ?? null,
      );
      for (const { channel, handle, email, phone } of identities)
        this.#db.run(
          `INSERT INTO contact_identity(id, workspace_id, contact_id, channel, handle, email, phone, updated_at)
           VALUES(?,?,?,?,?,?,?,?) ON CONFLICT(id) DO UPDATE SET email=COALESCE(excluded.email, email),
             phone=COALESCE(excluded.phone, phone), updated_at=excluded.updated_at`,
          this.#id("identity", `${of}:${channel}:${handle}`), this.#workspace, this.#id("contact", of), channel, handle,
          email?.toLowerCase() ?? null, phone?.replace(/\D/g, "") ?? null, this.#now,
        );
    }
  }

  #deals(deals: Rows<"deals">): void {
    for (const { id: of, contactId, name, company, stage, value, closeDate, deletedAt } of deals)
      this.#db.run(
        `INSERT INTO crm_deal(id, workspace_id, contact_id, name, company, stage, value, close_date, updated_at, deleted_at)
         VALUES(?,?,?,?,?,?,?,?,?,?) ON CONFLICT(id) DO UPDATE SET contact_id=COALESCE(excluded.contact_id, contact_id),
           name=excluded.name, company=COALESCE(excluded.company, company), stage=COALESCE(excluded.stage, stage),
           value=COALESCE(excluded.value, value), close_date=COALESCE(excluded.close_date, close_date),
           updated_at=excluded.updated_at, deleted_at=excluded.deleted_at`,
        this.#id("deal", of), this.#workspace, this.#person(contactId), name, company ?? null, stage ?? null,
        value ?? null, closeDate ?? null, this.#now, deletedAt ?? null,
      );
  }

  #tasks(tasks: Rows<"tasks">): void {
    for (const { id: of, contactId, title, due, priority, status, deletedAt } of tasks)
      this.#db.run(
        `INSERT INTO crm_task(id, workspace_id, contact_id, title, due, priority, status, updated_at, deleted_at)
         VALUES(?,?,?,?,?,?,?,?,?) ON CONFLICT(id) DO UPDATE SET contact_id=COALESCE(excluded.contact_id, contact_id),
           title=excluded.title, due=COALESCE(excluded.due, due), priority=COALESCE(excluded.priority, priority),
           status=excluded.status, updated_at=excluded.updated_at, deleted_at=excluded.deleted_at`,
        this.#id("task", of), this.#workspace, this.#person(contactId), title, due ?? null, priority ?? null, status,
        this.#now, deletedAt ?? null,
      );
  }

  #conversations(conversations: Rows<"conversations">): void {
    for (const row of conversations) {
      const id = this.#conversation(row.channel, row.externalId);
      if (id.startsWith("wa:")) continue;
      this.#db.run(
        `INSERT INTO unified_conversation(id, workspace_id, channel, account_id, external_id, title, contact_id, last_ts,
           unread, archived_at, updated_at, deleted_at) VALUES(?,?,?,?,?,?,?,?,?,?,?,?)
         ON CONFLICT(id) DO UPDATE SET title=COALESCE(excluded.title, title),
           contact_id=COALESCE(excluded.contact_id, contact_id),
           unread=CASE WHEN excluded.last_ts>last_ts THEN excluded.unread ELSE unread END,
           last_ts=MAX(excluded.last_ts, last_ts), archived_at=excluded.archived_at, updated_at=excluded.updated_at,
           deleted_at=excluded.deleted_at`,
        id, this.#workspace, row.channel, row.accountId, row.externalId, row.title ?? null, this.#person(row.contactId),
        row.lastTs, row.unread, row.archivedAt ?? null, this.#now, row.deletedAt ?? null,
      );
    }
  }

  #messages(messages: Rows<"messages">): void {
    for (const row of messages) {
      const conversation = this.#conversation(row.channel, row.externalId);
      const id = this.#id("msg", row.id);
      const provider = row.providerMsgId ?? null;
      const known = this.#db.row(
        "SELECT 1 FROM unified_message WHERE provider_msg_id=? AND conversation_id=? AND id<>?", provider, conversation, id,
      );
      if (known) continue;
      this.#db.run(
        `INSERT INTO unified_message(id, workspace_id, conversation_id, direction, body, sender, ts, provider_msg_id,
           attachments, source, updated_at, deleted_at) VALUES(?,?,?,?,?,?,?,?,?,'web',?,?)
         ON CONFLICT(id) DO UPDATE SET body=COALESCE(excluded.body, body), sender=COALESCE(excluded.sender, sender),
           attachments=COALESCE(excluded.attachments, attachments), updated_at=excluded.updated_at,
           deleted_at=excluded.deleted_at`,
        id, this.#workspace, conversation, row.direction, row.body ?? null, row.sender ?? null, row.ts, provider,
        row.attachments ? JSON.stringify(row.attachments) : null, this.#now, row.deletedAt ?? null,
      );
    }
  }

  /** A draft from the web waits for the user like any other. */
  #drafts(drafts: Rows<"drafts">): void {
    for (const { id: of, channel, externalId, body } of drafts)
      this.#db.run(
        `INSERT INTO outbound_draft(id, workspace_id, conversation_id, channel, account_id, external_id, title, body,
           status, source, web_message_id, created_at, updated_at)
         SELECT ?1, workspace_id, id, channel, account_id, external_id, COALESCE(title, external_id), ?2, 'pending',
           'web', ?3, ?4, ?4 FROM unified_conversation WHERE id=?5 AND deleted_at IS NULL
         ON CONFLICT(id) DO NOTHING`,
        this.#id("draft", of), body, of, this.#now, this.#conversation(channel, externalId),
      );
  }
}
