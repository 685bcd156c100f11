import { z } from "zod";
import { activeWorkspace, openWriter, type Connection, type Store } from "./database.ts";
import { Mirror, mirrored, page, type Page } from "./mirror.ts";
import type { Profile } from "./paths.ts";
import { Web, WebError } from "./web.ts";

// Processes the desktop's requests for the web: "web_pull" in sync_command. The state of each source is in sync_health.

const mostPages = 500; // per source and pull; the next pull gets the rest

const slug = z.string().nullish();
const bootstrap = z.object({
  organizations: z.array(
    z.object({
      id: z.string(),
      name: z.string(),
      slug,
      workspaces: z.array(z.object({ id: z.string(), name: z.string(), slug, isDefault: z.boolean().nullish() })),
    }),
  ),
});

interface Outcome {
  status: "ok" | "skipped" | "waiting_for_web" | "error";
  error?: string;
  counts?: object;
  cursor?: number;
}

class Skipped extends Error {}

function outcomeOf(error: unknown): Outcome {
  if (error instanceof Skipped) return { status: "skipped", error: error.message };
  const { message } = error as Error;
  if (error instanceof WebError && [404, 501].includes(error.status))
    return { status: "waiting_for_web", error: `The web doesn't offer this yet (HTTP ${error.status})` };
  if (error instanceof z.ZodError) return { status: "error", error: `Unexpected response shape: ${z.prettifyError(error)}` };
  return { status: "error", error: message };
}

/** One pull, from claiming its requests to finishing them. */
class Pull {
  readonly #db: Connection;
  readonly #web: Web;

  constructor(db: Connection, web: Web) {
    this.#db = db;
    this.#web = web;
  }

  /** The first error; undefined if everything was pulled. */
  async run(): Promise<string | undefined> {
    const sources = [
      ["bootstrap", () => this.#bootstrap()],
      ["crm", () => this.#pages("crm")],
      ["inbox", () => this.#pages("inbox")],
      ["outbound_drafts", () => this.#pages("outbound_drafts")],
    ] as const;
    let problem: string | undefined;
    for (const [source, pull] of sources) {
      this.#started(source);
      const outcome = await pull().catch(outcomeOf);
      this.#finished(source, outcome);
      if (outcome.status !== "ok") problem ??= outcome.error;
    }
    return problem;
  }

  #started(source: string): void {
    const now = Date.now();
    this.#db.run(
      `INSERT INTO sync_health(source, status, last_started_at, updated_at) VALUES(?,'running',?,?)
       ON CONFLICT(source) DO UPDATE SET status='running', last_started_at=excluded.last_started_at,
         updated_at=excluded.updated_at`,
      source, now, now,
    );
  }

  #finished(source: string, { status, error = "", counts = {}, cursor }: Outcome): void {
    const now = Date.now();
    this.#db.run(
      `UPDATE sync_health SET status=?, last_finished_at=?, cursor=COALESCE(?, cursor), counts_json=?, last_error=?,
         updated_at=? WHERE source=?`,
      status, now, cursor ?? null, JSON.stringify(counts), error, now, source,
    );
  }

  #needSignIn(): void {
    if (!this.#web.isSignedIn) throw new Skipped("Sign in first");
  }

  async #bootstrap(): Promise<Outcome> {
    this.#needSignIn();
    const { organizations } = bootstrap.parse(await this.#web.get(this.#web.bootstrapPath));
    const now = Date.now();
    let workspaces = 0;
    this.#db.transaction(() => {
      for (const organization of organizations)
        for (const { id, name, slug: workspaceSlug, isDefault } of organization.workspaces) {
          workspaces += this.#db.run(
            `INSERT INTO sync_workspace(workspace_id, workspace_name, workspace_slug, org_id, org_name, org_slug, is_default, updated_at)
             VALUES(?,?,?,?,?,?,?,?) ON CONFLICT(workspace_id) DO UPDATE SET workspace_name=excluded.workspace_name,
               workspace_slug=excluded.workspace_slug, org_id=excluded.org_id, org_name=excluded.org_name,
               org_slug=excluded.org_slug, is_default=excluded.is_default, updated_at=excluded.updated_at`,
            id, name, workspaceSlug ?? "", organization.id, organization.name, organization.slug ?? "",
            isDefault ? 1 : 0, now,
          );
        }
    });
    return { status: "ok", counts: { organizations: organizations.length, workspaces } };
  }

  /** Gets page after page from where the last pull ended; each page and its cursor are one transaction. */
  async #pages(source: string): Promise<Outcome> {
    this.#needSignIn();
    const workspace = activeWorkspace(this.#db);
    if (workspace === "local") throw new Skipped("No workspace of the web is chosen");
    const place = `${source}:${workspace}`;
    let cursor = Number(this.#db.row("SELECT last_pulled FROM _sync_state WHERE table_name=?", place)?.last_pulled ?? 0);
    let rows = 0;
    for (let pages = 0; pages < mostPages; ++pages) {
      const query = { workspaceId: workspace, since: String(cursor) };
      const next: Page = page.parse(await this.#web.get(`${this.#web.pullPath}/${source}`, query));
      rows += this.#db.transaction(() => {
        this.#db.run(
          `INSERT INTO _sync_state(table_name, last_pulled) VALUES(?,?)
           ON CONFLICT(table_name) DO UPDATE SET last_pulled=MAX(excluded.last_pulled, COALESCE(last_pulled,0))`,
          place, next.cursor,
        );
        return new Mirror(this.#db, workspace, new Date()).write(next);
      });
      if (!next.more || next.cursor <= cursor) {
        cursor = Math.max(cursor, next.cursor);
        break;
      }
      cursor = next.cursor;
    }
    return { status: "ok", counts: { rows }, cursor };
  }
}

/** Looks for requests and processes all waiting ones with one pull. */
export class PullWorker {
  readonly #profile: Profile;
  readonly #store: Store;
  #busy = false;
  #resumed = false;

  constructor(profile: Profile, store: Store) {
    this.#profile = profile;
    this.#store = store;
  }

  /** Does nothing while a pull is running. */
  async look(): Promise<void> {
    if (this.#busy) return;
    this.#busy = true;
    try {
      if (this.#isAsked()) await this.#work();
    } finally {
      this.#busy = false;
    }
  }

  /** Restarts requests that an earlier server left "running". */
  #isAsked(): boolean {
    const waiting = this.#resumed ? "status='pending'" : "status IN ('pending','running')";
    return this.#store.reader.row(`SELECT 1 FROM sync_command WHERE kind='web_pull' AND ${waiting} LIMIT 1`) !== undefined;
  }

  async #work(): Promise<void> {
    const db = openWriter(this.#profile.database, mirrored);
    try {
      db.run(
        `UPDATE sync_command SET status='running', started_at=? WHERE kind='web_pull' AND status IN ('pending','running')`,
        Date.now(),
      );
      this.#resumed = true;
      const problem = await new Pull(db, new Web(this.#profile)).run();
      db.run(
        `UPDATE sync_command SET status=?, finished_at=?, error=? WHERE kind='web_pull' AND status='running'`,
        problem ? "error" : "done", Date.now(), problem ?? null,
      );
    } finally {
      db.close();
    }
  }
}
