// Finds the servers of an address: the table, SRV records, the provider's autoconfiguration, and common names.

import { lookup, Resolver } from "node:dns/promises";
import { connect } from "node:net";
import { Parser } from "htmlparser2";
import { Limited } from "../lib/limits.ts";
import { SignInRefused } from "../lib/stay.ts";
import { providerOfDomain, providerOfExchanger, providerOfHost, serversOf, type Provider } from "./providers.ts";
import type { Server, Servers, Settings } from "./settings.ts";

export interface Found extends Servers {
  found: "table" | "srv" | "autoconfig" | "guess";
  /** Hosts that the user must confirm before a password is sent there. */
  confirm: string[];
  signIn: Provider["signIn"];
  hint: string;
}

const patience = 4_000;
const longestDocument = 64 * 1024;

/** `localAutoconfig`: an https: address on this machine that is queried first. */
export async function discover(address: string, localAutoconfig = ""): Promise<Found> {
  const domain = address.slice(address.lastIndexOf("@") + 1).toLowerCase();
  const local = isLocal(localAutoconfig) ? await documentAt(localAutoconfig) : undefined;
  if (local) return judged(domain, local, "autoconfig");

  const provider = providerOfDomain(domain) ?? (await providerByExchanger(domain));
  if (provider) return judged(domain, serversOf(provider), "table");
  const records = await serversFromRecords(domain);
  if (records) return judged(domain, records, "srv");
  const document = await publishedDocument(domain, address);
  if (document) return judged(domain, document, "autoconfig");
  return judged(domain, await guessed(domain), "guess");
}

/** Looks for the servers of an account until they are found. */
export type FindServers = () => Promise<Servers>;

export function serverFinder(settings: Settings): FindServers {
  let found: Servers | undefined;
  return async () => (found ??= await serversFor(settings));
}

const pause = 5_000;

/** The servers in the account's settings, otherwise discovered ones. Throws `SignInRefused` if the user has to
 *  confirm one first, and `Limited` if none is found: without a network, a guess would hide what the provider says. */
export async function serversFor({ servers: { imap, smtp }, address }: Settings): Promise<Servers> {
  if (imap && smtp) return { imap, smtp };
  const found = await discover(address, process.env.CORVANE_MAIL_AUTOCONFIG);
  const [stranger] = found.confirm;
  if (stranger) {
    throw new SignInRefused(`${stranger} was found as the mail server of a foreign domain. If it is yours, name the servers beside the password.`);
  }
  if (found.found === "guess" && !(await isHost(found.imap.host))) {
    throw new Limited(pause, `The mail servers of ${address} cannot be found; is there a network?`);
  }
  return { imap: imap ?? found.imap, smtp: smtp ?? found.smtp };
}

async function isHost(name: string): Promise<boolean> {
  return lookup(name).then(() => true, () => false);
}

function judged(domain: string, { imap, smtp }: Servers, found: Found["found"]): Found {
  const provider = providerOfHost(imap.host);
  const confirm = [...new Set([imap.host, smtp.host])].filter((host) => !isTrusted(host, domain));
  return { imap, smtp, found, confirm, signIn: provider?.signIn ?? "password", hint: provider?.hint ?? "" };
}

function isTrusted(host: string, domain: string): boolean {
  return host === domain || host.endsWith(`.${domain}`) || host === "localhost" || providerOfHost(host) !== undefined;
}

function isLocal(url: string): boolean {
  return /^https:\/\/(localhost|127\.0\.0\.1)(:\d+)?\//.test(url);
}

const resolver = new Resolver({ timeout: 2_000, tries: 1 });

async function providerByExchanger(domain: string): Promise<Provider | undefined> {
  const records = await resolver.resolveMx(domain).catch(() => []);
  const [first] = records.sort((a, b) => a.priority - b.priority);
  return first && providerOfExchanger(first.exchange);
}

