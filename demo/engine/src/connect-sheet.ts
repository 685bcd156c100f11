// The two short runs by which the connect sheet finds servers and tries a sign-in, played: addresses at
// "patience.example" take their time, the mail of "studio.example" is kept elsewhere, and the password "wrong" is refused.

import { print } from "../../../mac/engine/src/lib/wire.ts";

export function runConnectSheet(mode: string, address: string, secret: string): void {
  const domain = address.slice(address.lastIndexOf("@") + 1).toLowerCase();
  const wait = domain === "patience.example" ? 20_000 : 600;
  setTimeout(() => print(mode === "--discover" ? serversOf(domain) : signIn(secret)), wait);
}

function serversOf(domain: string): object {
  const isElsewhere = domain === "studio.example";
  const host = isElsewhere ? "mail-hosting.example" : domain;
  return {
    type: "servers",
    imap: { host: `imap.${host}`, port: 993, security: "tls" },
    smtp: { host: `smtp.${host}`, port: 587, security: "starttls" },
    found: "srv",
    confirm: isElsewhere ? [`imap.${host}`, `smtp.${host}`] : [],
    signIn: "password",
    hint: "",
  };
}

function signIn(secret: string): object {
  const ok = !secret.includes('"wrong"');
  return ok ? { type: "signIn", ok } : { type: "signIn", ok, at: "imap", error: "Authentication failed." };
}
