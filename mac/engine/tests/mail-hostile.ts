// Malformed and malicious mails, each in a few hundred variants.

import { numbers } from "./mail-corpus.ts";

type Make = (number: (below: number) => number, index: number) => string | Buffer;

const nested = (depth: number, inner: string): string =>
  depth === 0 ? inner : `Content-Type: multipart/mixed; boundary=n${depth}\n\n--n${depth}\n${nested(depth - 1, inner)}\n--n${depth}--\n`;
const wrapped = (depth: number, inner: string): string =>
  depth === 0 ? inner : `Content-Type: message/rfc822\n\nSubject: level ${depth}\n${wrapped(depth - 1, inner)}`;
const part = (type: string, body: string): string => `--b\nContent-Type: ${type}\n\n${body}\n`;
const mixed = "Content-Type: multipart/mixed; boundary=b\n\n";
const text = (charset: string, encoding: string, body: string): string =>
  `Content-Type: text/plain; charset=${charset}\nContent-Transfer-Encoding: ${encoding}\n\n${body}`;
const html = (body: string): string => `Content-Type: text/html\n\n${body}`;

/** What follows the usual header lines. */
const bodies: Make[] = [
  () => mixed + part("text/plain", "no end"),
  () => "Content-Type: multipart/mixed\n\n--b\n\nno boundary\n",
  () => "Content-Type: multipart/alternative; boundary=b\n\n--b--\n",
  (number) => nested(20 + number(100), "Content-Type: text/plain\n\ndeep"),
  (number) => wrapped(10 + number(60), "Content-Type: text/plain\n\nwithin"),
  (number) => mixed + part("text/plain", "one of many").repeat(50 + number(200)),
  (number) => mixed + part(`application/x; name="../../${"é/".repeat(number(3000))}.sh"`, "x") + part('image/png; name=""', "x"),
  (number) => text(["klingon", '"', "utf-7", "\u0000", "utf-16", "gb18030", "x".repeat(9000)][number(7)], "8bit", "Gr\xfc\xdfe \u{1F600}"),
  () => text("utf-8", "base64", "@@@@ not base64 =====\n\u0000"),
  () => text("utf-8", "quoted-printable", "=ZZ =C3=28 =\n=\n= =0"),
  () => text("utf-8", "x-unheard-of", "plain after all"),
  (number) => text("utf-8", "8bit", "long line ".repeat(20_000 + number(50_000))),
  (number) => text("utf-8", "8bit", ">".repeat(5000) + "\n> ".repeat(number(20_000))),
  () => text('utf-8; format="flowed"', "8bit", "a \n b \n> c \n-- \n"),
  () => html("<script>fetch('https://example.org')</script><img src=https://example.org/p.png onerror=alert(1)><p onclick=x>shown"),
  (number) => html("<div><b>".repeat(3000 + number(5000)) + "deep" + "</i></p>".repeat(5000)),
  () => html("<!-- never closed <p>hidden" + "<".repeat(2000)),
  (number) => html("&" + "amp;".repeat(number(9000)) + "&#xFFFFFF;&#0;&#xD800;&bogus;"),
  () => html("<blockquote>".repeat(500) + "quoted" + `<a href="javascript:alert(1)">click</a><a href="https://e.org/${"x".repeat(9000)}">l</a>`),
  (number) => Buffer.from(Array.from({ length: 3000 }, () => number(256))),
  () => "begin 644 a.txt\n#0V%T\n`\nend\n",
  () => "",
];

/** Header lines that take the place of the usual ones. */
const heads: Make[] = [
  () => "",
  () => "Date: Thu, 01 Jan 1970 00:00:00 +0000",
  () => "Date: Fri, 31 Dec 2099 23:59:59 +1400",
  () => "Date: yesterday, at noon",
  () => "From: no address at all",
  () => "From: <@>, a@b@c, \"x, y\"@example.org",
  () => "From: undisclosed-recipients:;",
  () => "From: =?utf-8?q?Evil=0D=0ABcc:_victim@example.org?= <evil@example.org>",
  () => "From: \"\u202Egnp.exe\u0007\" <\u202Eevil@example.org>",
  (number) => `From: ${"Long Name ".repeat(500 + number(5000))}<long@example.org>`,
  (number) => `To: ${Array.from({ length: 60 + number(500) }, (_, index) => `p${index}@example.org`).join(",\n ")}`,
  (number) => "X-Noise: x\n".repeat(1000 + number(2000)) + "X-End: 1",
  (number) => `References: ${"<ref@example.org>\n ".repeat(number(2000))}<end@example.org>`,
  () => "Reply-To: , ;, <>",
  () => "Message-ID: <same@example.org>",
  () => "Message-ID: " + "<broken".repeat(400),
  () => "Message-ID:",
];

/** `count` mails; the last ten are identical, all others differ. */
export function hostileMails(count: number): Buffer[] {
  const number = numbers(count);
  const mails: Buffer[] = [];
  for (let index = 0; index < count - 10; index++) {
    const head = String(heads[index % heads.length](number, index));
    const body = bodies[Math.floor(index / heads.length + index) % bodies.length](number, index);
    const usual = [
      `Message-ID: <hostile-${index}@example.org>`,
      "Date: Mon, 02 Nov 2026 10:00:00 +0000",
      `From: Sender <sender${index % 9}@example.org>`,
    ].filter((line) => !head.startsWith(line.split(":")[0]));
    const subject = `Subject: hostile ${index}${index % 5 === 0 ? " =?utf-8?q?a=0D=0ABcc:_x@example.org=00?=" : ""}`;
    const lines = [...usual, subject, ...(head ? [head] : [])].join("\n");
    mails.push(Buffer.concat([Buffer.from(`${lines}\n`), Buffer.from(body)]));
  }
  mails[0] = Buffer.from(`Message-ID: <many@example.org>\nSubject: many\n${mixed}${part("text/plain", "p").repeat(10_000)}`);
  const same = Buffer.from("Message-ID: <twin@example.org>\nSubject: twin\n\ntwice");
  return [...mails, ...Array.from({ length: 10 }, () => same)];
}
