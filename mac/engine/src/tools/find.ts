import { Refusal, type Connection, type Row } from "./database.ts";

// Finds rows named in a call. Deleted rows and those of other workspaces do not exist.

/** The contact at the end of the id's merges; the id itself if they form a circle. */
export function personBehind(db: Connection, contact: string): string {
  const passed = new Set<string>();
  for (let id = contact; !passed.has(id); ) {
    passed.add(id);
    const merge = db.row(
      "SELECT primary_contact_id AS id FROM contact_merge WHERE merged_contact_id=? AND undone_at IS NULL LIMIT 1", id,
    );
    if (!merge) return id;
    id = String(merge.id);
  }
  return contact;
}

export function contactOf(db: Connection, workspace: string, id: string): Row {
  const row = db.row(
    "SELECT id AS contact, display_name AS name FROM contact WHERE id=? AND workspace_id=? AND deleted_at IS NULL",
    id, workspace,
  );
  if (!row) throw new Refusal(`There is no contact ${id} in this workspace.`);
  return row;
}

export function conversationOf(db: Connection, workspace: string, id: string): Row {
  const row = db.row(
    `SELECT c.id, c.channel, c.account_id, c.external_id, COALESCE(c.title, c.external_id) AS title
     FROM unified_conversation c LEFT JOIN contact ct ON ct.id=c.contact_id
     WHERE c.id=? AND c.workspace_id=? AND c.deleted_at IS NULL AND ct.deleted_at IS NULL`,
    id, workspace,
  );
  if (!row) throw new Refusal(`There is no conversation ${id} in this workspace.`);
  return row;
}

/** A project by its slug or its id. */
export function projectOf(db: Connection, named: string): string {
  const row = db.row("SELECT id FROM project WHERE slug=?1 OR id=?1 LIMIT 1", named);
  if (!row) throw new Refusal(`There is no project ${named}; ops_projects lists them.`);
  return String(row.id);
}

/** Refuses a context of another module, in which a row would not be listed; accepts an absent one. */
export function mustBeContext(db: Connection, module: string, id: string | undefined): void {
  if (id !== undefined && !db.row("SELECT 1 FROM work_context WHERE id=? AND module=?", id, module))
    throw new Refusal(`There is no work context ${id} in the module ${module}.`);
}

/** Refuses an id that does not exist; accepts an absent one. */
export function mustExist(db: Connection, table: string, id: string | undefined): void {
  if (id !== undefined && !db.row(`SELECT 1 FROM ${table} WHERE id=?`, id))
    throw new Refusal(`There is no ${table.replace("_", " ")} ${id}.`);
}
