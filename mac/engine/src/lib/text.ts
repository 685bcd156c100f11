// Makes names and subjects fit to be shown in one line.

/** One line without control characters. */
export function oneLine(text: string, longest: number): string {
  const line = text.toWellFormed().replace(/[\s\p{Cc}\p{Zl}\p{Zp}]+/gu, " ").trim();
  return line.length > longest ? line.slice(0, longest).toWellFormed() : line;
}
