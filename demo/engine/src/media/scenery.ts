// What the pictures share: glazes, shapes of pots, rooms and tables.

import { Canvas, clamp, colour, grain, mix, scale, smooth, type Colour } from "./canvas.ts";
import { drawVessel, type Vessel } from "./vessel.ts";

export const sea = colour("#2F6C8F");
export const ash = colour("#8C8A80");
export const sand = colour("#D2BC98");
export const celadon = colour("#9FBFA6");
export const moss = colour("#5E7F52");
export const slate = colour("#4A5560");
export const white = colour("#EDE8DD");
export const iron = colour("#6E4630");
export const black = colour("#2C2A2B");
export const terracotta = colour("#B4714B");
export const cobalt = colour("#284B9B");

export const shapes = {
  bottle: [0.1, 0.085, 0.1, 0.2, 0.27, 0.28, 0.24, 0.17],
  vase: [0.17, 0.15, 0.2, 0.28, 0.31, 0.28, 0.22, 0.17],
  cylinder: [0.24, 0.235, 0.24, 0.25, 0.25, 0.24, 0.21],
  cup: [0.47, 0.465, 0.46, 0.45, 0.43, 0.36, 0.26],
  bowl: [0.98, 0.96, 0.9, 0.8, 0.64, 0.44, 0.36],
  jar: [0.2, 0.34, 0.46, 0.51, 0.51, 0.46, 0.34, 0.22],
  pot: [0.3, 0.48, 0.6, 0.64, 0.6, 0.5, 0.4],
} as const;

export function pot(
  shape: keyof typeof shapes,
  x: number,
  y: number,
  height: number,
  glaze: Colour,
  more: Partial<Vessel> = {},
): Vessel {
  return {
    profile: shapes[shape],
    x,
    y,
    height,
    glaze,
    clay: terracotta,
    inside: scale(glaze, 0.85),
    dip: 0.82,
    tilt: 0.16,
    gloss: 0.7,
    speckles: true,
    ...more,
  };
}

/** A wall and a table in soft light; the table begins at `horizon`. */
export function room(canvas: Canvas, wall: Colour, table: Colour, horizon: number): void {
  const { width, height } = canvas;
  canvas.fill((x, y) => {
    const glow = 1.06 - 0.3 * Math.hypot(x / width - 0.25, y / height - 0.25);
    const floor = smooth(horizon - 10, horizon + 26, y);
    return scale(mix(wall, scale(table, 0.92 + 0.16 * clamp((y - horizon) / (height - horizon))), floor), glow);
  });
}

export function stillLife(
  width: number,
  height: number,
  wall: string,
  table: string,
  horizon: number,
  pots: Vessel[],
): Canvas {
  const canvas = new Canvas(width, height);
  room(canvas, colour(wall), colour(table), height * horizon);
  for (const vessel of pots) drawVessel(canvas, vessel);
  return canvas;
}

/** A plate from above, in rings. */
export function plate(canvas: Canvas, cx: number, cy: number, radius: number, glaze: Colour, rimTint: Colour): void {
  canvas.shadow(cx + radius * 0.1, cy + radius * 0.14, radius * 1.02, radius * 1.02, 0.6);
  canvas.ellipse(cx, cy, radius, radius, (x, y) => {
    const r = Math.hypot(x - cx, y - cy) / radius;
    const lean = ((x - cx) * -0.6 + (y - cy) * -0.8) / radius;
    const slope = smooth(0.62, 0.7, r) - smooth(0.7, 0.8, r) + 0.7 * smooth(0.94, 1, r);
    const speck = grain(Math.floor(x / 3), Math.floor(y / 3)) > 0.988 ? 0.78 : 1;
    return scale(
      mix(glaze, rimTint, smooth(0.93, 0.98, r)),
      (1 - 0.24 * lean * slope + 0.02 * Math.sin(r * 60)) * speck,
    );
  });
}

export function fromAbove(width: number, height: number, cloth: string): Canvas {
  const canvas = new Canvas(width, height);
  const base = colour(cloth);
  canvas.fill((x, y) =>
    scale(base, 1.04 - 0.12 * (x / width) - 0.06 * (y / height) + 0.012 * Math.sin(y * 0.9 + Math.sin(x * 0.02) * 3)),
  );
  return canvas;
}
