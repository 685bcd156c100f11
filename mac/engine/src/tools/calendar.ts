import { Refusal } from "./database.ts";
import { personBehind } from "./find.ts";
import { clip, field, page, tool } from "./tool.ts";

const week = 7 * 24 * 3600 * 1000;

export const calendarTools = [
  tool({
    name: "calendar_events",
    effect: "read",
    description: "Calendar events within a period, in order of time; by default those of the next seven days.",
    input: {
      from: field.time("Start of the period; by default now.").optional(),
      to: field.time("End of the period; by default seven days later.").optional(),
      limit: field.limit(50),
    },
    run({ from, to, limit }, { db, workspace, now }) {
      const start = from ? Date.parse(from) : now.getTime();
      const end = to ? Date.parse(to) : start + week;
      if (end < start) throw new Refusal("The period ends before it starts.");
      const rows = db.rows(
        `SELECT id, title, start_ms, end_ms, all_day, calendar, location, attendees_json AS attendees, notes
         FROM calendar_event WHERE workspace_id=? AND start_ms<=? AND end_ms>=? ORDER BY start_ms, id LIMIT ?`,
        workspace, end, start, limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "calendar_calls",
    effect: "read",
    description: "Recorded calls, newest first, with their summaries.",
    input: { contact: field.id("Only those with this person.").optional(), limit: field.limit(20) },
    run({ contact, limit }, { db, workspace }) {
      const person = contact && personBehind(db, contact);
      const rows = db.rows(
        `SELECT r.id AS call, r.contact_id AS contact, r.title, r.started_at AS started_ms,
           r.duration_ms/1000 AS seconds, r.processing_status AS status, s.summary
         FROM call_recording r LEFT JOIN call_summary s ON s.call_id=r.id
         WHERE r.workspace_id=?1 AND r.deleted_at IS NULL AND (?2='' OR r.contact_id=?2)
         ORDER BY r.started_at DESC LIMIT ?3`,
        workspace, person ?? "", limit + 1,
      );
      return page(rows, limit);
    },
  }),
  tool({
    name: "calendar_call",
    effect: "read",
    description: "One recorded call: its summary, its lists, and its transcript page by page.",
    input: {
      call: field.id("Id of a call, from calendar_calls."),
      from: field.count("The first segment of the transcript to return."),
      limit: field.limit(100, 200),
    },
    run({ call, from, limit }, { db, workspace }) {
      const found = db.row(
        `SELECT r.id AS call, r.contact_id AS contact, r.title, r.started_at AS started_ms,
           r.processing_status AS status, s.summary, s.key_points_json AS key_points, s.decisions_json AS decisions,
           s.action_items_json AS action_items, s.followups_json AS followups
         FROM call_recording r LEFT JOIN call_summary s ON s.call_id=r.id
         WHERE r.id=? AND r.workspace_id=? AND r.deleted_at IS NULL`,
        call, workspace,
      );
      if (!found) throw new Refusal(`There is no call ${call} in this workspace.`);
      const parts = db.rows(
        `SELECT segment_index AS part, speaker_label AS speaker, start_ms/1000 AS seconds, text
         FROM call_transcript WHERE call_id=? AND segment_index>=? ORDER BY segment_index LIMIT ?`,
        call, from, limit + 1,
      );
      return { ...clip(found), transcript: page(parts, limit) };
    },
  }),
];
