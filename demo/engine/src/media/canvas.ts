// A small painter: shapes with soft edges, coloured point by point.

import type { Pixels } from "./png.ts";

/** Red, green and blue from 0 to 255. */
export type Colour = readonly [number, number, number];

/** How much of a point a shape covers (0 to 1), and in which colour; nothing where it does not reach. */
export type Brush = (x: number, y: number) => Colour | undefined;

export const clamp = (value: number, low = 0, high = 1): number => Math.min(Math.max(value, low), high);

/** 0 below `from`, 1 above `to`, smooth between. */
export function smooth(from: number, to: number, value: number): number {
  const t = clamp((value - from) / (to - from));
  return t * t * (3 - 2 * t);
}

export function mix(a: Colour, b: Colour, share: number): Colour {
  return [a[0] + (b[0] - a[0]) * share, a[1] + (b[1] - a[1]) * share, a[2] + (b[2] - a[2]) * share];
}

export function scale(colour: Colour, by: number): Colour {
  return [colour[0] * by, colour[1] * by, colour[2] * by];
}

/** "#RRGGBB". */
export function colour(hex: string): Colour {
  const value = parseInt(hex.slice(1), 16);
  return [value >> 16, (value >> 8) & 255, value & 255];
}

/** The same grain at the same place, from 0 to 1. */
export function grain(x: number, y: number): number {
  let mixed = Math.imul(x | 0, 374761393) ^ Math.imul(y | 0, 668265263);
  mixed = Math.imul(mixed ^ (mixed >>> 13), 1274126177);
  return ((mixed ^ (mixed >>> 16)) >>> 0) / 4294967296;
}

export class Canvas implements Pixels {
  readonly width: number;
  readonly height: number;
  readonly data: Uint8Array;

  constructor(width: number, height: number) {
    this.width = width;
    this.height = height;
    this.data = new Uint8Array(width * height * 4);
  }

  /** Paints the points between two corners: `cover` says how much, `tint` in which colour. */
  paint(
    left: number,
    top: number,
    right: number,
    bottom: number,
    cover: (x: number, y: number) => number,
    tint: (x: number, y: number) => Colour,
  ): void {
    const lastX = Math.min(Math.ceil(right), this.width);
    const lastY = Math.min(Math.ceil(bottom), this.height);
    for (let y = Math.max(Math.floor(top), 0); y < lastY; y++) {
      for (let x = Math.max(Math.floor(left), 0); x < lastX; x++) {
        const share = clamp(cover(x + 0.5, y + 0.5));
        if (share > 0) this.blend((y * this.width + x) * 4, tint(x + 0.5, y + 0.5), share);
      }
    }
  }

  fill(tint: (x: number, y: number) => Colour): void {
    this.paint(0, 0, this.width, this.height, () => 1, tint);
  }

  ellipse(cx: number, cy: number, rx: number, ry: number, tint: (x: number, y: number) => Colour): void {
    const cover = (x: number, y: number): number => {
      const dx = (x - cx) / rx;
      const dy = (y - cy) / ry;
      const distance = Math.hypot(dx, dy);
      // Near the edge, one unit of distance is this many points.
      const slope = Math.hypot(dx / rx, dy / ry) / Math.max(distance, 1e-6);
      return (1 - distance) / Math.max(slope, 1e-6) + 0.5;
    };
    this.paint(cx - rx - 1, cy - ry - 1, cx + rx + 1, cy + ry + 1, cover, tint);
  }

  /** Darkens the floor below a thing. */
  shadow(cx: number, cy: number, rx: number, ry: number, strength: number): void {
    const cover = (x: number, y: number): number =>
      strength * Math.exp(-2.2 * (((x - cx) / rx) ** 2 + ((y - cy) / ry) ** 2));
    this.paint(cx - rx * 2, cy - ry * 2, cx + rx * 2, cy + ry * 2, cover, () => [30, 24, 22]);
  }

  box(
    left: number,
    top: number,
    right: number,
    bottom: number,
    radius: number,
    tint: (x: number, y: number) => Colour,
  ): void {
    const cx = (left + right) / 2;
    const cy = (top + bottom) / 2;
    const cover = (x: number, y: number): number => {
      const dx = Math.abs(x - cx) - (right - left) / 2 + radius;
      const dy = Math.abs(y - cy) - (bottom - top) / 2 + radius;
      return radius - Math.hypot(Math.max(dx, 0), Math.max(dy, 0)) - Math.min(Math.max(dx, dy), 0) + 0.5;
    };
    this.paint(left - 1, top - 1, right + 1, bottom + 1, cover, tint);
  }

  private blend(at: number, tint: Colour, share: number): void {
    const under = this.data[at + 3] / 255;
    const alpha = share + under * (1 - share);
    for (let part = 0; part < 3; part++) {
      const value = (tint[part] * share + this.data[at + part] * under * (1 - share)) / alpha;
      this.data[at + part] = clamp(value, 0, 255) + 0.5;
    }
    this.data[at + 3] = alpha * 255 + 0.5;
  }
}
