// The most common mail providers. All others are discovered.

import type { Servers } from "./settings.ts";

export interface Provider {
  /** The domains of its addresses. */
  domains: string[];
  /** Suffixes of the servers that receive mail for other domains. */
  exchangers?: string[];
  imap: string;
  smtp: string;
  /** 465 for immediate TLS, 587 for STARTTLS. */
  smtpPort: 465 | 587;
  signIn: "password" | "app-password" | "token";
  hint?: string;
  /** The provider itself keeps a copy of mail sent through it. */
  keepsSent?: boolean;
}

/** Immediate TLS and a password, unless stated otherwise. */
const provider = (domains: string, imap: string, smtp: string, more: Partial<Provider> = {}): Provider => ({
  domains: domains.split(" ").filter((domain) => domain !== ""),
  imap,
  smtp,
  smtpPort: 465,
  signIn: "password",
  ...more,
});

const appPassword = (name: string): Partial<Provider> => ({
  signIn: "app-password",
  hint: `${name} asks for an app password: make one in the security settings of the account.`,
});

const afterAllowing = (name: string): Partial<Provider> => ({
  hint: `Allow access by IMAP in the settings of ${name} first.`,
});

export const providers: Provider[] = [
  provider("gmail.com googlemail.com", "imap.gmail.com", "smtp.gmail.com", {
    ...appPassword("Google"),
    exchangers: ["google.com", "googlemail.com"],
    keepsSent: true,
  }),
  provider("outlook.com hotmail.com live.com msn.com outlook.de hotmail.de hotmail.fr hotmail.co.uk",
    "outlook.office365.com", "smtp.office365.com", {
    smtpPort: 587,
    signIn: "token",
    hint: "Microsoft takes no passwords for mail: name a command that prints an access token.",
    exchangers: ["protection.outlook.com"],
    keepsSent: true,
  }),
  provider("yahoo.com ymail.com rocketmail.com yahoo.de yahoo.fr yahoo.co.uk yahoo.es yahoo.it",
    "imap.mail.yahoo.com", "smtp.mail.yahoo.com", {
    ...appPassword("Yahoo"),
    exchangers: ["yahoodns.net"],
    keepsSent: true,
  }),
  provider("icloud.com me.com mac.com", "imap.mail.me.com", "smtp.mail.me.com", {
    ...appPassword("iCloud"),
    smtpPort: 587,
    exchangers: ["mail.icloud.com"],
  }),
  provider("aol.com aim.com", "imap.aol.com", "smtp.aol.com", { ...appPassword("AOL"), keepsSent: true }),
  provider("gmx.net gmx.de gmx.at gmx.ch", "imap.gmx.net", "mail.gmx.net", afterAllowing("GMX")),
  provider("gmx.com gmx.us gmx.co.uk", "imap.gmx.com", "mail.gmx.com", afterAllowing("GMX")),
  provider("web.de", "imap.web.de", "smtp.web.de", { ...afterAllowing("WEB.DE"), smtpPort: 587 }),
  provider("t-online.de magenta.de", "secureimap.t-online.de", "securesmtp.t-online.de", appPassword("Telekom")),
  provider("mailbox.org", "imap.mailbox.org", "smtp.mailbox.org", { exchangers: ["mailbox.org"] }),
  provider("posteo.de posteo.net", "posteo.de", "posteo.de"),
  provider("fastmail.com fastmail.fm", "imap.fastmail.com", "smtp.fastmail.com", {
    ...appPassword("Fastmail"),
    exchangers: ["messagingengine.com"],
  }),
  provider("zoho.com zohomail.com", "imap.zoho.com", "smtp.zoho.com", {
    ...appPassword("Zoho"),
    exchangers: ["zoho.com"],
  }),
  provider("", "imap.ionos.de", "smtp.ionos.de", { exchangers: ["ionos.de", "kundenserver.de", "1and1.com"] }),
  provider("", "ssl0.ovh.net", "ssl0.ovh.net", { exchangers: ["ovh.net"] }),
  provider("orange.fr wanadoo.fr", "imap.orange.fr", "smtp.orange.fr"),
  provider("free.fr", "imap.free.fr", "smtp.free.fr"),
  provider("libero.it", "imapmail.libero.it", "smtp.libero.it"),
  provider("yandex.ru yandex.com ya.ru", "imap.yandex.com", "smtp.yandex.com", {
    ...appPassword("Yandex"),
    exchangers: ["mx.yandex.net"],
    keepsSent: true,
  }),
  provider("mail.ru bk.ru inbox.ru list.ru", "imap.mail.ru", "smtp.mail.ru", appPassword("Mail.ru")),
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

/** The provider whose servers receive the domain's mail. */
export function providerOfExchanger(host: string): Provider | undefined {
  const name = `.${host.toLowerCase().replace(/\.$/, "")}`;
  return providers.find(({ exchangers = [] }) => exchangers.some((end) => name.endsWith(`.${end}`)));
}

export function providerOfHost(host: string): Provider | undefined {
  return providers.find(({ imap, smtp }) => imap === host || smtp === host);
}
