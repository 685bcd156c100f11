// People's display names: the name in the newest mail.

import type { Person } from "./address.ts";
import type { MailStore } from "./store.ts";

const mostKept = 5_000;

export class Names {
  readonly #store: MailStore;
  readonly #known = new Map<string, { name: string; at: number }>();

  constructor(store: MailStore) {
    this.#store = store;
  }

  /** True if the name is new, and no newer mail has one. */
  note({ address, name }: Person, at: number): boolean {
    const known = this.#entry(address);
    if (known.at > at) return false;
    const isNews = known.name !== name || known.at === 0;
    this.#known.set(address, { name, at });
    return isNews;
  }

  nameOf(address: string): string {
    return this.#entry(address).name;
  }

  /** The title of a chat with these people; undefined for a single person without a name. */
  titleOf(people: Person[]): string | undefined {
    if (people.length === 1) return this.nameOf(people[0].address) || undefined;
    const names = people.slice(0, 4).map(({ address }) => this.nameOf(address) || address);
    return people.length > 4 ? `${names.join(", ")} and ${people.length - 4} more` : names.join(", ");
  }

  #entry(address: string): { name: string; at: number } {
    const known = this.#known.get(address);
    if (known) return known;
    if (this.#known.size >= mostKept) this.#known.clear();
    const entry = this.#store.person(address) ?? { name: "", at: 0 };
    this.#known.set(address, entry);
    return entry;
  }
}
