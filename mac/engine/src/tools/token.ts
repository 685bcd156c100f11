import { randomBytes, timingSafeEqual } from "node:crypto";
import { mkdirSync, readFileSync, renameSync, rmSync, statSync, writeFileSync } from "node:fs";
import { dirname } from "node:path";

const shortest = 32;

/**
 * The secret that every call carries, in a file that only its owner reads. Removing the file renews it: the old
 * secret is worth nothing from then on.
 */
export class Token {
  readonly #path: string;
  #seen = "";
  #value = "";

  constructor(path: string) {
    this.#path = path;
  }

  /** The current secret; a new one if the file is missing, damaged, or was accessible to others. */
  current(): string {
    const seen = this.#look();
    if (seen === "" || seen !== this.#seen) {
      this.#value = seen === "" ? "" : readFileSync(this.#path, "utf8").trim();
      if (this.#value.length < shortest) this.#renew();
      this.#seen = this.#look();
    }
    return this.#value;
  }

  matches(header: string | undefined): boolean {
    const expected = Buffer.from(`Bearer ${this.current()}`);
    const given = Buffer.from(header ?? "");
    return given.length === expected.length && timingSafeEqual(given, expected);
  }

  /** Changes with the file; empty if there is no trustworthy file. */
  #look(): string {
    const file = statSync(this.#path, { throwIfNoEntry: false });
    return file && (file.mode & 0o077) === 0 ? `${file.ino}:${file.mtimeMs}:${file.size}` : "";
  }

  #renew(): void {
    this.#value = randomBytes(shortest).toString("base64url");
    mkdirSync(dirname(this.#path), { recursive: true, mode: 0o700 });
    const fresh = `${this.#path}.new`;
    rmSync(fresh, { force: true });
    writeFileSync(fresh, `${this.#value}\n`, { mode: 0o600, flag: "wx", flush: true });
    renameSync(fresh, this.#path);
  }
}
