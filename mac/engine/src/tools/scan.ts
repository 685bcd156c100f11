import { Refusal } from "./database.ts";
import { projectOf } from "./find.ts";
import { look, type Finding } from "./page.ts";
import { addWork, freshId, write } from "./report.ts";
import { field, tool, type Call } from "./tool.ts";

interface Scan {
  project: string;
  url: string;
  finding: Finding;
}

/** One row for each page of a project, and one line of evidence for each scan. */
function note(call: Call, { project, url, finding }: Scan): string {
  const { title, status, problems } = finding;
  return write(call, "ev", (fresh) => {
    const { db, at } = fresh;
    const known = db.row("SELECT id FROM dev_browser_session WHERE project_id=? AND url=? AND engine='http'", project, url);
    db.run(
      `INSERT INTO dev_browser_session(id, project_id, title, url, engine, status, last_capture_path, last_error, created_at, updated_at)
       VALUES(?,?,?,?,'http','captured','',?,?,?)
       ON CONFLICT(id) DO UPDATE SET title=excluded.title, status=excluded.status, last_error=excluded.last_error,
         updated_at=excluded.updated_at`,
      String(known?.id ?? freshId("browser")), project, title, url, problems[0] ?? "", at, at,
    );
    const context = db.row(
      `SELECT c.id FROM work_context c JOIN project p ON p.slug=c.slug WHERE c.module='dev' AND p.id=?`, project,
    )?.id;
    const summary = [`HTTP ${status}, ${finding.parts} parts looked at, ${problems.length} problems`, ...problems].join("\n");
    const row = { kind: "browser-scan", title: `Scan of ${url}`, source: "dev_browser_scan", uri: url, summary };
    addWork(fresh, "work_evidence", { module: "dev", context: context ? String(context) : undefined }, row);
  });
}

export const scanTools = [
  tool({
    name: "dev_browser_scan",
    effect: "report",
    description:
      "Checks a page that is served on this machine, without running its scripts: the " +
      "page and the scripts, styles and images that it refers to. Problems are recorded as evidence.",
    input: {
      project: field.line("Slug or id of a project."),
      url: field.line('Address on this machine, such as "http://localhost:3000/".'),
    },
    async run({ project, url }, call) {
      const id = projectOf(call.db, project);
      const page = URL.parse(url);
      if (!page) throw new Refusal(`${url} is no address.`);
      const finding = await look(page);
      return { ...finding, evidence: note(call, { project: id, url: page.href, finding }) };
    },
  }),
];
