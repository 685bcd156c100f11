// The scripts that start agents, with stand-ins for the tool server, the agent's program and ssh.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { mkdirSync, readFileSync, statSync, writeFileSync } from "node:fs";
import { connect, createServer } from "node:net";
import { join } from "node:path";
import { text } from "node:stream/consumers";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { StandIn } from "./stand-in.ts";
import { temporaryFolder } from "./support.ts";

const script = (name: string): string => fileURLToPath(new URL(`../../../scripts/${name}`, import.meta.url));
const task = `it's a "task" with $(touch made), \`touch made\`, \\ and\ttwo\nlines: 👍`;

type Called = { name: string; arguments: Record<string, string> };

/** A home with a tool server, and an agent's tool that keeps its prompt and ends with `code`. */
async function openDesk(code = 0, refuses = "") {
  const home = temporaryFolder(after);
  const called: Called[] = [];
  const standIn = await StandIn.open(({ fields, headers }) => {
    if (headers.authorization !== "Bearer local-token") return { status: 401, json: { error: { message: "no" } } };
    const { method, params } = fields as { method: string; params: Called };
    if (method === "tools/list") return { json: { result: { tools: [{ name: "ops_inbox" }, { name: "inbox_search" }] } } };
    called.push(params);
    const isError = params.name === refuses;
    const said = JSON.stringify(params.name === "ops_open_tab" ? { tab: "tab:mcp:1-a" } : { session: "sess:mcp:1-a" });
    return { json: { jsonrpc: "2.0", id: 1, result: { content: [{ type: "text", text: said }], isError } } };
  });
  after(() => standIn.close());
  const data = join(home, ".local/share/Corvane");
  mkdirSync(data, { recursive: true });
  writeFileSync(join(data, "mcp-token"), "local-token\n");
  const program = (name: string, body: string): string => {
    writeFileSync(join(home, name), `#!/bin/bash\n${body}\n`, { mode: 0o755 });
    return join(home, name);
  };
  const tool = program("tool", `cat >"${home}/prompt"\necho 'Done: "it" works \\o/'\nexit ${code}`);
  const env = { PATH: `${home}:${process.env.PATH}`, HOME: home, CORVANE_AGENT_TOOL: tool, NIMB_MCP_PORT: new URL(standIn.address).port };
  const run = async (name: string, words: string[], more: Record<string, string> = {}) => {
    const child = spawn(script(name), words, { cwd: home, env: { ...env, ...more }, stdio: ["ignore", "pipe", "pipe"] });
    const [out, err] = await Promise.all([text(child.stdout), text(child.stderr), once(child, "close")]);
    return { code: child.exitCode, out, err };
  };
  const relay = async (): Promise<string> => {
    const child = spawn(process.execPath, [script("corvane-agent-relay.mjs")], { env: { ...env, CORVANE_RELAY_PORT: "0" } });
    after(() => child.kill());
    const [line] = (await once(child.stdout.setEncoding("utf8"), "data")) as [string];
    return /http:\S+/.exec(line)?.[0] ?? "";
  };
  return { home, data, called, program, run, relay };
}

