// The everyday words of content/small-talk.txt, by language.

import { contentOf } from "./content.ts";

export interface Said {
  outgoing: boolean;
  text: string;
}

const sections = readSections(contentOf("small-talk.txt"));

/** Short talks of two to four lines; in English if the language has none. */
export function exchanges(language: string): Said[][] {
  return section(language, "exchanges").map((talk) =>
    talk.split("\n").map((line) => ({ outgoing: line.startsWith("> "), text: line.slice(2) })),
  );
}

/** Answers that fit any message. */
export function replies(language: string): string[] {
  return section(language, "replies")[0].split("\n");
}

function section(language: string, what: string): string[] {
  return sections.get(`${language} ${what}`) ?? sections.get(`en ${what}`) ?? [];
}

/** "[name]" starts a section; an empty line separates its entries. */
function readSections(text: string): Map<string, string[]> {
  const found = new Map<string, string[]>();
  for (const part of text.split(/^\[/m).slice(1)) {
    const end = part.indexOf("]");
    found.set(
      part.slice(0, end),
      part
        .slice(end + 1)
        .trim()
        .split(/\n\n+/),
    );
  }
  return found;
}
