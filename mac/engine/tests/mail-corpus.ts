// Mailboxes to read: an ordinary one of any size, written straight into a Maildir.

import { writeFileSync } from "node:fs";
import { join } from "node:path";
import { own, ownFolder } from "./mail-servers.ts";

const words = "order invoice delivery workshop table oak varnish Monday price thank you for the plan and see you soon".split(" ");
const people = 400;

/** Numbers that are the same in each run. */
export function numbers(seed: number): (below: number) => number {
  let state = seed;
  return (below) => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor((state / 2 ** 32) * below);
  };
}

/** Fills the inbox with `count` mails of ten years: plain ones, HTML ones, some with files, of about 5 KB each. */
export function fillInbox(maildir: string, address: string, count: number): void {
  for (const folder of ["", "cur", "new", "tmp"]) ownFolder(join(maildir, folder));
  const number = numbers(count);
  const end = Date.UTC(2026, 10, 20);
  for (let index = 0; index < count; index++) {
    const at = end - (count - index) * ((10 * 365 * 86_400_000) / count);
    const path = join(maildir, "cur", `${Math.floor(at / 1000)}.M${index}.corpus:2,S`);
    writeFileSync(path, ordinaryMail(number, address, index, at));
    own(path);
  }
}

function ordinaryMail(number: (below: number) => number, address: string, index: number, at: number): string {
  const text = (length: number): string => Array.from({ length }, () => words[number(words.length)]).join(" ").replace(/(.{70}) /g, "$1\n");
  const who = number(people);
  const head = [
    `From: Person ${who} <person${who}@example${who % 7}.org>`,
    `To: ${address}`,
    `Subject: ${text(4)}`,
    `Message-ID: <${index}.corpus@example.org>`,
    `Date: ${new Date(at).toUTCString()}`,
    `Received: from mx.example.org by mail.example.net; ${new Date(at).toUTCString()}`,
    "MIME-Version: 1.0",
  ];
  const plain = `Content-Type: text/plain; charset=utf-8\n\n${text(300)}\n`;
  const kind = number(10);
  if (kind < 4) return [...head, plain].join("\n");
  const html = `Content-Type: text/html; charset=utf-8\n\n<html><body><p>${text(300)}</p><p><a href="https://example.org/${index}">more</a></p></body></html>\n`;
  const both = `Content-Type: multipart/alternative; boundary=alt\n\n--alt\n${plain}\n--alt\n${html}\n--alt--\n`;
  if (kind < 6) return [...head, html].join("\n");
  if (kind < 9) return [...head, both].join("\n");
  const file = `Content-Type: application/pdf; name="file${index}.pdf"\nContent-Transfer-Encoding: base64\n\n${"QUJD".repeat(18)}\n`;
  return [...head, `Content-Type: multipart/mixed; boundary=mix\n\n--mix\n${both}\n--mix\n${file}\n--mix--\n`].join("\n");
}
