// Writes the list of the tools into docs/tools.md: node --experimental-strip-types src/tools/document.ts

import { readFileSync, writeFileSync } from "node:fs";
import { fileURLToPath } from "node:url";
import { listing } from "./answer.ts";
import { tools } from "./registry.ts";
import type { Effect } from "./tool.ts";

const path = fileURLToPath(new URL("../../../../docs/tools.md", import.meta.url));
const begin = "<!-- The list is written by mac/engine/src/tools/document.ts. -->\n";
const end = "<!-- End of the list. -->\n";

const headings: Record<Effect, string> = {
  read: "### Read",
  propose: "### Propose",
  report: "### Report",
};

interface Property {
  type?: string;
  enum?: string[];
  format?: string;
  default?: unknown;
  description?: string;
}

function argument(name: string, needed: boolean, { type, enum: words, format, default: otherwise, description }: Property): string {
  const kind = words ? words.map((word) => `\`${word}\``).join(", ") : format === "date-time" ? "time" : (type ?? "text");
  const value = otherwise === undefined || otherwise === "" ? "" : `; default \`${String(otherwise)}\``;
  return `  - \`${name}\` (${kind}${needed ? ", required" : value})${description ? `: ${description}` : ""}`;
}

function section(effect: Effect): string {
  const rows = tools.flatMap((tool, index) => {
    if (tool.effect !== effect) return [];
    const schema = listing[index]?.inputSchema as { properties?: Record<string, Property>; required?: string[] };
    const lines = Object.entries(schema.properties ?? {}).map(([name, property]) =>
      argument(name, schema.required?.includes(name) ?? false, property),
    );
    return [`- **${tool.name}**: ${tool.description}`, ...lines];
  });
  return `${headings[effect]}\n\n${rows.join("\n")}\n`;
}

export function current(): string {
  return readFileSync(path, "utf8");
}

/** The page with the current list of tools. */
export function renewed(page: string): string {
  const list = (["read", "propose", "report"] as const).map(section).join("\n");
  const [head, rest] = page.split(begin);
  const tail = rest?.split(end)[1];
  if (tail === undefined) throw new Error("docs/tools.md has lost the marks around its list");
  return `${head}${begin}\n${list}\n${end}${tail}`;
}

if (process.argv[1] === fileURLToPath(import.meta.url)) writeFileSync(path, renewed(current()));
