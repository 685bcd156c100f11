import { spawn, type ChildProcess } from "node:child_process";
import { mkdirSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { createServer } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { DatabaseSync } from "node:sqlite";
import type { Readable } from "node:stream";
import { text } from "node:stream/consumers";
import type { TestContext } from "node:test";
import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StreamableHTTPClientTransport } from "@modelcontextprotocol/sdk/client/streamableHttp.js";

const repository = new URL("../../../", import.meta.url);
const read = (path: string): string => readFileSync(new URL(path, repository), "utf8");

/** Creates the desktop's schema in a database: its two files, then its list of steps. */
function applySchema(db: DatabaseSync): void {
  db.exec(read("local-schema/schema-v1.sql"));
  db.exec(read("local-schema/schema-ops-v1.sql"));
  const steps = read("Sources/Corvane/Store/Core/SchemaSteps.cpp").matchAll(
    /AddedColumn \{ "(\w+)", "([^"]*)" \}|Statement \{ (?:"([^"]*)"|R"\(([\s\S]*?)\)") \}|= R"\(([\s\S]*?)\)";/g,
  );
  for (const [, table, column, short, long, constant] of steps) {
    if (table === undefined) db.exec(short ?? long ?? constant ?? "");
    else if (!db.prepare("SELECT 1 FROM pragma_table_info(?) WHERE name=?").get(table, column?.split(" ")[0] ?? ""))
      db.exec(`ALTER TABLE ${table} ADD COLUMN ${column}`);
  }
}

const rows = `
INSERT INTO sync_workspace_selection VALUES('active','w1',NULL,0);
INSERT INTO contact(id,workspace_id,display_name,deleted_at) VALUES
  ('ct:ana','w1','Ana Ruiz',NULL), ('ct:ana2','w1','Ana (phone)',NULL), ('ct:gone','w1','Deleted Person',1),
  ('ct:other','w2','Other Workspace',NULL);
INSERT INTO contact_merge VALUES('mg:1','w1','ct:ana','ct:ana2','name','[]',1,NULL);
INSERT INTO contact_identity(id,workspace_id,contact_id,channel,handle,email) VALUES
  ('id:1','w1','ct:ana','EMAIL','ana@ruiz.example','ana@ruiz.example');
INSERT INTO unified_conversation(id,workspace_id,channel,account_id,external_id,title,contact_id,last_ts,unread,deleted_at) VALUES
  ('cv:ana','w1','EMAIL','mail','ana@ruiz.example','Ana','ct:ana',3000,1,NULL),
  ('cv:gone','w1','SMS','sms','+1','Deleted Person','ct:gone',4000,1,NULL),
  ('cv:cut','w1','SMS','sms','+2','Deleted chat',NULL,5000,1,9),
  ('cv:other','w2','EMAIL','mail','x@y.example','Other Workspace','ct:other',6000,1,NULL);
INSERT INTO unified_message(id,workspace_id,conversation_id,direction,body,ts,deleted_at) VALUES
  ('m1','w1','cv:ana','IN','the blue invoice',1000,NULL), ('m2','w1','cv:ana','OUT','100% paid',2000,NULL),
  ('m3','w1','cv:ana','IN','a deleted invoice',2500,7), ('m4','w1','cv:ana','IN','thanks',3000,NULL),
  ('m5','w1','cv:gone','IN','an invoice of nobody',4000,NULL), ('m6','w2','cv:other','IN','their invoice',6000,NULL);
INSERT INTO crm_task(id,workspace_id,contact_id,title,status,deleted_at) VALUES
  ('tk:1','w1','ct:ana','Call Ana','To do',NULL), ('tk:2','w1','ct:ana','Old','Done',NULL), ('tk:3','w2',NULL,'Theirs','To do',NULL);
INSERT INTO contact_note(id,workspace_id,contact_id,body,ts) VALUES('note:1','w1','ct:ana','Likes blue',1);
INSERT INTO calendar_event(id,workspace_id,title,start_ms,end_ms,updated_at) VALUES('ev:1','w1','Lunch',86400000,90000000,1);
INSERT INTO call_recording(id,workspace_id,contact_id,title,started_at,created_at,updated_at) VALUES('call:1','w1','ct:ana','Call',1,1,1);
INSERT INTO call_transcript(id,workspace_id,call_id,segment_index,text,created_at,updated_at) VALUES('s1','w1','call:1',0,'Hello',1,1);
INSERT INTO work_context(id,module,slug,title) VALUES('ctx:dev:shop','dev','shop','Shop');
INSERT INTO work_item(id,context_id,module,title,status,priority) VALUES
  ('item:1','ctx:dev:shop','dev','Fix the till','open','high'), ('item:2','ctx:dev:shop','dev','Done thing','done','high');
INSERT INTO project(id,slug,name) VALUES('p1','shop','Shop');
INSERT INTO ask(id,project_id,question) VALUES('ask:1','p1','Which colour?');
INSERT INTO message(id,project_id,to_tab_id,body) VALUES('msg:1','p1','tab:1','Stop at noon');
INSERT INTO outbound_draft(id,workspace_id,conversation_id,channel,account_id,external_id,body,created_at,updated_at)
  VALUES('od:1','w1','cv:ana','EMAIL','mail','ana@ruiz.example','Dear Ana',1,1);
INSERT INTO crm_update_proposal(id,workspace_id,kind,title,payload_json,created_at,updated_at) VALUES('pr:1','w1','note','T','{}',1,1);
INSERT INTO work_decision(id,module,title) VALUES('dec:1','dev','Deploy?');
INSERT INTO work_memory(id,module,body) VALUES('mem:1','dev','Blue is the colour');
INSERT INTO dev_srs(project_id,overview) VALUES('p1','A shop');
`;

