// The photographs of the demonstration, by name.

import { Canvas, clamp, colour, mix, scale } from "./canvas.ts";
import {
  sea,
  ash,
  sand,
  celadon,
  moss,
  slate,
  white,
  black,
  terracotta,
  cobalt,
  pot,
  room,
  stillLife,
} from "./scenery.ts";
import { glazeBoard, tableSetting, floorPlan, note, tomatoes, singlePlate } from "./table-top.ts";
import { drawVessel } from "./vessel.ts";

function kilnShelf(): Canvas {
  const canvas = stillLife(1100, 460, "#6A4B3C", "#A98B6E", 0.86, []);
  const row = [celadon, sea, celadon, moss, celadon, sand, celadon, moss, celadon];
  canvas.box(0, 196, 1100, 218, 0, (_x, y) => scale(colour("#B79B80"), 1.1 - (y - 196) / 60));
  row.forEach((glaze, index) => {
    drawVessel(canvas, pot("cup", 74 + index * 119, 194, 104, glaze));
    drawVessel(canvas, pot("cup", 74 + index * 119, 424, 112, row[row.length - 1 - index]));
  });
  return canvas;
}

function teapot(): Canvas {
  const canvas = stillLife(800, 640, "#CFC6B8", "#A08568", 0.7, []);
  canvas.paint(
    500,
    250,
    720,
    480,
    (x, y) => {
      const along = clamp((x - 500) / 170);
      return 34 - 22 * along - Math.abs(y - (420 - 150 * along ** 0.8)) - Math.max(x - 672, 0) * 3;
    },
    (_x, y) => scale(black, 1.5 - (y - 250) / 300),
  );
  canvas.paint(
    140,
    250,
    330,
    480,
    (x, y) => 13 - Math.abs(Math.hypot((x - 290) / 1.1, y - 375) - 88),
    (_x, y) => scale(black, 1.6 - (y - 260) / 240),
  );
  drawVessel(canvas, pot("pot", 400, 500, 230, black, { dip: 1, tilt: 0.14, gloss: 0.9 }));
  drawVessel(canvas, pot("bowl", 400, 282, 26, black, { profile: [0.3, 1, 1.9, 2.5, 2.6], dip: 1, tilt: 0.1 }));
  canvas.ellipse(400, 252, 17, 15, (x, y) => scale(black, 1.7 - (y - 240) / 40 - (x - 390) / 80));
  return canvas;
}

