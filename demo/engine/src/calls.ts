// Recorded calls: their rows, audio, and the files beside it.

import { mkdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { murmur } from "./media/sound.ts";

export interface RecordedCall {
  title: string;
  status: string;
  error?: string;
  days: number;
  seconds: number;
  /** Who speaks when, in seconds; missing for a call without a transcript. */
  turns: { start: number; end: number; mine: boolean; text: string }[];
  summary: string;
  marks: number[];
  notes: string;
  task: string;
}

type Insert = (table: string, row: Record<string, string | number>) => void;

const stretch = 0.3; // seconds per value of the waveform

export function writeCall(root: string, id: string, call: RecordedCall, at: number, own: Record<string, string>, insert: Insert): void {
  const date = new Date(at);
  const folder = join(root, String(date.getFullYear()), String(date.getMonth() + 1).padStart(2, "0"), id);
  const sides = writeFiles(folder, call);
  const stamps = { created_at: at, updated_at: at };
  insert("call_recording", {
    id,
    ...own,
    title: call.title,
    capture_mode: sides.system ? "mic_and_system" : "mic_only",
    started_at: at,
    ended_at: at + call.seconds * 1000,
    duration_ms: call.seconds * 1000,
    audio_path: sides.system || sides.mic,
    mic_audio_path: sides.mic,
    system_audio_path: sides.system,
    processing_status: call.status,
    ...(call.error ? { processing_error: call.error } : {}),
    ...stamps,
  });
  if (call.turns.length === 0) return;
  insert("call_transcript", {
    id: `ctseg:${id}:0`,
    workspace_id: own.workspace_id,
    call_id: id,
    segment_index: 0,
    speaker_label: "Meeting audio",
    speaker_kind: "mixed",
    track: "system",
    text: call.turns.map(({ mine, text }) => `${speaker(mine)}: ${text}`).join("\n"),
    ...stamps,
  });
  if (!call.summary) return;
  insert("call_summary", { id: `csum:${id}`, workspace_id: own.workspace_id, call_id: id, summary: call.summary, model: "LumoAI", ...stamps });
  insert("crm_update_proposal", {
    id: `proposal:${id}:task`,
    ...own,
    call_id: id,
    kind: "task",
    title: "Create follow-up task",
    payload_json: JSON.stringify({ title: call.task, due: "", priority: "Normal", status: "To do" }),
    confidence: 0.98,
    ...stamps,
  });
}

const speaker = (mine: boolean): string => (mine ? "Me" : "Meeting audio");

/** The paths of both tracks; empty for one that was not recorded. */
function writeFiles(folder: string, call: RecordedCall): { mic: string; system: string } {
  mkdirSync(folder, { recursive: true, mode: 0o700 });
  const put = (name: string, content: string | Buffer): string => {
    writeFileSync(join(folder, name), content, { mode: 0o600 });
    return join(folder, name);
  };
  const mine = call.turns.filter((turn) => turn.mine);
  const theirs = call.turns.filter((turn) => !turn.mine);
  const spoken = call.turns.length === 0 ? [{ start: 1, end: call.seconds - 1 }] : mine;
  put("segments.json", JSON.stringify({
    segments: call.turns.map(({ start, end, mine: isMine, text }) => ({
      startMs: start * 1000,
      endMs: end * 1000,
      speaker: speaker(isMine),
      text,
    })),
  }));
  put("notes.json", JSON.stringify({ text: call.notes, marksMs: call.marks.map((second) => second * 1000) }));
  put("waveform", Buffer.concat([waveform(call.seconds, spoken), waveform(call.seconds, theirs)]));
  return {
    mic: put("mic.wav", murmur(call.seconds, 190, spoken)),
    system: theirs.length > 0 ? put("system.wav", murmur(call.seconds, 130, theirs)) : "",
  };
}

/** The loudness of each interval, in a byte. */
function waveform(seconds: number, stretches: readonly { start: number; end: number }[]): Buffer {
  const levels = Buffer.alloc(Math.ceil(seconds / stretch));
  for (let i = 0; i < levels.length; i++) {
    const time = i * stretch;
    if (stretches.some(({ start, end }) => time >= start && time < end))
      levels[i] = Math.round(90 + 80 * Math.abs(Math.sin(i * 1.7)) + 60 * Math.abs(Math.sin(i * 0.6)));
  }
  return levels;
}
