// A mailbox on real servers, and the engine that mirrors it.

import { after } from "node:test";
import { ImapFlow } from "imapflow";
import { password, startMailServers, type MailServers } from "./mail-servers.ts";
import { EngineProcess, eventOf, isMessage, placeIn, source, startScript, temporaryFolder, type Event } from "./support.ts";

export interface Post {
  /** The address. */
  me: string;
  folder: string;
  /** Puts a mail into the mailbox; `head` are its further header lines. */
  put(subject: string, body?: string, head?: string[]): Promise<void>;
  /** Starts the engine. */
  start(more?: Record<string, string>, place?: string[]): EngineProcess;
  imap(): Promise<ImapFlow>;
}

/** Shared by the tests of a file; each has a mailbox and a state of its own. */
export const servers: MailServers = await startedServers();

/** They stop before their folder goes. */
async function startedServers(): Promise<MailServers> {
  let started: MailServers | undefined;
  after(() => started?.stop());
  return (started = await startMailServers(temporaryFolder(after)));
}

let mailboxes = 0;

export function openPost(): Post {
  const me = `hola${++mailboxes}@taller.example`;
  const folder = temporaryFolder(after);
  const environment = {
    ...placeIn(folder),
    EMAIL_USER: me,
    EMAIL_PASS: password,
    NODE_EXTRA_CA_CERTS: servers.certificate,
    CORVANE_MAIL_AUTOCONFIG: servers.autoconfig,
  };
  return {
    me,
    folder,
    put: (subject, body = `About ${subject}`, head = []) => servers.deliver(me, mail({ to: me, subject, body, head })),
    start: (more = {}, place = []) => new EngineProcess(source("email-main.ts"), { ...environment, ...more }, place),
    imap: async () => {
      const client = new ImapFlow({
        host: "localhost", port: servers.imapPort, secure: true, auth: { user: me, pass: password }, logger: false,
        tls: { rejectUnauthorized: false },
      });
      await client.connect();
      return client;
    },
  };
}

/** `head` replaces the usual header lines of the same name. */
export function mail({ to, subject, body, head = [] }: { to: string; subject: string; body: string; head?: string[] }): string {
  const usual = [
    "From: Ana Ruiz <ana@example.org>",
    `To: ${to}`,
    `Subject: ${subject}`,
    `Message-ID: <${subject.replace(/\W/g, "-")}@example.org>`,
    "Date: Mon, 02 Nov 2026 10:00:00 +0000",
  ];
  const names = head.map((line) => line.split(":")[0]);
  const lines = [...usual.filter((line) => !names.includes(line.split(":")[0])), ...head];
  return `${lines.join("\r\n")}\r\n\r\n${body}\r\n`;
}

export const messages = (events: Event[]): Event[] => events.filter(isMessage);
export const withSubject = (events: Event[], subject: string): Event[] => messages(events).filter((event) => event.subject === subject);
export const isOpen = ({ type, state }: Event): boolean => type === "status" && state === "open";

/** Runs the engine once for the connect sheet. */
export async function connectSheet(mode: string, environment: Record<string, string>): Promise<{ event: Event; code: number | null }> {
  const child = startScript(source("email-main.ts"), { PATH: process.env.PATH, ...environment }, mode);
  let output = "";
  child.stdout?.on("data", (text) => (output += text));
  const code = await new Promise<number | null>((resolve) => child.on("close", resolve));
  return { event: eventOf(output.trim()), code };
}
