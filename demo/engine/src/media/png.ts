// Pictures as PNG bytes.

import { crc32, deflateSync } from "node:zlib";

/** Rows of red, green, blue and alpha, a byte each. */
export interface Pixels {
  width: number;
  height: number;
  data: Uint8Array;
}

const signature = Buffer.from([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]);

/** With an alpha channel only where something shines through. */
export function png({ width, height, data }: Pixels): Buffer {
  const depth = data.some((value, index) => index % 4 === 3 && value < 255) ? 4 : 3;
  const rowBytes = width * depth;
  const rows = Buffer.alloc((rowBytes + 1) * height);
  let above = Buffer.alloc(rowBytes);
  for (let y = 0; y < height; y++) {
    const row = Buffer.alloc(rowBytes);
    for (let x = 0; x < width; x++) {
      for (let part = 0; part < depth; part++) row[x * depth + part] = data[(y * width + x) * 4 + part];
    }
    const start = y * (rowBytes + 1);
    rows[start] = 2; // each byte less the one above it
    for (let at = 0; at < rowBytes; at++) rows[start + 1 + at] = row[at] - above[at];
    above = row;
  }
  const header = Buffer.alloc(13);
  header.writeUInt32BE(width, 0);
  header.writeUInt32BE(height, 4);
  header.set([8, depth === 4 ? 6 : 2], 8);
  return Buffer.concat([
    signature,
    chunk("IHDR", header),
    chunk("IDAT", deflateSync(rows)),
    chunk("IEND", Buffer.alloc(0)),
  ]);
}

function chunk(type: string, content: Buffer): Buffer {
  const named = Buffer.concat([Buffer.from(type, "latin1"), content]);
  const whole = Buffer.alloc(named.length + 8);
  whole.writeUInt32BE(content.length, 0);
  named.copy(whole, 4);
  whole.writeUInt32BE(crc32(named), whole.length - 4);
  return whole;
}
