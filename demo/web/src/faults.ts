// Injected faults: "messages=500x1+10" fails the eleventh request for messages once.

import { Refused } from "./answer.ts";

export const endpoints = ["login", "handshake", "exchange", "bootstrap", "accounts", "chats", "messages", "pull"] as const;
export type Endpoint = (typeof endpoints)[number];

const words = ["nonsense", "half", "drop", "stall", "redirect", "huge", "many", "gone"] as const;
/** A status, or: 200 with a page in place of JSON; the answer cut off after the work is done; no answer, at once or never;
 *  another origin; 5 MiB; the variants of the bootstrap. */
export type Fault = number | (typeof words)[number];

interface Planned {
  endpoint: Endpoint;
  fault: Fault;
  /** How often; forever if missing. */
  times: number;
  /** Requests that succeed before. */
  after: number;
}

export class Faults {
  #planned: Planned[] = [];

  /** Replaces the previous plan. Throws on an unknown word. */
  plan(specifications: string[]): void {
    this.#planned = specifications.map(planned);
  }

  /** What happens to the next request. */
  next(endpoint: Endpoint): Fault | undefined {
    const due = this.#planned.find((each) => each.endpoint === endpoint && each.times > 0);
    if (!due || due.after-- > 0) return undefined;
    due.times -= 1;
    return due.fault;
  }
}

function planned(text: string): Planned {
  const [, endpoint, fault, times, after] = /^(\w+)=(\d{3}|[a-z]+)(?:x(\d+))?(?:\+(\d+))?$/.exec(text) ?? [];
  const isKnown = endpoints.includes(endpoint as Endpoint) && (/^\d{3}$/.test(fault) || words.includes(fault as never));
  const isMisplaced = (fault === "many" || fault === "gone") && endpoint !== "bootstrap";
  if (!isKnown || isMisplaced) {
    throw new Refused(400, `"${text}" is no fault. One is {endpoint}={status or word}[x{times}][+{after}]: ${endpoints.join(", ")}; ${words.join(", ")}.`);
  }
  return {
    endpoint: endpoint as Endpoint,
    fault: /^\d/.test(fault) ? Number(fault) : (fault as Fault),
    times: Number(times ?? Infinity),
    after: Number(after ?? 0),
  };
}
