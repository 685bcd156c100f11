// The service: maps paths to endpoints, answers, and logs one line per request.

import { createServer, type Server, type ServerResponse } from "node:http";
import type { AddressInfo } from "node:net";
import { callFrom, Refused, type Answer, type Call } from "./answer.ts";
import { bootstrap, pull, type Variant } from "./content.ts";
import { Faults, type Endpoint, type Fault } from "./faults.ts";
import { Ingest } from "./ingest.ts";
import { Tokens } from "./tokens.ts";

interface Route {
  method: string;
  path: RegExp;
  endpoint: Endpoint;
  answer(call: Call, part: string, fault: Fault | undefined): Answer;
}

export class Service {
  readonly #tokens = new Tokens();
  readonly #ingest = new Ingest();
  readonly #faults = new Faults();
  readonly #log: (line: string) => void;
  readonly #server: Server;
  readonly #routes: Route[];

  constructor(faults: string[], log: (line: string) => void) {
    this.#log = log;
    this.#faults.plan(faults);
    this.#routes = this.#allRoutes();
    this.#server = createServer((request, response) => {
      const line = `${request.method} ${request.url?.split("?")[0]}`;
      const end = (answer: Answer, fault?: Fault): void => {
        this.#log(`${line} -> ${fault ?? answer.status}${answer.note && !fault ? `: ${answer.note}` : ""}`);
        send(response, answer, fault);
      };
      callFrom(request)
        .then((call) => this.#answer(call, end))
        .catch((error: unknown) => end(refusal(error)));
    });
  }

  /** The address; port 0 picks a free one. */
  async listen(port: number): Promise<string> {
    await new Promise<void>((resolve, reject) => this.#server.once("error", reject).listen(port, "127.0.0.1", resolve));
    return `http://127.0.0.1:${(this.#server.address() as AddressInfo).port}`;
  }

  close(): void {
    this.#server.close();
    this.#server.closeAllConnections();
  }

  #answer(call: Call, end: (answer: Answer, fault?: Fault) => void): void {
    if (call.path.startsWith("/demo/")) return end(this.#control(call));
    for (const { method, path, endpoint, answer } of this.#routes) {
      const found = call.method === method && path.exec(call.path);
      if (!found) continue;
      const fault = this.#faults.next(endpoint);
      const isBefore = typeof fault === "number" || fault === "drop" || fault === "stall" || fault === "redirect";
      return end(isBefore ? { status: 500 } : answer(call, found[1] ?? "", fault), fault);
    }
    throw new Refused(404, "There is no such endpoint.");
  }

  #allRoutes(): Route[] {
    const tokens = this.#tokens;
    const signedIn = (answer: Route["answer"]): Route["answer"] => (call, part, fault) => {
      tokens.mustBeDevice(call);
      return answer(call, part, fault);
    };
    const ingest = this.#ingest;
    const route = (method: string, path: string, endpoint: Endpoint, answer: Route["answer"]): Route =>
      ({ method, path: new RegExp(`^${path}$`), endpoint, answer });
    return [
      route("POST", "/api/auth/login", "login", (call) => tokens.login(call)),
      route("GET", "/api/auth/companion-login", "handshake", (call) => tokens.handshake(call)),
      route("POST", "/api/auth/companion-login", "handshake", (call) => tokens.signInOnPage(call)),
      route("POST", "/api/auth/companion-exchange", "exchange", (call) => tokens.exchange(call)),
      route("GET", "/api/auth/companion/bootstrap", "bootstrap", signedIn((_, __, fault) => found(bootstrap(fault as Variant)))),
      route("POST", "/corvane/api/v1/accounts", "accounts", signedIn((call) => ingest.account(call))),
      route("POST", "/corvane/api/v1/chats", "chats", signedIn((call) => ingest.chat(call))),
      route("POST", "/corvane/api/v1/chats/([^/]+)/messages", "messages", signedIn((call, chat) => ingest.messages(call, chat))),
      route("GET", "/corvane/api/v1/pull/([^/]+)", "pull", signedIn(({ query }, source) => found(pull(source, Number(query.get("since")))))),
    ];
  }

  /** For manual tests: the counts, and the faults from now on. */
  #control({ method, path, body }: Call): Answer {
    if (path === "/demo/counts") return { status: 200, json: this.#ingest.counts() };
    if (path !== "/demo/faults" || method !== "PUT") throw new Refused(404, "There are GET /demo/counts and PUT /demo/faults.");
    const faults = body.split(/\s+/).filter((word) => word !== "");
    this.#faults.plan(faults);
    return { status: 204, note: faults.join(" ") || "no faults" };
  }
}

function found(document: object | undefined): Answer {
  if (!document) throw new Refused(404, "There is no such source.");
  return { status: 200, json: { data: document } };
}

function refusal(error: unknown): Answer {
  const status = error instanceof Refused ? error.status : 500;
  const words = error instanceof Error ? error.message : String(error);
  return { status, json: { error: words }, note: words };
}

function send(response: ServerResponse, answer: Answer, fault: Fault | undefined): void {
  if (fault === "stall") return;
  if (fault === "drop") return void response.destroy();
  if (typeof fault === "number") answer = { status: fault, json: { error: "This was asked for." } };
  if (fault === "nonsense") answer = { status: 200, html: "<!doctype html><p>Down for maintenance" };
  if (fault === "huge") answer = { ...answer, json: { padding: " ".repeat(5 << 20), ...(answer.json as object) } };
  if (fault === "redirect") answer = { status: 302, location: `http://localhost:${response.socket?.localPort}/elsewhere` };
  const { status, json, html, location } = answer;
  const body = Buffer.from(html ?? (json === undefined ? "" : JSON.stringify(json)));
  const type = html ? "text/html; charset=utf-8" : "application/json";
  response.writeHead(status, { "content-type": type, ...(location && { location }), ...(status !== 204 && { "content-length": body.length }) });
  if (fault !== "half") return void response.end(body);
  response.write(body.subarray(0, body.length / 2), () => response.destroy());
}
