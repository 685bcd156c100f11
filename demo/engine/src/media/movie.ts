// Frames as a QuickTime movie, each frame a PNG.

import { png, type Pixels } from "./png.ts";

/** Without sound; `rate` frames a second. */
export function movie(frames: readonly Pixels[], rate: number): Buffer {
  const { width, height } = frames[0];
  const pictures = frames.map(png);
  const type = atom("ftyp", text("qt  "), u32(0), text("qt  "));
  const media = atom("mdat", ...pictures);
  const offsets: number[] = [];
  let at = type.length + 8;
  for (const picture of pictures) {
    offsets.push(at);
    at += picture.length;
  }
  const count = frames.length;
  const matrix = u32(0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x40000000);
  const sample = atom(
    "png ",
    u32(0),
    u16(0, 1, 0, 0),
    u32(0, 512, 512),
    u16(width, height),
    u32(72 << 16, 72 << 16, 0),
    u16(1),
    Buffer.alloc(32),
    u16(24, 0xffff),
  );
  const table = atom(
    "stbl",
    atom("stsd", u32(0, 1), sample),
    atom("stts", u32(0, 1, count, 1)),
    atom("stsc", u32(0, 1, 1, 1, 1)),
    atom("stsz", u32(0, 0, count, ...pictures.map((picture) => picture.length))),
    atom("stco", u32(0, count, ...offsets)),
  );
  const information = atom(
    "minf",
    atom("vmhd", u32(1), u16(0, 0, 0, 0)),
    atom("dinf", atom("dref", u32(0, 1), atom("url ", u32(1)))),
    table,
  );
  const track = atom(
    "trak",
    atom("tkhd", u32(0xf, 0, 0, 1, 0, count, 0, 0), u16(0, 0, 0, 0), matrix, u32(width << 16, height << 16)),
    atom(
      "mdia",
      atom("mdhd", u32(0, 0, 0, rate, count), u16(0, 0)),
      atom("hdlr", u32(0), text("mhlrvide"), u32(0, 0, 0), Buffer.from([0])),
      information,
    ),
  );
  const header = atom(
    "mvhd",
    u32(0, 0, 0, rate, count, 0x10000),
    u16(0x100, 0),
    u32(0, 0),
    matrix,
    u32(0, 0, 0, 0, 0, 0, 2),
  );
  return Buffer.concat([type, media, atom("moov", header, track)]);
}

const text = (name: string): Buffer => Buffer.from(name, "latin1");

function u32(...values: number[]): Buffer {
  const buffer = Buffer.alloc(values.length * 4);
  values.forEach((value, index) => buffer.writeUInt32BE(value >>> 0, index * 4));
  return buffer;
}

function u16(...values: number[]): Buffer {
  const buffer = Buffer.alloc(values.length * 2);
  values.forEach((value, index) => buffer.writeUInt16BE(value, index * 2));
  return buffer;
}

function atom(type: string, ...parts: Buffer[]): Buffer {
  const content = Buffer.concat(parts);
  return Buffer.concat([u32(content.length + 8), text(type), content]);
}
