#!/usr/bin/env node
// Passes calls of ops_* and dev_* tools from agents on another machine to the local tool server, and nothing else.

import { randomBytes, timingSafeEqual } from "node:crypto";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { createServer } from "node:http";
import { homedir } from "node:os";
import { join } from "node:path";

const help = `usage: node scripts/corvane-agent-relay.mjs

Listens on 127.0.0.1 until Ctrl+C. Whoever calls needs the token in the file relay-token beside Corvane's database (0600,
made at the first start; remove it to renew it at the next). Calls of ops_* and dev_* tools go on to the tool server with
that server's own token, which the caller never sees; everything else is refused. One line is printed for each call.

  CORVANE_RELAY_PORT  port to listen on (8766)
  NIMB_MCP_PORT       port of the tool server (8765)`;

if (process.argv.length > 2) {
  const isHelp = ["--help", "-h"].includes(process.argv[2]);
  console[isHelp ? "log" : "error"](help);
  process.exit(isHelp ? 0 : 2);
}

const port = Number(process.env.CORVANE_RELAY_PORT ?? 8766);
const server = `http://127.0.0.1:${Number(process.env.NIMB_MCP_PORT) || 8765}/mcp`;
const folder = join(process.env.XDG_DATA_HOME || join(homedir(), ".local/share"), "Corvane");
const longestRequest = 1_000_000;
const token = ownToken(join(folder, "relay-token"));

function ownToken(path) {
  try {
    mkdirSync(folder, { recursive: true, mode: 0o700 });
    writeFileSync(path, `${randomBytes(32).toString("base64url")}\n`, { mode: 0o600, flag: "wx" });
  } catch (error) {
    if (error.code !== "EEXIST") throw error;
  }
  return readFileSync(path, "utf8").trim();
}

class Refused extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;
  }
}

function admit({ headers, method, url }) {
  const given = Buffer.from(headers.authorization ?? "");
  const expected = Buffer.from(`Bearer ${token}`);
  if (headers.origin !== undefined) throw new Refused(403, "Web pages may not call the relay.");
  if (!/^(localhost|127\.0\.0\.1)(:\d+)?$/.test(headers.host ?? "")) throw new Refused(403, "The relay answers on this machine alone.");
  if (given.length !== expected.length || !timingSafeEqual(given, expected)) throw new Refused(401, "The relay's token is missing or wrong.");
  if (method !== "POST" || url !== "/mcp") throw new Refused(404, "There is only POST /mcp.");
}

async function requestIn(stream) {
  let text = "";
  for await (const part of stream.setEncoding("utf8")) {
    text += part;
    if (text.length > longestRequest) throw new Refused(413, "The request is too long.");
  }
  try {
    const request = JSON.parse(text);
    if (typeof request === "object" && request !== null && !Array.isArray(request)) return request;
  } catch {
    // as below
  }
  throw new Refused(400, "This is no single request.");
}

const isPassed = (name) => /^(ops|dev)_[a-z_]+$/.test(name);
const harmless = ["initialize", "notifications/initialized", "ping", "tools/list"];

async function passOn(request) {
  const { method, params } = request;
  const name = method === "tools/call" ? String(params?.name) : "";
  if (name ? !isPassed(name) : !harmless.includes(method)) throw new Refused(403, `The relay passes ops_* and dev_* alone, not ${name || method}.`);
  const localToken = readFileSync(join(folder, "mcp-token"), "utf8").trim();
  const headers = { authorization: `Bearer ${localToken}`, "content-type": "application/json", accept: "application/json, text/event-stream" };
  const answer = await fetch(server, { method: "POST", headers, body: JSON.stringify(request), redirect: "error" });
  const text = await answer.text();
  if (method !== "tools/list" || !answer.ok) return { status: answer.status, text };
  const list = JSON.parse(text);
  list.result.tools = list.result.tools.filter((tool) => isPassed(tool.name));
  return { status: answer.status, text: JSON.stringify(list) };
}

const relay = createServer(async (incoming, response) => {
  let said = "";
  try {
    admit(incoming);
    const request = await requestIn(incoming);
    said = ` ${request.params?.name ?? request.method}`;
    const { status, text } = await passOn(request);
    response.writeHead(status, { "content-type": "application/json" }).end(text);
  } catch (error) {
    const status = error instanceof Refused ? error.status : 502;
    const message = error instanceof Refused ? error.message : "The tool server does not answer: is Corvane running?";
    response.writeHead(status, { "content-type": "application/json", connection: "close" });
    response.end(JSON.stringify({ jsonrpc: "2.0", id: null, error: { code: -32000, message } }));
  }
  console.log(`${new Date().toISOString()}${said.replace(/[^\x20-\x7e]/g, "?").slice(0, 80)} ${response.statusCode}`);
});
relay.requestTimeout = 30_000;
relay.on("error", (error) => {
  console.error(error.code === "EADDRINUSE" ? `Another program uses port ${port}; CORVANE_RELAY_PORT names another one.` : error.message);
  process.exit(1);
});
relay.listen(port, "127.0.0.1", () => console.log(`The relay answers on http://127.0.0.1:${relay.address().port}/mcp`));
