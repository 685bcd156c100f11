#include "Store/Work/CallRecordingRule.h"

#include "Foundation/Literals.h"
#include "Store/Core/Workspaces.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int longestSeconds = 600;

int clamped(int seconds)
{
    return std::clamp(seconds, 0, longestSeconds);
}

std::optional<CallRecordingRuleRow> readRule(LocalDB& db, const QString& workspace)
{
    const auto rows = db.rows(R"(SELECT id, scope, enabled, start_lead_seconds, stop_grace_seconds,
  require_meeting_app, consent_required, disclosure_mode, updated_at
FROM call_recording_rule WHERE workspace_id=? LIMIT 1;)",
        { workspace }, [](const SqlRow& row) {
            return CallRecordingRuleRow { .id = row.text(0),
                .scope = row.text(1),
                .enabled = row.integer(2) != 0,
                .startLeadSeconds = int(row.integer(3)),
                .stopGraceSeconds = int(row.integer(4)),
                .requireMeetingApp = row.integer(5) != 0,
                .consentRequired = row.integer(6) != 0,
                .disclosureMode = row.text(7),
                .updatedAt = row.integer(8) };
        });
    return rows.isEmpty() ? std::nullopt : std::optional(rows.first());
}

void insertRule(LocalDB& db, const QString& id, const QString& workspace)
{
    const qint64 now = db.nowMs();
    db.run(R"(INSERT OR IGNORE INTO call_recording_rule
  (id, workspace_id, scope, enabled, start_lead_seconds, stop_grace_seconds,
   require_meeting_app, consent_required, disclosure_mode, created_at, updated_at)
VALUES(?, ?, 'calendar_meetings', 0, 60, 120, 0, 1, 'manual', ?, ?);)",
        { id, workspace, now, now });
}

}

std::optional<CallRecordingRuleRow> fetchCallRecordingRule(LocalDB& db)
{
    const QString workspace = activeWorkspaceId(db);
    const QString id = CallRecordingRuleRow().id;
    // The id is the table's key: a second workspace needs one of its own.
    for (const QString& free : { id, id + u':' + workspace }) {
        if (const auto rule = readRule(db, workspace))
            return rule;
        insertRule(db, free, workspace);
    }
    return readRule(db, workspace);
}

bool updateCallRecordingRule(LocalDB& db, const CallRecordingRuleRow& rule)
{
    return db.run(R"(UPDATE call_recording_rule
SET enabled=?, start_lead_seconds=?, stop_grace_seconds=?, require_meeting_app=?,
    consent_required=?, disclosure_mode=?, updated_at=?
WHERE workspace_id=? AND id=?;)",
        { rule.enabled ? 1 : 0, clamped(rule.startLeadSeconds), clamped(rule.stopGraceSeconds),
            rule.requireMeetingApp ? 1 : 0, rule.consentRequired ? 1 : 0, rule.disclosureMode, db.nowMs(),
            activeWorkspaceId(db), rule.id });
}

std::optional<CallAutoRecordStateRow> callAutoRecordState(LocalDB& db, const QString& eventId)
{
    const auto rows = db.rows(R"(SELECT id, calendar_event_id, title, status, COALESCE(call_id,''),
  COALESCE(source_app,''), COALESCE(reason,''), updated_at
FROM call_auto_record_state WHERE workspace_id=? AND calendar_event_id=? LIMIT 1;)",
        { activeWorkspaceId(db), eventId }, [](const SqlRow& row) {
            return CallAutoRecordStateRow { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4),
                row.text(5), row.text(6), row.integer(7) };
        });
    return rows.isEmpty() ? std::nullopt : std::optional(rows.first());
}

bool upsertCallAutoRecordState(LocalDB& db, const CallAutoRecordStateRow& state)
{
    const qint64 now = db.nowMs();
    const bool runs = state.status == "started"_L1 || state.status == "recording"_L1;
    const std::optional<qint64> at = now;
    return db.run(R"(INSERT INTO call_auto_record_state
  (id, workspace_id, calendar_event_id, title, status, call_id, source_app, reason, started_at, stopped_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,?,?,?)
ON CONFLICT(workspace_id, calendar_event_id) DO UPDATE SET title=excluded.title, status=excluded.status,
  call_id=COALESCE(NULLIF(excluded.call_id,''), call_auto_record_state.call_id),
  source_app=COALESCE(NULLIF(excluded.source_app,''), call_auto_record_state.source_app),
  reason=excluded.reason,
  started_at=COALESCE(call_auto_record_state.started_at, excluded.started_at),
  stopped_at=COALESCE(excluded.stopped_at, call_auto_record_state.stopped_at),
  updated_at=excluded.updated_at;)",
        { u"auto:"_s + state.calendarEventId, activeWorkspaceId(db), state.calendarEventId, state.title, state.status,
            state.callId, state.sourceApp, state.reason, runs ? at : std::nullopt, runs ? std::nullopt : at, now });
}

}
