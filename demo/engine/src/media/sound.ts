// A short tune as a voice note.

const rate = 16_000;

/** Mono, 16 bits a sample: plucked notes (semitones above A3), a third of a second each. */
export function wav(notes: readonly number[]): Buffer {
  const step = Math.round(rate * 0.32);
  const samples = step * notes.length + rate;
  const data = Buffer.alloc(samples * 2);
  for (let at = 0; at < samples; at++) {
    let level = 0;
    notes.forEach((note, index) => {
      const seconds = (at - index * step) / rate;
      if (seconds < 0) return;
      const tone = 2 * Math.PI * 220 * 2 ** (note / 12) * seconds;
      level +=
        (Math.sin(tone) + 0.4 * Math.sin(2 * tone) + 0.15 * Math.sin(3 * tone)) *
        Math.exp(-4 * seconds) *
        Math.min(seconds * 200, 1);
    });
    data.writeInt16LE(Math.round(9000 * Math.tanh(level)), at * 2);
  }
  return riff(data);
}

/** Mono, 16 bits a sample: a murmur of that pitch in each stretch from `start` to `end`, in seconds, silence between. */
export function murmur(seconds: number, pitch: number, stretches: readonly { start: number; end: number }[]): Buffer {
  const data = Buffer.alloc(Math.round(seconds * rate) * 2);
  for (const { start, end } of stretches) {
    for (let at = Math.round(start * rate); at < Math.min(Math.round(end * rate), data.length / 2); at++) {
      const time = at / rate;
      const melody = pitch * (1 + 0.08 * Math.sin(2 * Math.PI * 0.7 * time) + 0.05 * Math.sin(2 * Math.PI * 0.23 * time));
      const syllable = Math.max(0, Math.sin(2 * Math.PI * 3.3 * time)) * (0.6 + 0.4 * Math.sin(2 * Math.PI * 0.31 * time));
      const tone = 2 * Math.PI * melody * time;
      const level = Math.sin(tone) + 0.5 * Math.sin(2 * tone) + 0.3 * Math.sin(3 * tone);
      data.writeInt16LE(Math.round(6000 * Math.tanh(level) * syllable), at * 2);
    }
  }
  return riff(data);
}

function riff(data: Buffer): Buffer {
  const header = Buffer.alloc(44);
  header.write("RIFF", 0, "latin1");
  header.writeUInt32LE(36 + data.length, 4);
  header.write("WAVEfmt ", 8, "latin1");
  header.writeUInt32LE(16, 16);
  header.writeUInt16LE(1, 20); // PCM
  header.writeUInt16LE(1, 22); // one channel
  header.writeUInt32LE(rate, 24);
  header.writeUInt32LE(rate * 2, 28);
  header.writeUInt16LE(2, 32);
  header.writeUInt16LE(16, 34);
  header.write("data", 36, "latin1");
  header.writeUInt32LE(data.length, 40);
  return Buffer.concat([header, data]);
}
