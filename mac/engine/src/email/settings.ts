// The account's addresses, credentials and servers.

import { output } from "../lib/child.ts";
import { normalAddress } from "./address.ts";

export interface Server {
  host: string;
  port: number;
  /** Immediate TLS, or STARTTLS, which is then required. */
  security: "tls" | "starttls";
}

export interface Servers {
  imap: Server;
  smtp: Server;
}

export interface Settings {
  /** As the user typed it. */
  address: string;
  /** The name to sign in with. */
  user: string;
  secret: { password: string } | { tokenCommand: string[] };
  servers: Partial<Servers>;
  /** All of the user's addresses, in the form used for comparison. */
  own: ReadonlySet<string>;
}

/** From EMAIL_USER and EMAIL_PASS. Throws an error that is written for users. */
export function settingsFrom(environment: NodeJS.ProcessEnv): Settings {
  const address = (environment.EMAIL_USER ?? "").trim();
  if (!/^[^@\s]+@[^@\s]+$/.test(address)) throw new Error("The account has no e-mail address.");
  const text = environment.EMAIL_PASS ?? "";
  if (text === "") throw new Error("The account has no password.");
  const given = parsed(text);
  if (!given) return { address, user: address, secret: { password: text }, servers: {}, own: ownSet([address]) };

  const tokenCommand = Array.isArray(given.tokenCommand) ? given.tokenCommand.map(String) : undefined;
  if (tokenCommand?.length === 0) throw new Error("The token command is empty.");
  const secret = tokenCommand ? { tokenCommand } : { password: String(given.password) };
  const aliases = Array.isArray(given.aliases) ? given.aliases.map(String) : [];
  const servers: Partial<Servers> = {};
  if (given.imap !== undefined) servers.imap = serverFrom(given.imap, "IMAP");
  if (given.smtp !== undefined) servers.smtp = serverFrom(given.smtp, "SMTP");
  const user = typeof given.user === "string" && given.user ? given.user : address;
  return { address, user, secret, servers, own: ownSet([address, ...aliases]) };
}

function ownSet(addresses: string[]): Set<string> {
  return new Set(addresses.map(normalAddress));
}

/** Only an object with a password or a token command; any other text is a password, even with braces. */
function parsed(text: string): Record<string, unknown> | undefined {
  try {
    const value = JSON.parse(text) as Record<string, unknown> | null;
    if (typeof value !== "object" || value === null) return undefined;
    return typeof value.password === "string" || Array.isArray(value.tokenCommand) ? value : undefined;
  } catch {
    return undefined;
  }
}

function serverFrom(value: unknown, name: string): Server {
  const { host, port, security } = (value ?? {}) as Record<string, unknown>;
  const isKnown = security === "tls" || security === "starttls";
  const isPort = Number.isInteger(port) && Number(port) > 0 && Number(port) < 65_536;
  if (typeof host !== "string" || !host.trim() || !isPort || !isKnown) {
    throw new Error(`The ${name} server needs a host, a port, and "tls" or "starttls".`);
  }
  return { host: host.trim().toLowerCase(), port: Number(port), security };
}

/** The token command failed, so the credentials may still be valid. */
export class NoToken extends Error {}

/** The password or token, fetched for each sign-in. */
export async function credentials({ secret, user }: Settings): Promise<{ user: string; pass?: string; accessToken?: string }> {
  if ("password" in secret) return { user, pass: secret.password };
  try {
    const accessToken = await output(secret.tokenCommand, { timeout: 30_000, without: ["EMAIL_PASS"] });
    if (accessToken === "") throw new Error("it printed no token");
    return { user, accessToken };
  } catch (error) {
    throw new NoToken(`The token command failed: ${(error as Error).message}`, { cause: error });
  }
}
