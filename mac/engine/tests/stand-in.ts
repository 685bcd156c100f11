// A provider's API on loopback: routes answer as the published documentation says.

import { createServer, type IncomingMessage, type Server } from "node:http";
import type { AddressInfo } from "node:net";
import { text } from "node:stream/consumers";
import { WebSocketServer, type WebSocket } from "ws";
import { patience } from "./support.ts";

export interface Call {
  method: string;
  /** Without the query. */
  path: string;
  query: URLSearchParams;
  headers: IncomingMessage["headers"];
  /** As it came; `fields` has a form or JSON taken apart. */
  body: string;
  fields: Record<string, unknown>;
}

/** The response: JSON with status 200, or all of it; undefined drops the connection. */
export type Answer = { status?: number; headers?: Record<string, string>; json?: unknown; raw?: string } | undefined;

export class StandIn {
  readonly calls: Call[] = [];
  readonly #server: Server;
  readonly #sockets: WebSocketServer;
  readonly #waiting = new Map<string, () => void>();
  address = "";

  private constructor(route: (call: Call) => Answer | Promise<Answer>, connected: (socket: WebSocket) => void) {
    this.#server = createServer(async (request, response) => {
      const url = new URL(request.url ?? "/", this.address);
      const { method = "", headers } = request;
      const body = await text(request);
      const call = { method, path: url.pathname, query: url.searchParams, headers, body, fields: fieldsOf(headers["content-type"] ?? "", body) };
      this.calls.push(call);
      for (const [ending, wake] of this.#waiting) if (call.path.endsWith(ending)) wake();
      const answer = await route(call);
      if (!answer) return void request.socket.destroy();
      response.writeHead(answer.status ?? 200, { ...(answer.json !== undefined && { "content-type": "application/json" }), ...answer.headers });
      response.end(answer.raw ?? JSON.stringify(answer.json));
    });
    this.#sockets = new WebSocketServer({ server: this.#server }).on("connection", connected);
  }

  static async open(route: (call: Call) => Answer | Promise<Answer>, connected: (socket: WebSocket) => void = () => {}): Promise<StandIn> {
    const standIn = new StandIn(route, connected);
    await new Promise<void>((resolve) => standIn.#server.listen(0, "127.0.0.1", resolve));
    standIn.address = `http://127.0.0.1:${(standIn.#server.address() as AddressInfo).port}`;
    return standIn;
  }

  to(ending: string): Call[] {
    return this.calls.filter(({ path }) => path.endsWith(ending));
  }

  /** The first call to a path with that suffix, already made or made within `patience`. */
  async called(ending: string): Promise<Call> {
    await new Promise<void>((resolve, reject) => {
      const made = (): string => this.calls.map(({ method, path }) => `${method} ${path}`).slice(-9).join("\n");
      const late = setTimeout(() => reject(new Error(`nobody called ${ending}; the last calls were\n${made()}`)), patience);
      this.#waiting.set(ending, () => (clearTimeout(late), resolve()));
      if (this.to(ending).length > 0) this.#waiting.get(ending)?.();
    });
    return this.to(ending)[0];
  }

  close(): void {
    for (const socket of this.#sockets.clients) socket.terminate();
    this.#server.close();
    this.#server.closeAllConnections();
  }
}

function fieldsOf(type: string, body: string): Record<string, unknown> {
  if (type.startsWith("application/json")) return JSON.parse(body) as Record<string, unknown>;
  return type.includes("urlencoded") ? Object.fromEntries(new URLSearchParams(body)) : {};
}
