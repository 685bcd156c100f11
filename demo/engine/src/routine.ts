// Lines from machines and routines: kiln reports, the evening round, shop orders.

import type { Random } from "./random.ts";

export interface RoutineLine {
  text: string;
  sender?: string;
  /** The hour of the day at which it occurs. */
  hour?: number;
}

const firing = [
  "loaded, programme {programme}",
  "600 °C, vents closed",
  "{top} °C reached, holding for 15 minutes",
  "cooling, 410 °C, lid locked",
  "below 90 °C, safe to open",
];

const rounds = [
  "Ten o'clock check: 640, climbing, all even",
  "Ten o'clock check: 1020, going to bed",
  "Ten o'clock check: 1180, it smells right",
  "Ten o'clock check: kiln 1 off, kiln 2 cooling, lights out",
];

const shoppers = [
  "Clara Whitfield, Bristol",
  "Mateo Ibarra, Bilbao",
  "Zoë Kramer, Utrecht",
  "Hugo Lefèvre, Lyon",
  "Saoirse Byrne, Galway",
  "Nils Aalto, Turku",
  "Giulia Conti, Torino",
  "Ewa Nowak, Kraków",
  "Amélie Roy, Montréal",
  "Tim Baker, Hastings",
  "Chiara Riva, Como",
  "李娜, Singapore",
];

const goods: readonly (readonly [name: string, price: number])[] = [
  ["Breakfast bowl, sea blue", 34],
  ["Espresso cup, ash", 18],
  ["Side plate, sand", 26],
  ["Small jug, celadon", 42],
  ["Dinner plate, slate", 39],
  ["Tea bowl, tenmoku", 48],
  ["Butter dish, white", 52],
  ["Seconds box, surprise", 60],
];

/** The line of that kind and number; throws on an unknown kind. */
export function routineLine(kind: string, index: number, random: Random): RoutineLine {
  switch (kind) {
    case "kiln-log":
      return { text: kilnReport(index) };
    case "rounds":
      return { text: rounds[index % rounds.length], sender: "Jordi Mas", hour: 22 };
    case "orders":
      return { text: order(index, random) };
  }
  throw new Error(`no such routine: ${kind}`);
}

function kilnReport(index: number): string {
  const load = Math.floor(index / firing.length);
  const isBisque = load % 3 === 0;
  const report = firing[index % firing.length]
    .replace("{programme}", isBisque ? "BISQUE" : "GLAZE 1240")
    .replace("{top}", isBisque ? "980" : "1240");
  return `Kiln ${(load % 2) + 1} · ${report}`;
}

function order(index: number, random: Random): string {
  const lines: string[] = [];
  let total = 0;
  for (const [name, price] of random.shuffled(goods).slice(0, random.whole(1, 3))) {
    const count = random.whole(1, 4);
    total += count * price;
    lines.push(`${count} × ${name}`);
  }
  return [
    `New order #${1021 + index}`,
    "",
    ...lines,
    "",
    `Total: ${total},00 €`,
    `Ship to: ${random.pick(shoppers)}`,
  ].join("\n");
}
