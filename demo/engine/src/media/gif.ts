// Frames as an animated GIF.

import type { Pixels } from "./png.ts";

/** One palette for all: the colours that the frames use most. Repeats for ever. */
export function gif(frames: readonly Pixels[], hundredths: number): Buffer {
  const { width, height } = frames[0];
  const file: Buffer[] = [Buffer.from("GIF89a", "latin1"), words(width, height), Buffer.from([0xf7, 0, 0])];
  const palette = paletteOf(frames);
  const nearest = new Map<number, number>();
  file.push(palette, Buffer.from("\x21\xff\x0bNETSCAPE2.0\x03\x01\x00\x00\x00", "latin1"));
  for (const frame of frames) {
    file.push(Buffer.from([0x21, 0xf9, 4, 0, hundredths & 255, hundredths >> 8, 0, 0, 0x2c]));
    file.push(
      words(0, 0, width, height),
      Buffer.from([0, 8]),
      blocks(compress(indices(frame, palette, nearest))),
      Buffer.from([0]),
    );
  }
  file.push(Buffer.from([0x3b]));
  return Buffer.concat(file);
}

function words(...values: number[]): Buffer {
  const buffer = Buffer.alloc(values.length * 2);
  values.forEach((value, index) => buffer.writeUInt16LE(value, index * 2));
  return buffer;
}

/** A colour of a frame, 5 bits each of red, green and blue. */
function coarse(data: Uint8Array, point: number): number {
  return ((data[point * 4] >> 3) << 10) | ((data[point * 4 + 1] >> 3) << 5) | (data[point * 4 + 2] >> 3);
}

const parts = (code: number): number[] => [code >> 10, (code >> 5) & 31, code & 31].map((part) => (part << 3) | 4);

function paletteOf(frames: readonly Pixels[]): Buffer {
  const uses = new Map<number, number>();
  for (const { data } of frames) {
    for (let point = 0; point < data.length / 4; point++) {
      const code = coarse(data, point);
      uses.set(code, (uses.get(code) ?? 0) + 1);
    }
  }
  const most = [...uses].sort((a, b) => b[1] - a[1] || a[0] - b[0]).slice(0, 256);
  const palette = Buffer.alloc(256 * 3);
  most.forEach(([code], index) => palette.set(parts(code), index * 3));
  return palette;
}

function indices({ data }: Pixels, palette: Buffer, nearest: Map<number, number>): Uint8Array {
  return Uint8Array.from({ length: data.length / 4 }, (_, point) => {
    const code = coarse(data, point);
    const known = nearest.get(code) ?? nearestTo(parts(code), palette);
    nearest.set(code, known);
    return known;
  });
}

function nearestTo([red, green, blue]: number[], palette: Buffer): number {
  let best = 0;
  let least = Infinity;
  for (let index = 0; index < 256; index++) {
    const away =
      (palette[index * 3] - red) ** 2 + (palette[index * 3 + 1] - green) ** 2 + (palette[index * 3 + 2] - blue) ** 2;
    if (away < least) [best, least] = [index, away];
  }
  return best;
}

/** LZW with codes of 9 to 12 bits, as GIF wants it. */
function compress(values: Uint8Array): Buffer {
  const clear = 256;
  const out: number[] = [];
  let held = 0;
  let heldBits = 0;
  let size = 9;
  const write = (code: number): void => {
    held |= code << heldBits;
    heldBits += size;
    for (; heldBits >= 8; heldBits -= 8, held >>>= 8) out.push(held & 255);
  };
  let table = new Map<number, number>();
  let next = clear + 2;
  write(clear);
  let prefix = values[0];
  for (let at = 1; at < values.length; at++) {
    const key = prefix * 256 + values[at];
    const known = table.get(key);
    if (known !== undefined) {
      prefix = known;
      continue;
    }
    write(prefix);
    prefix = values[at];
    if (next < 4096) {
      table.set(key, next++);
      if (next > 1 << size && size < 12) size++;
    } else {
      write(clear);
      table = new Map();
      next = clear + 2;
      size = 9;
    }
  }
  write(prefix);
  write(clear + 1);
  if (heldBits > 0) out.push(held & 255);
  return Buffer.from(out);
}

function blocks(data: Buffer): Buffer {
  const parts: Buffer[] = [];
  for (let at = 0; at < data.length; at += 255) {
    const part = data.subarray(at, at + 255);
    parts.push(Buffer.from([part.length]), part);
  }
  return Buffer.concat(parts);
}