async function serversFromRecords(domain: string): Promise<Servers | undefined> {
  const find = async (name: string, security: Server["security"]): Promise<Server | undefined> => {
    const records = await resolver.resolveSrv(`${name}._tcp.${domain}`).catch(() => []);
    const [first] = records.sort((a, b) => a.priority - b.priority || b.weight - a.weight);
    if (!first || first.name === "." || first.name === "") return undefined;
    return { host: first.name.toLowerCase().replace(/\.$/, ""), port: first.port, security };
  };
  const [imaps, imap, submissions, submission] = await Promise.all([
    find("_imaps", "tls"),
    find("_imap", "starttls"),
    find("_submissions", "tls"),
    find("_submission", "starttls"),
  ]);
  const [incoming, outgoing] = [imaps ?? imap, submissions ?? submission];
  return incoming && outgoing && { imap: incoming, smtp: outgoing };
}

async function publishedDocument(domain: string, address: string): Promise<Servers | undefined> {
  const query = `?emailaddress=${encodeURIComponent(address)}`;
  const places = [
    `https://autoconfig.${domain}/mail/config-v1.1.xml${query}`,
    `https://${domain}/.well-known/autoconfig/mail/config-v1.1.xml${query}`,
  ];
  const found = await Promise.all(places.map(documentAt));
  return found.find((servers) => servers !== undefined);
}

async function documentAt(url: string): Promise<Servers | undefined> {
  try {
    const answer = await fetch(url, { redirect: "error", signal: AbortSignal.timeout(patience) });
    if (!answer.ok || !answer.body) return undefined;
    let text = "";
    for await (const piece of answer.body.pipeThrough(new TextDecoderStream())) {
      text += piece;
      if (text.length > longestDocument) return undefined;
    }
    return serversInDocument(text);
  } catch {
    return undefined;
  }
}

/** The first IMAP and the first SMTP server with TLS in an autoconfiguration document. */
export function serversInDocument(xml: string): Servers | undefined {
  const servers: Record<string, Record<string, string>[]> = { imap: [], smtp: [] };
  let current: Record<string, string> | undefined;
  let tag = "";
  const parser = new Parser(
    {
      onopentag(name, { type }) {
        tag = name;
        if (name === "incomingServer" || name === "outgoingServer") servers[type]?.push((current = {}));
      },
      ontext(text) {
        if (current) current[tag] = (current[tag] ?? "") + text.trim();
      },
      onclosetag(name) {
        if (name === "incomingServer" || name === "outgoingServer") current = undefined;
        tag = "";
      },
    },
    { xmlMode: true },
  );
  parser.end(xml);
  const server = (list: Record<string, string>[]): Server | undefined => {
    for (const { hostname = "", port, socketType } of list) {
      const security = { SSL: "tls", STARTTLS: "starttls" }[socketType] as Server["security"] | undefined;
      const isHost = /^[a-z0-9]([a-z0-9.-]*[a-z0-9])?$/i.test(hostname);
      const isPort = Number(port) > 0 && Number(port) < 65_536;
      if (security && isHost && isPort) return { host: hostname.toLowerCase(), port: Number(port), security };
    }
    return undefined;
  };
  const [imap, smtp] = [server(servers.imap), server(servers.smtp)];
  return imap && smtp && { imap, smtp };
}

/** The common names. The port of the SMTP server is found by trying. */
async function guessed(domain: string): Promise<Servers> {
  const smtp = `smtp.${domain}`;
  const [hasTls, hasStartTls] = await Promise.all([answers(smtp, 465), answers(smtp, 587)]);
  return {
    imap: { host: `imap.${domain}`, port: 993, security: "tls" },
    smtp: { host: smtp, ...(hasStartTls && !hasTls ? { port: 587, security: "starttls" } : { port: 465, security: "tls" }) },
  };
}

async function answers(host: string, port: number): Promise<boolean> {
  return new Promise((resolve) => {
    const socket = connect({ host, port, timeout: patience });
    const end = (isThere: boolean) => (): void => {
      socket.destroy();
      resolve(isThere);
    };
    socket.once("connect", end(true)).once("error", end(false)).once("timeout", end(false));
  });
}
