// The readable text of a mail: decoded, cleaned up, with its quoted tail marked.

import { textFromHtml } from "./html.ts";
import type { TextPart } from "./parts.ts";

/** The longest text to show, in characters. */
const longestText = 200_000;

/** The text of a part from the server's bytes, which may be truncated. */
export function textOfPart(part: TextPart, bytes: Buffer): string {
  const text = decoded(transferDecoded(bytes, part.encoding), part.charset);
  if (part.isHtml) return textFromHtml(text);
  return part.isFlowed ? unfolded(text) : text;
}

/** All parts as one body. */
export function bodyOf(texts: string[]): string {
  const whole = texts.map(tidy).filter((text) => text !== "").join("\n\n");
  const body = markQuotedTail(whole);
  return body.length > longestText ? `${body.slice(0, longestText).toWellFormed()}\n[...]` : body;
}

function transferDecoded(bytes: Buffer, encoding: string): Buffer {
  const name = encoding.trim().toLowerCase();
  if (name === "base64") return Buffer.from(bytes.toString("latin1"), "base64");
  return name === "quoted-printable" ? quotedPrintable(bytes) : bytes;
}

function quotedPrintable(bytes: Buffer): Buffer {
  const text = bytes.toString("latin1").replace(/[ \t]+(\r?\n)/g, "$1").replace(/=\r?\n/g, "");
  const plain = text.replace(/=([0-9a-f]{2})/gi, (_, hex: string) => String.fromCharCode(parseInt(hex, 16)));
  return Buffer.from(plain, "latin1");
}

/** Decodes with the declared charset; if it is unknown or wrong, as UTF-8 if valid, else as Western. */
function decoded(bytes: Buffer, charset: string): string {
  const label = charset.trim().toLowerCase().replace(/^["']|["']$/g, "");
  for (const name of [label, "utf-8"]) {
    if (!name || name === "us-ascii") continue;
    try {
      const isLast = name !== label;
      return new TextDecoder(name, { fatal: isLast || /^utf-?8$/.test(name) }).decode(withoutCutEnd(bytes));
    } catch {
      continue;
    }
  }
  return new TextDecoder("windows-1252").decode(bytes);
}

/** A truncated text may end inside a character. */
function withoutCutEnd(bytes: Buffer): Buffer {
  for (let back = 1; back <= Math.min(3, bytes.length); back++) {
    const byte = bytes[bytes.length - back];
    if (byte < 0x80) break;
    const length = byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : byte >= 0xc0 ? 2 : 0;
    if (length > 0) return length > back ? bytes.subarray(0, bytes.length - back) : bytes;
  }
  return bytes;
}

/** Lines that end with a space continue in the next one (format=flowed). */
function unfolded(text: string): string {
  const lines: string[] = [];
  let goesOn = false;
  for (const line of text.split(/\r?\n/)) {
    const plain = line.startsWith(" ") ? line.slice(1) : line;
    if (goesOn && !plain.startsWith(">")) lines[lines.length - 1] += plain;
    else lines.push(plain);
    goesOn = plain.endsWith(" ") && plain !== "-- " && !plain.startsWith(">");
  }
  return lines.join("\n");
}

function tidy(text: string): string {
  return text
    .toWellFormed()
    .replace(/\r\n?/g, "\n")
    .replace(/[^\P{Cc}\n\t]/gu, "")
    .replace(/[ \t\u00a0]+$/gm, "")
    .replace(/\n{4,}/g, "\n\n\n")
    .replace(/^\n+|\s+$/g, "");
}

const separator = new RegExp(
  "^[-_]{2,}\\s*(original message|ursprüngliche nachricht|mensaje original|message d'origine|messaggio originale|" +
    "oorspronkelijk bericht|mensagem original)\\s*[-_]{2,}$",
  "i",
);
const headerLine = /^\*?(from|von|de|da|van|fra|från|od|от)\s?\*?:\*?\s.*(@|<)/i;
const nextHeader = /^\*?(sent|gesendet|date|datum|enviado|envoyé|inviato|data|fecha|to|an|para|à|a|aan)\s?\*?:\*?\s/i;

/** Adds ">" to every line of the quoted tail, so that it can be folded. A mail that is only a quotation is not
 *  changed. */
export function markQuotedTail(text: string): string {
  const lines = text.split("\n");
  const start = quoteStart(lines);
  if (start === undefined || lines.slice(0, start).every((line) => line.trim() === "")) return text;
  const marked = lines.slice(start).map((line) => (line.startsWith(">") ? line : `> ${line}`.trimEnd()));
  return [...lines.slice(0, start), ...marked].join("\n");
}

function quoteStart(lines: string[]): number | undefined {
  const answered = lines.findIndex(
    (line, index) =>
      separator.test(line.trim()) ||
      (headerLine.test(line) && lines.slice(index + 1, index + 4).some((next) => nextHeader.test(next))),
  );
  if (answered >= 0) {
    const isRuled = answered > 0 && /^[_-]{10,}$/.test(lines[answered - 1].trim());
    return isRuled ? answered - 1 : answered;
  }
  let start = lines.length;
  while (start > 0 && (lines[start - 1].startsWith(">") || lines[start - 1].trim() === "")) start -= 1;
  if (!lines.slice(start).some((line) => line.startsWith(">"))) return undefined;
  return attributionStart(lines, start);
}

/** Matches "On Monday, Ana wrote:" above the quotation, perhaps on two lines. */
function attributionStart(lines: string[], start: number): number {
  for (const count of [1, 2, 3]) {
    const first = start - count;
    if (first < 0 || lines[first].trim() === "") break;
    const words = lines.slice(first, start).join(" ");
    if (!/:\s*$/.test(words) || words.length > 300) break;
    const isNaming = /\d{1,4}[./-]\d|\d{4}|<[^>]+@[^>]+>|wrote:|schrieb/.test(words);
    if (isNaming && !/[.!?]\s/.test(lines[first].slice(0, -1))) return first;
  }
  return firstQuoted(lines, start);
}

function firstQuoted(lines: string[], start: number): number {
  while (!lines[start].startsWith(">")) start += 1;
  return start;
}
