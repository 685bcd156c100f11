// Determines which parts of a mail are text and which are files, from its structure alone.

import type { MessageStructureObject } from "imapflow";
import { mediaTypeOf, type MediaType } from "../lib/events.ts";

export interface TextPart {
  /** Its part number on the server. */
  key: string;
  isHtml: boolean;
  charset: string;
  /** Its transfer encoding. */
  encoding: string;
  isFlowed: boolean;
}

export interface FilePart {
  key: string;
  name: string;
  mediaType: MediaType;
  /** In bytes, as transferred. */
  size: number;
}

export interface Parts {
  texts: TextPart[];
  /** In the order of the mail: a file's number is its position here. */
  files: FilePart[];
}

/** Limits on text parts and files; further ones are dropped. */
const mostTexts = 5;
const mostFiles = 200;
const deepest = 40;

export function partsOf(structure: MessageStructureObject): Parts {
  const { texts, files } = chosen(structure, 0);
  return { texts: texts.slice(0, mostTexts).map(textPart), files: files.slice(0, mostFiles).map(filePart) };
}

interface Chosen {
  texts: MessageStructureObject[];
  files: MessageStructureObject[];
}

function chosen(node: MessageStructureObject, depth: number): Chosen {
  if (!node.type.startsWith("multipart/")) return isText(node) ? { texts: [node], files: [] } : { texts: [], files: [node] };
  if (depth > deepest) return { texts: [], files: [] };
  const children = (node.childNodes ?? []).map((child) => chosen(child, depth + 1));
  const files = children.flatMap((child) => child.files);
  const texts = node.type === "multipart/alternative" ? bestOf(children) : children.flatMap((child) => child.texts);
  return { texts, files };
}

/** Of alternative forms of a text: the plain one if it is not empty, otherwise the last, which is the richest. */
function bestOf(forms: Chosen[]): MessageStructureObject[] {
  const written = forms.filter(({ texts }) => texts.length > 0).map(({ texts }) => texts);
  const isPlain = (texts: MessageStructureObject[]): boolean =>
    texts.every(({ type }) => type === "text/plain") && texts.some(({ size = 0 }) => size > 2);
  return written.find(isPlain) ?? written.at(-1) ?? [];
}

function isText({ type, disposition, dispositionParameters, parameters }: MessageStructureObject): boolean {
  const isReadable = type === "text/plain" || type === "text/html";
  return isReadable && disposition !== "attachment" && !dispositionParameters?.filename && !parameters?.name;
}

function textPart({ part = "1", type, parameters = {}, encoding = "" }: MessageStructureObject): TextPart {
  const isFlowed = parameters.format?.toLowerCase() === "flowed";
  return { key: part, isHtml: type === "text/html", charset: parameters.charset ?? "", encoding, isFlowed };
}

function filePart(node: MessageStructureObject): FilePart {
  const { part = "1", type, size = 0 } = node;
  return { key: part, name: nameOf(node), mediaType: mediaTypeOf(type), size };
}

function nameOf({ type, dispositionParameters, parameters, envelope }: MessageStructureObject): string {
  const given = dispositionParameters?.filename || parameters?.name;
  if (given) return given;
  if (type === "message/rfc822") return `${envelope?.subject || "Message"}.eml`;
  const [kind, subtype = ""] = type.split("/");
  const extensions: Record<string, string> = { calendar: "ics", plain: "txt", jpeg: "jpg", "octet-stream": "bin" };
  return `${kind}.${extensions[subtype] ?? (subtype.replace(/^x-|[^a-z0-9]/g, "").slice(0, 8) || "bin")}`;
}
