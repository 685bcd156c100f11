// Thrown pots: a profile turned around its axis, lit from the left.

import { clamp, mix, scale, smooth, grain, type Canvas, type Colour } from "./canvas.ts";

export interface Vessel {
  /** Radii from the rim down to the foot, as shares of the height. */
  profile: readonly number[];
  height: number;
  x: number;
  /** Where the foot stands. */
  y: number;
  glaze: Colour;
  clay: Colour;
  inside: Colour;
  /** How far down the glaze reaches, as a share of the height. */
  dip: number;
  /** How wide one sees into the rim: 0 from the side, 0.5 from well above. */
  tilt: number;
  gloss: number;
  speckles: boolean;
  blush?: Colour;
}

/** The profile between its points, smoothly. */
function radiusAt(profile: readonly number[], t: number): number {
  const place = clamp(t) * (profile.length - 1);
  const index = Math.min(Math.floor(place), profile.length - 2);
  const at = (offset: number): number => profile[clamp(index + offset, 0, profile.length - 1)];
  const u = place - index;
  const [a, b, c, d] = [at(-1), at(0), at(1), at(2)];
  return 0.5 * (2 * b + (c - a) * u + (2 * a - 5 * b + 4 * c - d) * u * u + (3 * b - a - 3 * c + d) * u ** 3);
}

export function drawVessel(canvas: Canvas, vessel: Vessel): void {
  const { x: cx, y: foot, height, profile, tilt } = vessel;
  const top = foot - height;
  const rim = profile[0] * height;
  const base = profile[profile.length - 1] * height;
  const widest = Math.max(...profile) * height;
  const radius = (y: number): number => radiusAt(profile, (y - top) / height) * height;
  const skin = (x: number, y: number): Colour =>
    surface(vessel, (x - cx) / Math.max(radius(y), 1), (y - top) / height, x, y);

  canvas.shadow(
    cx + widest * 0.35,
    foot + base * tilt * 0.5,
    widest * 1.25,
    Math.max(height * 0.07, widest * tilt * 0.9),
    0.5,
  );
  canvas.ellipse(cx, foot, base, base * tilt, (x) => skin(x, foot - 1));
  canvas.paint(
    cx - widest - 2,
    top,
    cx + widest + 2,
    foot,
    (x, y) => Math.min(radius(y) - Math.abs(x - cx) + 0.5, y - top),
    skin,
  );
  canvas.ellipse(cx, top, rim, Math.max(rim * tilt, 1), (x) =>
    surface({ ...vessel, dip: 1 }, (x - cx) / rim, 0.05, x, top),
  );
  const lip = Math.max(rim * 0.06, 2.5);
  canvas.ellipse(cx, top + lip * tilt * 0.4, rim - lip, Math.max((rim - lip) * tilt, 0.5), (x, y) => {
    const depth = clamp((y - (top - rim * tilt)) / (2 * rim * tilt + 1));
    const side = (x - cx) / rim;
    return scale(vessel.inside, 0.5 + 0.42 * depth + 0.16 * side);
  });
}

function surface(vessel: Vessel, across: number, down: number, x: number, y: number): Colour {
  const n = clamp(across, -1, 1);
  const facing = Math.sqrt(1 - n * n);
  const light = clamp(0.34 + 0.5 * facing - 0.34 * n);
  const edge = vessel.dip + 0.014 * Math.sin(n * 4.2 + 1) + 0.008 * Math.sin(n * 11);
  const glazed = vessel.dip >= 1 ? 1 : 1 - smooth(edge - 0.006, edge + 0.006, down);
  let tint = mix(vessel.clay, scale(vessel.glaze, 1.06 - 0.18 * down), glazed);
  if (vessel.blush !== undefined) {
    tint = mix(tint, vessel.blush, 0.75 * Math.exp(-(((n - 0.25) / 0.5) ** 2) - ((down - 0.42) / 0.3) ** 2));
  }
  // Rings of the thrower's fingers, and a thicker line where the glaze ends.
  tint = scale(
    tint,
    1 + 0.018 * Math.sin(down * 90) - 0.12 * glazed * smooth(edge - 0.05, edge, down) * (vessel.dip < 1 ? 1 : 0),
  );
  if (vessel.speckles && grain(Math.floor(x / 3), Math.floor(y / 3)) > 0.985) tint = scale(tint, 0.72);
  const shine = vessel.gloss * glazed * Math.exp(-(((n + 0.46) / 0.09) ** 2)) * smooth(0.02, 0.2, down);
  return mix(scale(tint, 0.38 + 0.78 * light), [255, 252, 244], 0.55 * shine);
}
