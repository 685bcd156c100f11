// Submits a mail to the provider's SMTP server, always over verified TLS.

import { createReadStream } from "node:fs";
import { Readable } from "node:stream";
import SMTPConnection from "nodemailer/lib/smtp-connection";
import XOAuth2 from "nodemailer/lib/xoauth2";
import { Limited } from "../lib/limits.ts";
import { Refused } from "../lib/outbox.ts";
import { networkWords } from "./client.ts";
import { credentials, type Server, type Settings } from "./settings.ts";

export interface Envelope {
  from: string;
  to: string[];
}

type SmtpError = SMTPConnection.SMTPError & { responseCode?: number };

/** Only signs in. Throws the server's own message. */
export async function trySubmission(settings: Settings, server: Server): Promise<void> {
  const connection = await signedIn(settings, server);
  connection.quit();
}

/** Sends the file to every recipient or to none. `begin` runs after the server has asked for the mail and before any
 *  of it is sent. Throws `Limited` if the server asks to retry later, and `Refused` if it refuses. */
export async function submit(
  settings: Settings,
  server: Server,
  { from, to }: Envelope,
  file: string,
  begin: () => void,
): Promise<void> {
  const connection = await signedIn(settings, server);
  let isBegun = false;
  let refusal: Refused | undefined;
  async function* mail(): AsyncGenerator<Buffer> {
    const [refused] = rejections(connection);
    if (refused) {
      refusal = new Refused(wordsOfReply(refused));
      throw refusal;
    }
    begin();
    isBegun = true;
    yield* createReadStream(file);
  }
  try {
    await new Promise<void>((resolve, reject) => {
      connection.send({ from, to }, Readable.from(mail()), (error) => (error ? reject(error) : resolve()));
      connection.once("error", reject);
      connection.once("end", () => reject(new Error("the connection ended")));
    });
    connection.quit();
  } catch (error) {
    connection.close();
    if (refusal) throw refusal;
    if (isBegun && !(error as SmtpError).responseCode) throw error;
    throw judged(error as SmtpError, server.host, isBegun);
  }
}

async function signedIn(settings: Settings, { host, port, security }: Server): Promise<SMTPConnection> {
  const { user, pass, accessToken } = await credentials(settings);
  const connection = new SMTPConnection({
    host,
    port,
    secure: security === "tls",
    requireTLS: true,
    connectionTimeout: 20_000,
    greetingTimeout: 20_000,
    socketTimeout: 300_000,
    logger: false,
  });
  try {
    await new Promise<void>((resolve, reject) => {
      connection.once("error", reject);
      connection.once("end", () => reject(Object.assign(new Error("the connection ended"), { code: "ECONNECTION" })));
      connection.connect((error) => (error ? reject(error) : resolve()));
    });
    const byToken = accessToken ? { method: "XOAUTH2", oauth2: new XOAuth2({ user, accessToken }) } : {};
    await new Promise<void>((resolve, reject) => {
      connection.once("error", reject);
      connection.login({ user, credentials: { user, pass }, ...byToken }, (error) => (error ? reject(error) : resolve()));
    });
    connection.on("error", () => {}); // the waiting call gets the error
    return connection;
  } catch (error) {
    connection.close();
    throw judged(error as SmtpError, host, false);
  }
}

/** Recipients that the server has refused so far; the library would send to the others. */
function rejections(connection: SMTPConnection): SmtpError[] {
  const { _envelope } = connection as unknown as { _envelope?: { rejectedErrors?: SmtpError[] } };
  return _envelope?.rejectedErrors ?? [];
}

const firstPause = 5_000;

function judged(error: SmtpError, host: string, isBegun: boolean): Error {
  const code = error.responseCode ?? 0;
  if (code >= 500 || (code >= 400 && isBegun)) return new Refused(wordsOfReply(error));
  if (code >= 400) return new Limited(firstPause, wordsOfReply(error));
  return new Limited(firstPause, networkWords(error, host));
}

function wordsOfReply(error: SmtpError): string {
  return (error.response || error.message).replace(/\s+/g, " ").trim().slice(0, 500);
}