test("a unit of work is begun, done and reported, whatever its words hold", async () => {
  const { home, called, run } = await openDesk();
  const { code, out } = await run("corvane-work-agent.sh", ["dev", "shop", "worker-01", "implementer", task]);
  assert.deepEqual([code, out], [0, 'Done: "it" works \\o/\n']);
  assert.deepEqual(called.map(({ name }) => name), ["dev_session_start", "dev_report_message", "dev_report_evidence", "dev_session_heartbeat"]);
  const [start, message, evidence, end] = called.map((call) => call.arguments);
  assert.deepEqual(start, { agent: "worker-01", tool: "tool", purpose: task, role: "implementer", module: "dev", context: "ctx:dev:shop" });
  assert.deepEqual([message.body, message.session, end.status], ['Done: "it" works \\o/', "sess:mcp:1-a", "done"]);
  assert.match(evidence.summary, /ended with 0 .*it" works/);
  assert.ok(readFileSync(join(home, "prompt"), "utf8").includes(task));
  assert.throws(() => statSync(join(home, "made")), "no word of the task is run");
});

test("a tool that fails is reported, and nothing starts without a session", async () => {
  const words = ["dev", "-", "worker-01", "qa", "Look"];
  const failing = await openDesk(7);
  assert.equal((await failing.run("corvane-work-agent.sh", words)).code, 7);
  assert.deepEqual([failing.called[0].arguments.context, failing.called.at(-1)?.arguments.status], [undefined, "failed"]);
  const refusing = await openDesk(0, "dev_session_start");
  assert.equal((await refusing.run("corvane-work-agent.sh", words)).code, 3);
  assert.throws(() => statSync(join(refusing.home, "prompt")));
  for (const name of ["corvane-work-agent.sh", "corvane-server-agent.sh", "corvane-agent-tunnel.sh", "corvane-agent-relay.mjs"]) {
    assert.match((await refusing.run(name, ["--help"])).out, /^usage: /);
  }
});

test("the relay passes ops and dev tools to whoever holds its token, and nothing else", async () => {
  const { data, called, relay } = await openDesk();
  const address = await relay();
  const token = readFileSync(join(data, "relay-token"), "utf8").trim();
  assert.equal(statSync(join(data, "relay-token")).mode & 0o777, 0o600);
  const ask = async (body: unknown, headers: Record<string, string> = { authorization: `Bearer ${token}` }) => {
    const response = await fetch(address, { method: "POST", body: JSON.stringify(body), headers });
    return { status: response.status, said: (await response.json()) as { result: { tools: unknown } } };
  };
  const call = (name: string): object => ({ method: "tools/call", params: { name, arguments: {} } });
  assert.equal((await ask(call("ops_inbox"), {})).status, 401);
  assert.equal((await ask(call("ops_inbox"), { authorization: "Bearer local-token" })).status, 401);
  assert.equal((await ask(call("ops_inbox"), { authorization: `Bearer ${token}`, origin: "http://localhost" })).status, 403);
  for (const refused of [call("inbox_search"), call("crm_people"), { method: "resources/list" }]) assert.equal((await ask(refused)).status, 403);
  assert.equal((await ask([call("ops_inbox")])).status, 400);
  assert.equal(called.length, 0);
  assert.equal((await ask(call("dev_work_list"))).status, 200);
  assert.deepEqual((await ask({ method: "tools/list" })).said.result.tools, [{ name: "ops_inbox" }]);
});

test("on another machine the same work reports through the relay, and no secret is in a command line", async () => {
  const { home, data, called, program, run, relay } = await openDesk();
  const { port } = new URL(await relay());
  program("ssh", `printf '%s\\n' "$@" >>"${home}/ssh-words"\nexec bash -c "\${@: -1}"`);
  mkdirSync(join(home, ".corvane"));
  const tunnel = createServer((agent) => agent.pipe(connect(Number(port), "127.0.0.1")).pipe(agent));
  after(() => tunnel.close());
  await new Promise<void>((resolve) => tunnel.listen(join(home, ".corvane/agent.sock"), resolve));
  const words = ["shop", "worker-01", "implementer", task];
  const dry = await run("corvane-server-agent.sh", words, { CORVANE_AGENT_HOST: "agents", CORVANE_AGENT_DRY_RUN: "1" });
  const token = readFileSync(join(data, "relay-token"), "utf8").trim();
  assert.ok(dry.code === 0 && !dry.out.includes(token) && called.length === 0);
  const { code, err } = await run("corvane-server-agent.sh", words, { CORVANE_AGENT_HOST: "agents", NIMB_MCP_PORT: "1" });
  assert.equal(code, 0, err);
  assert.deepEqual([called[0].arguments.purpose, called[1].name, called.at(-2)?.name], [task, "ops_open_tab", "ops_report"]);
  assert.deepEqual(readFileSync(join(home, "ssh-words"), "utf8").split("\n").slice(0, 3), ["-T", "agents", "exec bash -s"]);
});

test("the tunnel ends in a socket that only its owner opens", async () => {
  const { home, program, run } = await openDesk();
  const closed = `(require("fs").statSync(process.argv[1], { throwIfNoEntry: false })?.mode & 511) === 384`;
  const listen = `require("net").createServer().listen(process.argv[1]); setInterval(() => ${closed} && process.exit(4), 20)`;
  program("ssh", `case " $* " in *" -N "*) echo "$*" >"${home}/words"; exec ${process.execPath} -e '${listen}' ~/.corvane/agent.sock;; esac\nexec bash -c "\${@: -1}"`);
  const { code, out } = await run("corvane-agent-tunnel.sh", ["agents"]);
  const socket = join(home, ".corvane/agent.sock");
  assert.deepEqual([code, out], [4, `Agents on agents reach the relay through ${socket}.\n`]);
  assert.match(readFileSync(join(home, "words"), "utf8"), new RegExp(`-R ${socket}:127.0.0.1:8766 agents`));
  assert.equal((await run("corvane-agent-tunnel.sh", ["-oProxyCommand=touch made"])).code, 2);
});
