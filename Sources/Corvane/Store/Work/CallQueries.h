#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// A recorded call in the list of calls; times in milliseconds since the epoch.
struct CallRecordingRow {
    QString id;
    QString contactId;
    QString conversationId;
    QString title;
    qint64 startedAt = 0;
    qint64 endedAt = 0; ///< 0 while it runs
    qint64 durationMs = 0;
    QString audioPath;
    QString captureMode; ///< "mic_only" or "mic_and_system"
    QString processingStatus;
    QString processingError;
    QString summary;

    bool operator==(const CallRecordingRow&) const = default;
};

QList<CallRecordingRow> recentCallRecordings(LocalDB& db, int limit); ///< newest first

}
