#pragma once

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"

namespace corvane {

/// Which calls are recorded automatically: one row per workspace.
struct CallRecordingRuleRow {
    QString id = u"calendar-default"_s;
    QString scope = u"calendar_meetings"_s;
    bool enabled = false;
    int startLeadSeconds = 60; ///< before the meeting
    int stopGraceSeconds = 120; ///< after it
    bool requireMeetingApp = false;
    bool consentRequired = true;
    QString disclosureMode = u"manual"_s;
    qint64 updatedAt = 0;

    bool operator==(const CallRecordingRuleRow&) const = default;
};

/// The rule of the active workspace, created if missing; nothing if it can't be read.
std::optional<CallRecordingRuleRow> fetchCallRecordingRule(LocalDB& db);

/// The seconds are clamped to 0 to 600. False if nothing was written.
bool updateCallRecordingRule(LocalDB& db, const CallRecordingRuleRow& rule);

/// The recording state of a calendar event.
struct CallAutoRecordStateRow {
    QString id; ///< "auto:{event id}"
    QString calendarEventId;
    QString title;
    QString status; ///< "started", "recording", "complete", "stopped", "skipped", "failed" or "interrupted"
    QString callId;
    QString sourceApp;
    QString reason;
    qint64 updatedAt = 0;

    bool operator==(const CallAutoRecordStateRow&) const = default;
};

std::optional<CallAutoRecordStateRow> callAutoRecordState(LocalDB& db, const QString& eventId);

/// Stored under the event's id; an empty call or program keeps the known one. False if nothing was written.
bool upsertCallAutoRecordState(LocalDB& db, const CallAutoRecordStateRow& state);

}
