// Signing in: a password yields a short web token, that a one-time code, and the code a device token.

import { createHmac, randomBytes, randomUUID, timingSafeEqual } from "node:crypto";
import { fieldsOf, Refused, textAt, type Answer, type Call } from "./answer.ts";
import { organizations } from "./content.ts";

/** The password of every address. */
export const password = "secret";

const callbackStart = "nimb-companion://auth";
const codeLasts = 10 * 60_000;
const tokenLasts = 365 * 24 * 3600;

type Kind = "web" | "device";

/** Tokens are valid as long as the process lives. */
export class Tokens {
  readonly #key = randomBytes(32);
  readonly #codes = new Map<string, { email: string; until: number }>();

  /** `POST /api/auth/login` */
  login(call: Call): Answer {
    const fields = fieldsOf(call);
    const email = textAt(fields, "email");
    if (fields.password !== password) throw new Refused(401, "Wrong e-mail address or password.");
    if (email.startsWith("2fa")) return { status: 200, json: { requires2fa: true } };
    return { status: 200, json: { data: { accessToken: this.#token("web", email) } } };
  }

  /** `GET /api/auth/companion-login`: with a web token, a redirect to the callback; without one, a sign-in page. */
  handshake({ query, bearer }: Call): Answer {
    const callback = checkedCallback(query);
    if (!bearer) return { status: 200, html: signInPage(query, "") };
    return this.#sentBack(callback, this.#emailOf("web", bearer));
  }

  /** `POST /api/auth/companion-login`: the form of that page. */
  signInOnPage({ body }: Call): Answer {
    const form = new URLSearchParams(body);
    const callback = checkedCallback(form);
    const email = form.get("email") ?? "";
    if (!email || form.get("password") !== password) return { status: 401, html: signInPage(form, "Wrong address or password.") };
    return this.#sentBack(callback, email);
  }

  /** `POST /api/auth/companion-exchange` */
  exchange(call: Call): Answer {
    const code = textAt(fieldsOf(call), "code");
    const known = this.#codes.get(code);
    this.#codes.delete(code);
    if (!known || known.until < Date.now()) throw new Refused(400, "This code is not valid any more.");
    const data = { token: this.#token("device", known.email), deviceId: `device-${randomUUID()}`, expiresInSeconds: tokenLasts };
    return { status: 200, json: { success: true, data } };
  }

  /** Refuses a call without a device token. */
  mustBeDevice({ bearer }: Call): void {
    this.#emailOf("device", bearer);
  }

  #sentBack(callback: string, email: string): Answer {
    const code = randomBytes(16).toString("base64url");
    this.#codes.set(code, { email, until: Date.now() + codeLasts });
    return { status: 302, location: `${callback}?code=${code}` };
  }

  #token(kind: Kind, email: string): string {
    const [{ id: organizationId, workspaces }] = organizations;
    const name = email.split("@")[0];
    const claims = { kind, email, name, organizationId, workspaceId: workspaces[0].id, id: randomUUID() };
    const [head, payload] = [{ alg: "HS256", typ: "JWT" }, claims].map((part) => Buffer.from(JSON.stringify(part)).toString("base64url"));
    return `${head}.${payload}.${this.#signature(`${head}.${payload}`)}`;
  }

  #signature(text: string): string {
    return createHmac("sha256", this.#key).update(text).digest("base64url");
  }

  #emailOf(kind: Kind, token: string): string {
    const [head, payload = "", signature = ""] = token.split(".");
    const expected = Buffer.from(this.#signature(`${head}.${payload}`));
    const given = Buffer.from(signature);
    if (given.length === expected.length && timingSafeEqual(given, expected)) {
      const claims = JSON.parse(Buffer.from(payload, "base64url").toString("utf8")) as { kind: Kind; email: string };
      if (claims.kind === kind) return claims.email;
    }
    throw new Refused(401, "The token is not valid.");
  }
}

/** A code may be sent only to the program. */
function checkedCallback(parameters: URLSearchParams): string {
  const callback = parameters.get("callback") ?? "";
  if (callback !== callbackStart) throw new Refused(400, `"callback" must be ${callbackStart}.`);
  return callback;
}

function signInPage(parameters: URLSearchParams, words: string): string {
  const text = (value: string): string => value.replace(/[&<>"]/g, (sign) => `&#${sign.charCodeAt(0)};`);
  const device = text(parameters.get("deviceName") ?? "");
  return `<!doctype html><meta charset="utf-8"><title>Sign in</title>
<h1>Sign in</h1><p>${device} asks for access. Any address and the password “${password}” will do.</p><p><strong>${text(words)}</strong></p>
<form method="post"><input name="email" type="email" placeholder="E-mail address" required> <input name="password" type="password"
 placeholder="Password" required> <input type="hidden" name="callback" value="${callbackStart}"><input type="hidden"
 name="deviceName" value="${device}"><button>Sign in</button></form>`;
}
