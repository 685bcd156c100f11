// Converts HTML to readable text: paragraphs, lists, quotations and links. It never fetches anything.

import { Parser } from "htmlparser2";

const skipped = new Set(["script", "style", "head", "title", "template", "svg", "object", "select", "textarea"]);
const paragraphs = new Set(["p", "h1", "h2", "h3", "h4", "h5", "h6", "ul", "ol", "table", "blockquote", "pre", "dl"]);
const blocks = new Set(["div", "tr", "li", "section", "article", "header", "footer", "address", "center", "dt", "dd", "hr"]);
const voids = new Set(["br", "hr", "img", "meta", "link", "input", "col", "area", "base", "wbr"]);

export function textFromHtml(html: string): string {
  const writer = new Writer();
  const parser = new Parser(writer, { decodeEntities: true, lowerCaseTags: true });
  parser.end(html);
  return writer.text();
}

class Writer {
  #lines: string[] = [];
  #line = "";
  /** Empty lines to add before the next text. */
  #gap = 0;
  #quotes = 0;
  /** Open elements inside an element whose content is hidden. */
  #hidden = 0;
  #preformatted = 0;
  #links: { address: string; from: number }[] = [];

  onopentag(tag: string, attributes: Record<string, string>): void {
    if (this.#hidden > 0 || skipped.has(tag) || isHidden(attributes)) {
      if (!voids.has(tag)) this.#hidden += 1;
      return;
    }
    if (paragraphs.has(tag)) this.#break(1);
    else if (blocks.has(tag)) this.#break(0);
    if (tag === "br") this.#newLine();
    else if (tag === "li") this.#write("- ");
    else if (tag === "td" || tag === "th") this.#space();
    else if (tag === "blockquote") this.#quotes += 1;
    else if (tag === "pre") this.#preformatted += 1;
    else if (tag === "img" && attributes.alt?.trim()) this.#write(`[${attributes.alt.trim()}]`);
    else if (tag === "a") this.#links.push({ address: attributes.href ?? "", from: this.#line.length });
  }

  onclosetag(tag: string): void {
    if (this.#hidden > 0) {
      if (!voids.has(tag)) this.#hidden -= 1;
      return;
    }
    if (tag === "a") this.#closeLink();
    if (paragraphs.has(tag)) this.#break(1);
    else if (blocks.has(tag)) this.#break(0);
    if (tag === "blockquote") this.#quotes = Math.max(this.#quotes - 1, 0);
    else if (tag === "pre") this.#preformatted = Math.max(this.#preformatted - 1, 0);
  }

  ontext(text: string): void {
    if (this.#hidden > 0) return;
    if (this.#preformatted > 0) {
      const [first, ...rest] = text.split(/\r?\n/);
      this.#write(first);
      for (const line of rest) {
        this.#newLine();
        this.#write(line);
      }
      return;
    }
    if (/^\s/.test(text)) this.#space();
    this.#write(text.trim().replace(/\s+/g, " "));
    if (/\s$/.test(text) && text.trim()) this.#space();
  }

  text(): string {
    this.#break(0);
    return this.#lines.join("\n");
  }

  /** A link shows its address, unless its text is the address. */
  #closeLink(): void {
    const link = this.#links.pop();
    if (!link || !/^(https?|mailto):/i.test(link.address)) return;
    const shown = this.#line.slice(Math.min(link.from, this.#line.length)).trim();
    const plain = (text: string): string => text.replace(/^(https?:\/\/|mailto:)/i, "").replace(/\/$/, "");
    if (plain(shown) === plain(link.address)) return;
    this.#write(shown ? ` (${link.address})` : link.address);
  }

  #write(text: string): void {
    if (text === "") return;
    if (this.#line === "" && this.#gap > 0 && this.#lines.length > 0) this.#lines.push(this.#prefix().trimEnd());
    this.#gap = 0;
    this.#line += text;
  }

  #space(): void {
    if (this.#line !== "" && !this.#line.endsWith(" ")) this.#line += " ";
  }

  /** Ends the line, including an empty one. */
  #newLine(): void {
    this.#lines.push((this.#prefix() + this.#line).trimEnd());
    this.#line = "";
  }

  /** Ends the line if it has text; `gap` empty lines precede the next one. */
  #break(gap: number): void {
    if (this.#line.trim() !== "") this.#newLine();
    this.#line = "";
    this.#gap = Math.max(this.#gap, gap);
  }

  #prefix(): string {
    return "> ".repeat(Math.min(this.#quotes, 5));
  }
}

function isHidden({ style = "", hidden }: Record<string, string>): boolean {
  return hidden !== undefined || /display\s*:\s*none|mso-hide\s*:\s*all|font-size\s*:\s*0(px)?\s*(;|$)/i.test(style);
}
