// The local tool server of the demonstration: JSON-RPC over HTTP on the loopback interface, with one tool that reads.

import { createServer, type IncomingMessage, type ServerResponse } from "node:http";
import { contentOf } from "./content.ts";
import { readScript } from "./script.ts";

const longestRequest = 1_000_000;
const port = Number(process.env.NIMB_MCP_PORT) || 8765;

const tool = {
  name: "list_people",
  description: "The people and groups of the demonstration, with the channel on which they write.",
  inputSchema: { type: "object", properties: {}, additionalProperties: false },
  annotations: { readOnlyHint: true },
};

class Refusal extends Error {
  readonly code: number;

  constructor(code: number, message: string) {
    super(message);
    this.code = code;
  }
}

function people(): string {
  const rows = ["whatsapp", "email", "telegram"].flatMap((channel) =>
    readScript(channel, contentOf(`${channel}.chat`), Date.now()).map(({ name, handle, isGroup }) => ({
      name,
      channel,
      handle,
      kind: isGroup ? "group" : "contact",
    })),
  );
  return JSON.stringify(rows);
}

function call(method: unknown, params: Record<string, unknown>): unknown {
  switch (method) {
    case "initialize":
      return {
        protocolVersion: typeof params.protocolVersion === "string" ? params.protocolVersion : "2025-03-26",
        capabilities: { tools: {} },
        serverInfo: { name: "corvane-demo", version: "1" },
      };
    case "ping":
      return {};
    case "tools/list":
      return { tools: [tool] };
    case "tools/call":
      if (params.name !== tool.name) throw new Refusal(-32602, `There is no tool ${String(params.name)}`);
      return { content: [{ type: "text", text: people() }] };
  }
  throw new Refusal(-32601, `There is no method ${String(method)}`);
}

/** The answer to a request; nothing to a notification. */
function answer(body: string): unknown {
  let request: unknown;
  try {
    request = JSON.parse(body);
  } catch {
    return { jsonrpc: "2.0", id: null, error: { code: -32700, message: "This is not JSON" } };
  }
  if (typeof request !== "object" || request === null || !("method" in request)) {
    return { jsonrpc: "2.0", id: null, error: { code: -32600, message: "This is no request" } };
  }
  const { id, method, params } = request as { id?: unknown; method: unknown; params?: unknown };
  if (id === undefined) return undefined;
  try {
    const named = typeof params === "object" && params !== null ? (params as Record<string, unknown>) : {};
    return { jsonrpc: "2.0", id, result: call(method, named) };
  } catch (error) {
    const code = error instanceof Refusal ? error.code : -32603;
    return { jsonrpc: "2.0", id, error: { code, message: (error as Error).message } };
  }
}

/** A page in a browser must not reach the tools: it would name another host, or its own origin. */
function isLocal(request: IncomingMessage): boolean {
  const host = (request.headers.host ?? "").replace(/:\d+$/, "");
  return (host === "127.0.0.1" || host === "localhost") && request.headers.origin === undefined;
}

function serve(request: IncomingMessage, response: ServerResponse): void {
  const end = (status: number, body?: unknown): void => {
    response.writeHead(status, { "content-type": "application/json" });
    response.end(body === undefined ? "" : JSON.stringify(body));
  };
  if (!isLocal(request)) return end(403);
  if (request.url !== "/mcp") return end(404);
  if (request.method !== "POST") return end(405);
  const parts: Buffer[] = [];
  let length = 0;
  request.on("data", (part: Buffer) => {
    length += part.length;
    if (length <= longestRequest) parts.push(part);
  });
  request.on("end", () => {
    if (length > longestRequest) return end(413);
    const reply = answer(Buffer.concat(parts).toString("utf8"));
    end(reply === undefined ? 202 : 200, reply);
  });
}

// There is no input to end with: the server goes when it is told to, or when whoever started it is gone.
const parent = process.ppid;
process.on("SIGTERM", () => process.exit(0));
setInterval(() => {
  if (process.ppid !== parent) process.exit(0);
}, 2000);
createServer(serve)
  .on("error", () => process.exit(1))
  .listen(port, "127.0.0.1");
