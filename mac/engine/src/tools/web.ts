import { readFileSync } from "node:fs";
import type { Profile } from "./paths.ts";

/** A response that is not one of the service's successes; the endpoint may not exist yet. */
export class WebError extends Error {
  readonly status: number;

  constructor(status: number, message: string) {
    super(message);
    this.status = status;
  }
}

const longestAnswer = 8_000_000;
const patience = 60_000;

function textOf(path: string): string {
  try {
    return readFileSync(path, "utf8");
  } catch {
    return "";
  }
}

/** A value from the desktop's settings, an ini file; the keys used here need no escapes. */
function setting(defaults: string, key: string): string | undefined {
  const line = defaults.split("\n").find((text) => text.startsWith(`${key}=`));
  return line?.slice(key.length + 1).trim().replace(/^"(.*)"$/, "$1") || undefined;
}

/** The web service of the desktop's settings, with the token of its sign-in. */
export class Web {
  readonly #base: URL | null;
  readonly #token: string;
  readonly bootstrapPath: string;
  readonly pullPath: string;

  constructor(profile: Profile) {
    const defaults = textOf(profile.defaults);
    this.#base = URL.parse(setting(defaults, "nimb.apiBaseUrl") ?? process.env.CORVANE_API_BASE_URL ?? "");
    this.#token = textOf(profile.webToken).trim();
    this.bootstrapPath = setting(defaults, "nimb.bootstrapPath") ?? "/api/auth/companion/bootstrap";
    this.pullPath = `${setting(defaults, "nimb.corvaneBase") ?? "/corvane/api/v1"}/pull`;
  }

  get isSignedIn(): boolean {
    return this.#token !== "";
  }

  /** The document under "data", or all of it. The token is sent only to the service, and only encrypted or within
   *  this machine. */
  async get(path: string, query: Record<string, string> = {}): Promise<unknown> {
    if (!this.#base || !isPrivate(this.#base)) throw new WebError(0, "The web service's address must be https.");
    const url = new URL(path, this.#base);
    for (const [name, value] of Object.entries(query)) url.searchParams.set(name, value);
    if (url.origin !== this.#base.origin) throw new WebError(0, `${path} is no path of the web service.`);
    const response = await fetch(url, {
      headers: { authorization: `Bearer ${this.#token}`, accept: "application/json" },
      redirect: "error",
      signal: AbortSignal.timeout(patience),
    }).catch((error: unknown) => {
      const { message, cause } = error as Error;
      throw new WebError(0, cause instanceof Error ? cause.message : message);
    });
    const body = await bounded(response);
    if (!response.ok) throw new WebError(response.status, `HTTP ${response.status} on ${path} — ${body.slice(0, 160)}`);
    try {
      const document: unknown = JSON.parse(body);
      return typeof document === "object" && document !== null && "data" in document ? document.data : document;
    } catch {
      throw new WebError(response.status, `Unexpected response shape: ${body.slice(0, 160)}`);
    }
  }
}

function isPrivate({ protocol, hostname }: URL): boolean {
  return protocol === "https:" || (protocol === "http:" && ["localhost", "127.0.0.1"].includes(hostname));
}

async function bounded(response: Response): Promise<string> {
  const decoder = new TextDecoder();
  let text = "";
  for await (const part of response.body ?? []) {
    text += decoder.decode(part, { stream: true });
    if (text.length > longestAnswer) throw new WebError(response.status, "The reply is too large.");
  }
  return text + decoder.decode();
}
