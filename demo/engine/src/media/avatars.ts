// Faces and marks for people and groups.

import { randomFrom } from "../random.ts";
import { Canvas, colour, mix, scale, type Colour } from "./canvas.ts";
import { drawVessel } from "./vessel.ts";

const size = 160;
const grounds = ["#D9E4DD", "#E9DCC9", "#D5DFEA", "#EAD5CF", "#E3DDEB", "#CFE0E3", "#E8E4D0"];
const shirts = ["#2F5F7A", "#7A3E3A", "#4B6B4A", "#C08A3E", "#46405E", "#D8D2C6", "#2E2F35"];
const skins: Record<string, string> = { fair: "#F1CFB2", light: "#E6B892", tan: "#C98F66", dark: "#7C4D31" };
const hairs: Record<string, string> = {
  black: "#221E22",
  umber: "#3A2A22",
  brown: "#7A4E2D",
  blond: "#C39A57",
  grey: "#9A9896",
  red: "#A24C2E",
};

/** A face as the words of `look` tell it; the ground and the shirt come from the name. */
export function portrait(name: string, look: string): Canvas {
  const random = randomFrom(`face/${name}`);
  const words = look.split(" ");
  const named = (table: Record<string, string>): Colour =>
    colour(words.map((word) => table[word]).find((hex) => hex !== undefined) ?? Object.values(table)[0]);
  const has = (word: string): boolean => words.includes(word);
  const ground = colour(random.pick(grounds));
  const shirt = colour(random.pick(shirts));
  const skin = named(skins);
  const hair = named(hairs);
  const wide = random.between(31, 36);
  const canvas = new Canvas(size, size);
  canvas.fill((x, y) => scale(ground, 1.05 - 0.16 * ((x + y) / (2 * size))));
  const lit =
    (tint: Colour) =>
    (x: number): Colour =>
      scale(tint, 1.05 - 0.2 * (x / size));

  if (has("long")) canvas.box(80 - wide - 12, 46, 80 + wide + 12, 128, 34, lit(hair)); // long hair
  if (has("bun")) canvas.ellipse(80, 28, 17, 16, lit(hair)); // a bun
  canvas.ellipse(80, 176, 62, 56, lit(shirt));
  canvas.box(66, 96, 94, 132, 13, (x, y) => scale(skin, 0.9 - 0.001 * (y - 96) - 0.0006 * x));
  canvas.ellipse(80, 76, wide, 40, lit(skin));
  // The hair is what lies of its cap above a slanted fringe.
  const fringe = has("short") ? 54 : 62;
  canvas.paint(
    20,
    20,
    140,
    110,
    (x, y) => {
      const cap = 1 - Math.hypot((x - 80) / (wide + 6), (y - 66) / (has("full") ? 45 : 39));
      const line = fringe + 10 * Math.cos((x - 66) * 0.05) - 0.012 * (x - 80) ** 2 * (has("long") ? -1.4 : -0.9);
      return Math.min(cap * 36 + 0.5, line - y);
    },
    lit(hair),
  );
  if (has("beard")) beard(canvas, hair, skin, wide);
  for (const side of [-1, 1]) {
    canvas.ellipse(80 + side * 13, 80, 3.1, 3.8, () => [42, 34, 32]);
    canvas.box(80 + side * 13 - 7, 70, 80 + side * 13 + 7, 72.4, 1.2, () => scale(hair, 0.9));
  }
  if (has("glasses")) glasses(canvas);
  canvas.box(78.6, 82, 81.4, 91, 1.4, () => scale(skin, 0.84));
  canvas.paint(
    62,
    92,
    98,
    108,
    (x, y) => (y > 96 ? 1.7 - Math.abs(Math.hypot(x - 80, (y - 88) * 1.1) - 13) : 0),
    () => mix(skin, [140, 40, 40], 0.6),
  );
  return canvas;
}

function beard(canvas: Canvas, hair: Colour, skin: Colour, wide: number): void {
  canvas.paint(
    30,
    82,
    130,
    122,
    (x, y) => {
      const face = 1 - Math.hypot((x - 80) / (wide + 1), (y - 76) / 42);
      const mouth = Math.hypot((x - 80) / 15, (y - 99) / 8) - 1;
      return Math.min(face * 30, mouth * 8, (y - 90 + 0.006 * (x - 80) ** 2) / 2);
    },
    () => mix(hair, skin, 0.2),
  );
}

function glasses(canvas: Canvas): void {
  for (const side of [-1, 1]) {
    canvas.paint(
      50,
      66,
      110,
      96,
      (x, y) => 1.6 - Math.abs(Math.hypot(x - 80 - side * 13, y - 80) - 9.5),
      () => [50, 46, 48],
    );
  }
  canvas.box(76, 78.6, 84, 81, 1, () => [50, 46, 48]);
}

/** A pot on a ground of its own, for groups and machines. */
export function mark(handle: string): Canvas {
  const random = randomFrom(`mark/${handle}`);
  const glaze = colour(random.pick(["#2F6C8F", "#B4714B", "#5E7F52", "#6B4E71", "#C98B3A"]));
  const canvas = new Canvas(size, size);
  const ground = mix(glaze, [255, 255, 255], 0.78);
  canvas.fill((x, y) => scale(ground, 1.04 - 0.1 * ((x + y) / (2 * size))));
  const profile = random.pick([
    [0.3, 0.27, 0.34, 0.46, 0.5, 0.42, 0.3],
    [0.62, 0.6, 0.58, 0.5, 0.36, 0.3],
    [0.16, 0.14, 0.22, 0.4, 0.44, 0.36, 0.26],
  ]);
  drawVessel(canvas, {
    profile,
    height: 88,
    x: 80,
    y: 124,
    glaze,
    clay: colour("#C79A74"),
    inside: scale(glaze, 0.7),
    dip: 0.74,
    tilt: 0.18,
    gloss: 0.6,
    speckles: false,
  });
  return canvas;
}
