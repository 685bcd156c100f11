// What is seen from above: plates, tiles, papers.

import { Canvas, colour, grain, mix, scale, smooth, type Colour } from "./canvas.ts";
import {
  sea,
  ash,
  sand,
  celadon,
  moss,
  slate,
  white,
  iron,
  black,
  terracotta,
  cobalt,
  plate,
  fromAbove,
} from "./scenery.ts";

export function glazeBoard(): Canvas {
  const canvas = fromAbove(900, 560, "#CDB79A");
  const glazes = [
    sea,
    celadon,
    white,
    moss,
    ash,
    sand,
    slate,
    cobalt,
    terracotta,
    iron,
    black,
    colour("#C98B7A"),
    colour("#7FA3B8"),
    colour("#B8A13C"),
    colour("#6B4E71"),
  ];
  glazes.forEach((glaze, index) => {
    const left = 62 + (index % 5) * 160;
    const top = 46 + Math.floor(index / 5) * 164;
    canvas.shadow(left + 72, top + 78, 84, 80, 0.35);
    canvas.box(left, top, left + 136, top + 136, 12, (x, y) => {
      const dip = top + 92 + 5 * Math.sin(x * 0.09 + index) + 8 * Math.exp(-(((x - left - 30 - index * 5) / 9) ** 2));
      const tint = mix(glaze, terracotta, smooth(dip - 1, dip + 1, y));
      const pool = 1 - 0.2 * smooth(dip - 26, dip, y) * (1 - smooth(dip, dip + 1, y));
      const speck = grain(Math.floor(x / 2), Math.floor(y / 2) + index * 977) > 0.985 ? 0.8 : 1;
      return scale(tint, (1.12 - 0.22 * ((y - top) / 136) - 0.05 * ((x - left) / 136)) * pool * speck);
    });
  });
  return canvas;
}

export function tableSetting(): Canvas {
  const canvas = fromAbove(900, 600, "#D9D2C4");
  for (const [x, glaze] of [
    [235, sea],
    [665, white],
  ] as const) {
    plate(canvas, x, 320, 190, glaze, iron);
    plate(canvas, x, 320, 118, mix(glaze, white, 0.5), iron);
    canvas.box(x + 208, 190, x + 216, 450, 4, () => colour("#8E8B86"));
    plate(canvas, x + 4, 84, 58, celadon, scale(celadon, 0.6));
  }
  return canvas;
}

/** Lines on paper: walls, tables and a niche. */
export function floorPlan(): Canvas {
  const canvas = new Canvas(900, 620);
  canvas.fill((x, y) => (x % 30 < 1.1 || y % 30 < 1.1 ? [226, 232, 238] : [246, 248, 250]));
  const ink = (): Colour => [52, 66, 84];
  const wall = (a: number, b: number, c: number, d: number): void => canvas.box(a, b, c, d, 0, ink);
  wall(70, 70, 830, 80);
  wall(70, 70, 80, 550);
  wall(70, 540, 360, 550);
  wall(460, 540, 830, 550);
  wall(820, 70, 830, 230);
  wall(820, 390, 830, 550);
  wall(820, 230, 872, 238);
  wall(820, 382, 872, 390);
  wall(864, 230, 872, 390);
  for (const [left, top, right, bottom] of [
    [170, 170, 360, 260],
    [470, 170, 660, 260],
    [180, 390, 300, 470],
  ]) {
    canvas.box(left, top, right, bottom, 8, ink);
    canvas.box(left + 3, top + 3, right - 3, bottom - 3, 6, () => [214, 226, 246]);
  }
  for (const [x, y] of [
    [848, 282],
    [848, 340],
    [230, 215],
    [300, 215],
    [540, 215],
    [600, 215],
  ]) {
    canvas.ellipse(x, y, 13, 13, ink);
    canvas.ellipse(x, y, 10, 10, () => [240, 190, 120]);
  }
  return canvas;
}

/** A form with lines of writing and a signature, as a phone sees it. */
export function note(): Canvas {
  const canvas = fromAbove(600, 800, "#8A7763");
  canvas.shadow(310, 415, 250, 350, 0.4);
  canvas.box(70, 60, 530, 740, 3, (_x, y) => scale([250, 248, 242], 1 - 0.06 * (y / 800)));
  for (let line = 0; line < 15; line++) {
    const end = 160 + 320 * grain(line, 7);
    canvas.box(110, 130 + line * 28, end, 138 + line * 28, 3, () => [120, 124, 132]);
  }
  canvas.paint(
    300,
    590,
    500,
    690,
    (x, y) => 2.4 - Math.abs(y - 640 - 26 * Math.sin(x * 0.09) * Math.cos(x * 0.023)),
    () => [40, 60, 150],
  );
  return canvas;
}

export function tomatoes(): Canvas {
  const canvas = fromAbove(800, 600, "#B99B78");
  for (const [x, y, r] of [
    [250, 240, 118],
    [490, 210, 105],
    [390, 400, 128],
    [610, 390, 96],
    [180, 440, 84],
  ]) {
    canvas.shadow(x + 14, y + 22, r, r, 0.5);
    canvas.ellipse(x, y, r, r * 0.94, (px, py) => {
      const away = Math.hypot(px - x + r * 0.3, py - y + r * 0.35) / r;
      return mix(scale([206, 58, 40], 1.15 - 0.5 * away), [255, 240, 225], 0.7 * Math.exp(-((away / 0.22) ** 2)));
    });
    canvas.paint(
      x - r / 3,
      y - r / 3,
      x + r / 3,
      y + r / 3,
      (px, py) => {
        const angle = Math.atan2(py - y, px - x);
        return r * (0.13 + 0.16 * Math.max(Math.cos(angle * 5), 0)) - Math.hypot(px - x, py - y);
      },
      () => [74, 112, 52],
    );
  }
  return canvas;
}

export function singlePlate(glaze: Colour, cloth: string): Canvas {
  const canvas = fromAbove(720, 720, cloth);
  plate(canvas, 360, 355, 270, glaze, terracotta);
  return canvas;
}