/** What each picture is called in the scripts, and how it is painted. */
export const pictures: Record<string, () => Canvas> = {
  "three-vases": () =>
    stillLife(960, 720, "#E3DACB", "#B99B7A", 0.72, [
      pot("vase", 300, 570, 330, celadon),
      pot("bottle", 640, 560, 470, sea, { dip: 0.78 }),
      pot("cylinder", 480, 620, 250, sand, { dip: 0.6 }),
    ]),
  "breakfast-bowl": () =>
    stillLife(660, 880, "#D7DDDC", "#C7AE8E", 0.5, [
      pot("bowl", 330, 660, 230, sea, { tilt: 0.36, dip: 0.7, inside: mix(sea, white, 0.3) }),
    ]),
  "glaze-board": glazeBoard,
  "kiln-shelf": kilnShelf,
  "plate-top": () => singlePlate(ash, "#4B443E"),
  "slate-plate": () => singlePlate(slate, "#D5CFC4"),
  "table-setting": tableSetting,
  "tea-bowls": () =>
    stillLife(
      1000,
      480,
      "#4A4D4B",
      "#7A6A58",
      0.6,
      [sea, cobalt, slate, celadon].map((glaze, index) =>
        pot("bowl", 160 + index * 228, 372 + (index % 2) * 18, 118, glaze, {
          profile: [0.78, 0.79, 0.78, 0.74, 0.62, 0.4, 0.34],
          tilt: 0.28,
        }),
      ),
    ),
  "moon-jar": () =>
    stillLife(700, 820, "#C9C6C2", "#8F8377", 0.74, [
      pot("jar", 350, 690, 500, white, {
        dip: 1,
        clay: white,
        blush: colour("#E3A497"),
        tilt: 0.2,
        gloss: 0.35,
        inside: scale(white, 0.6),
      }),
    ]),
  "sand-vase": () =>
    stillLife(640, 800, "#BDB3A6", "#9B8C7C", 0.74, [
      pot("vase", 320, 690, 520, mix(sand, ash, 0.3), { dip: 1, gloss: 0.1 }),
    ]),
  "black-clay": () =>
    stillLife(800, 600, "#DDD8CF", "#C2B39D", 0.66, [
      pot("cylinder", 300, 500, 300, black, { dip: 0, clay: black, gloss: 0, inside: scale(black, 0.8) }),
      pot("bowl", 560, 520, 120, black, { dip: 0, clay: black, gloss: 0, inside: scale(black, 0.8), tilt: 0.24 }),
    ]),
  "cups-pair": () =>
    stillLife(840, 560, "#E6E0D4", "#C9B79C", 0.6, [pot("cup", 260, 440, 220, white), pot("cup", 580, 440, 220, moss)]),
  "blue-bowl": () =>
    stillLife(780, 640, "#E9E6E0", "#B8A58C", 0.6, [
      pot("bowl", 390, 500, 220, white, {
        blush: cobalt,
        clay: white,
        dip: 1,
        tilt: 0.3,
        inside: mix(white, cobalt, 0.25),
      }),
    ]),
  "first-bowls": () =>
    stillLife(
      1000,
      420,
      "#8E9C93",
      "#C0A98C",
      0.62,
      [sand, white, terracotta, ash, sand].map((glaze, index) =>
        pot("bowl", 120 + index * 190, 320 + (index % 2) * 24, 66 + (index % 3) * 12, glaze, {
          dip: 0,
          clay: mix(glaze, sand, 0.5),
          gloss: 0,
          tilt: 0.26,
        }),
      ),
    ),
  teapot,
  "gallery-plan": floorPlan,
  "delivery-note": note,
  tomatoes,
};

/** One moment of a bowl that rises on the wheel; `phase` from 0 to 1. */
export function wheelFrame(width: number, height: number, phase: number): Canvas {
  const canvas = new Canvas(width, height);
  const unit = height / 150;
  room(canvas, colour("#CFC7BB"), colour("#8B7A68"), height * 0.55);
  canvas.ellipse(width / 2, 118 * unit, 84 * unit, 20 * unit, (x, y) => {
    const angle = Math.atan2((y - 118 * unit) * 4, x - width / 2) + phase * Math.PI * 4;
    return scale(colour("#77736C"), 1 + 0.1 * Math.sin(angle * 3));
  });
  const rise = 0.5 - 0.5 * Math.cos(phase * Math.PI * 2);
  const open = 0.5 + 0.45 * rise;
  drawVessel(
    canvas,
    pot("bowl", width / 2, 116 * unit, (34 + 40 * rise) * unit, terracotta, {
      profile: [open, open * 0.96, 0.62 + 0.12 * rise, 0.6, 0.52, 0.46],
      dip: 0,
      clay: terracotta,
      inside: scale(terracotta, 0.8),
      tilt: 0.24,
      speckles: false,
    }),
  );
  return canvas;
}

/** A pot with a face, on nothing. */
export function happyPot(): Canvas {
  const canvas = new Canvas(320, 320);
  drawVessel(canvas, pot("pot", 160, 276, 190, celadon, { dip: 0.8, speckles: false }));
  for (const x of [126, 186]) {
    canvas.ellipse(x, 178, 9, 12, () => [44, 40, 40]);
    canvas.ellipse(x - 3, 174, 3, 4, () => [255, 255, 255]);
  }
  canvas.paint(
    126,
    190,
    186,
    230,
    (x, y) => (y > 200 ? 4.2 - Math.abs(Math.hypot(x - 156, y - 196) - 20) : 0),
    () => [44, 40, 40],
  );
  for (const x of [104, 208]) canvas.ellipse(x, 204, 14, 9, () => [226, 140, 128]);
  return canvas;
}