export interface Profile {
  home: string;
  folder: string; ///< where the database and the secrets lie
  db: DatabaseSync;
}

/** A home with a database of the real schema and a few rows; removed after the test. */
export function makeProfile(t: TestContext): Profile {
  const home = mkdtempSync(join(tmpdir(), "corvane-tools-"));
  const folder = join(home, "share", "Corvane");
  mkdirSync(folder, { recursive: true });
  const db = new DatabaseSync(join(folder, "nimblocal.db"));
  db.exec("PRAGMA journal_mode=WAL");
  applySchema(db);
  db.exec(rows);
  t.after(() => {
    db.close();
    rmSync(home, { recursive: true, force: true });
  });
  return { home, folder, db };
}

async function freePort(): Promise<number> {
  const probe = createServer().listen(0, "127.0.0.1");
  await new Promise((resolve) => probe.once("listening", resolve));
  const address = probe.address();
  await new Promise((resolve) => probe.close(resolve));
  return typeof address === "object" && address ? address.port : 0;
}

export interface Running {
  url: string;
  token(): string;
  connect(): Promise<Client>;
}

/** The server's process as the program starts it. */
function spawnServer({ home }: Profile, port: string, errors: "inherit" | "pipe"): ChildProcess {
  const words = ["--max-old-space-size=96", "--max-semi-space-size=2", "--experimental-strip-types", "--no-warnings"];
  const places = { HOME: home, XDG_DATA_HOME: join(home, "share"), XDG_CONFIG_HOME: join(home, "config") };
  return spawn(process.execPath, [...words, new URL("mac/engine/src/nimb-mcp.ts", repository).pathname], {
    env: { ...process.env, ...places, NIMB_MCP_PORT: port },
    stdio: ["ignore", "ignore", errors],
  });
}

/** The last line of a server that is expected to exit. */
export async function lastWords(profile: Profile, port: string): Promise<string | undefined> {
  const { stderr } = spawnServer(profile, port, "pipe");
  return (await text(stderr as Readable)).trim().split("\n").at(-1);
}

/** The real server; it accepts calls when this returns, and ends with the test. */
export async function startServer(t: TestContext, profile: Profile): Promise<Running> {
  const port = await freePort();
  const child = spawnServer(profile, String(port), "inherit");
  const ended = new Promise((resolve) => child.once("exit", resolve));
  t.after(async () => {
    child.kill();
    await ended;
  });
  const url = `http://127.0.0.1:${port}/mcp`;
  const token = (): string => readFileSync(join(profile.folder, "mcp-token"), "utf8").trim();
  while (child.exitCode === null && !(await fetch(url).catch(() => undefined)));
  const connect = async (): Promise<Client> => {
    const client = new Client({ name: "tests", version: "1" });
    const headers = { authorization: `Bearer ${token()}` };
    await client.connect(new StreamableHTTPClientTransport(new URL(url), { requestInit: { headers } }));
    t.after(() => client.close());
    return client;
  };
  return { url, token, connect };
}

/** The text of an answer; `data` where it is JSON. */
export async function ask(client: Client, name: string, args: Record<string, unknown> = {}) {
  const result = await client.callTool({ name, arguments: args });
  const [content] = result.content as { text: string }[];
  const words = content?.text ?? "";
  return { failed: result.isError === true, words, data: result.isError ? undefined : JSON.parse(words) };
}
