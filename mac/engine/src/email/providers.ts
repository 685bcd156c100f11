// The providers that most mailboxes are at. Everything else is looked up.

import type { Servers } from "./settings.ts";

export interface Provider {
  /** The domains of its addresses. */
  domains: string[];
  /** Ends of the names of the servers that take mail for other people's domains. */
  exchangers?: string[];
  imap: string;
  smtp: string;
  /** 465 where TLS comes first, 587 where it comes by STARTTLS. */
  smtpPort: 465 | 587;
  signIn: "password" | "app-password" | "token";
  hint?: string;
  /** It keeps a copy of what is sent through it by itself. */
  keepsSent?: boolean;
}

const appPassword = (name: string): string => `${name} asks for an app password: make one in the security settings of the account.`;

export const providers: Provider[] = [
  {
    domains: ["gmail.com", "googlemail.com"], exchangers: ["google.com", "googlemail.com"], imap: "imap.gmail.com", smtp: "smtp.gmail.com",
    smtpPort: 465, signIn: "app-password", hint: appPassword("Google"), keepsSent: true,
  },
  {
    domains: ["outlook.com", "hotmail.com", "live.com", "msn.com", "outlook.de", "hotmail.de", "hotmail.fr", "hotmail.co.uk"],
    exchangers: ["protection.outlook.com"], imap: "outlook.office365.com", smtp: "smtp.office365.com", smtpPort: 587, signIn: "token",
    hint: "Microsoft takes no passwords for mail: name a command that prints an access token.", keepsSent: true,
  },
  {
    domains: ["yahoo.com", "ymail.com", "rocketmail.com", "yahoo.de", "yahoo.fr", "yahoo.co.uk", "yahoo.es", "yahoo.it"],
    exchangers: ["yahoodns.net"], imap: "imap.mail.yahoo.com", smtp: "smtp.mail.yahoo.com", smtpPort: 465, signIn: "app-password",
    hint: appPassword("Yahoo"), keepsSent: true,
  },
  {
    domains: ["icloud.com", "me.com", "mac.com"], exchangers: ["mail.icloud.com"], imap: "imap.mail.me.com", smtp: "smtp.mail.me.com",
    smtpPort: 587, signIn: "app-password", hint: appPassword("iCloud"),
  },
  { domains: ["aol.com", "aim.com"], imap: "imap.aol.com", smtp: "smtp.aol.com", smtpPort: 465, signIn: "app-password", hint: appPassword("AOL"), keepsSent: true },
  {
    domains: ["gmx.net", "gmx.de", "gmx.at", "gmx.ch"], imap: "imap.gmx.net", smtp: "mail.gmx.net", smtpPort: 465, signIn: "password",
    hint: "Allow IMAP in the e-mail settings of GMX first.",
  },
  { domains: ["gmx.com", "gmx.us", "gmx.co.uk"], imap: "imap.gmx.com", smtp: "mail.gmx.com", smtpPort: 465, signIn: "password", hint: "Allow IMAP in the e-mail settings of GMX first." },
  { domains: ["web.de"], imap: "imap.web.de", smtp: "smtp.web.de", smtpPort: 587, signIn: "password", hint: "Allow IMAP in the e-mail settings of WEB.DE first." },
  { domains: ["t-online.de", "magenta.de"], imap: "secureimap.t-online.de", smtp: "securesmtp.t-online.de", smtpPort: 465, signIn: "app-password", hint: "Telekom asks for a password for e-mail programs: make one in its e-mail centre." },
  { domains: ["mailbox.org"], exchangers: ["mailbox.org"], imap: "imap.mailbox.org", smtp: "smtp.mailbox.org", smtpPort: 465, signIn: "password" },
  { domains: ["posteo.de", "posteo.net"], imap: "posteo.de", smtp: "posteo.de", smtpPort: 465, signIn: "password" },
  {
    domains: ["fastmail.com", "fastmail.fm"], exchangers: ["messagingengine.com"], imap: "imap.fastmail.com", smtp: "smtp.fastmail.com",
    smtpPort: 465, signIn: "app-password", hint: appPassword("Fastmail"),
  },
  { domains: ["zoho.com", "zohomail.com"], exchangers: ["zoho.com"], imap: "imap.zoho.com", smtp: "smtp.zoho.com", smtpPort: 465, signIn: "app-password", hint: appPassword("Zoho") },
  { domains: [], exchangers: ["ionos.de", "kundenserver.de", "1and1.com"], imap: "imap.ionos.de", smtp: "smtp.ionos.de", smtpPort: 465, signIn: "password" },
  { domains: [], exchangers: ["ovh.net"], imap: "ssl0.ovh.net", smtp: "ssl0.ovh.net", smtpPort: 465, signIn: "password" },
  { domains: ["orange.fr", "wanadoo.fr"], imap: "imap.orange.fr", smtp: "smtp.orange.fr", smtpPort: 465, signIn: "password" },
  { domains: ["free.fr"], imap: "imap.free.fr", smtp: "smtp.free.fr", smtpPort: 465, signIn: "password" },
  { domains: ["libero.it"], imap: "imapmail.libero.it", smtp: "smtp.libero.it", smtpPort: 465, signIn: "password" },
  { domains: ["yandex.ru", "yandex.com", "ya.ru"], exchangers: ["mx.yandex.net"], imap: "imap.yandex.com", smtp: "smtp.yandex.com", smtpPort: 465, signIn: "app-password", hint: appPassword("Yandex"), keepsSent: true },
  { domains: ["mail.ru", "bk.ru", "inbox.ru", "list.ru"], imap: "imap.mail.ru", smtp: "smtp.mail.ru", smtpPort: 465, signIn: "app-password", hint: appPassword("Mail.ru") },
];

export function serversOf({ imap, smtp, smtpPort }: Provider): Servers {
  return {
    imap: { host: imap, port: 993, security: "tls" },
    smtp: { host: smtp, port: smtpPort, security: smtpPort === 465 ? "tls" : "starttls" },
  };
}

export function providerOfDomain(domain: string): Provider | undefined {
  return providers.find(({ domains }) => domains.includes(domain));
}

/** The provider whose servers take the domain's mail. */
export function providerOfExchanger(host: string): Provider | undefined {
  const name = `.${host.toLowerCase().replace(/\.$/, "")}`;
  return providers.find(({ exchangers = [] }) => exchangers.some((end) => name.endsWith(`.${end}`)));
}

export function providerOfHost(host: string): Provider | undefined {
  return providers.find(({ imap, smtp }) => imap === host || smtp === host);
}
