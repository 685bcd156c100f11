import { readFileSync } from "node:fs";
import { fileURLToPath } from "node:url";

/** A file of the folder content/. */
export function contentOf(name: string): string {
  return readFileSync(fileURLToPath(new URL(`../content/${name}`, import.meta.url)), "utf8");
}
