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
    qint64 endedAt = 0; ///< 0 while it is running
    qint64 durationMs = 0;
    QString audioPath;
    QString captureMode; ///< "mic_only" or "mic_and_system"
    QString processingStatus;
    QString processingError;
    QString summary;

    bool operator==(const CallRecordingRow&) const = default;
};

QList<CallRecordingRow> recentCallRecordings(LocalDB& db, int limit); ///< newest first

/// Those whose title, person, transcript or summary contains the text, newest first. Reads every transcript.
QList<CallRecordingRow> findCallRecordings(SqlConnection& db, const QString& workspace, const QString& text, int limit);

/// The details of one call.
struct CallDetails {
    QString id;
    QString title;
    QString contactId;
    QString contactName;
    qint64 startedAt = 0;
    qint64 endedAt = 0;
    qint64 durationMs = 0;
    QString micPath;
    QString systemPath; ///< empty if the system's sound was not recorded
    QString captureMode;
    QString processingStatus;
    QString processingError;
    QString consentNote;
    QString transcript;
    QString model; ///< the transcription model
    QString summary;

    bool operator==(const CallDetails&) const = default;
};

std::optional<CallDetails> fetchCall(LocalDB& db, const QString& id);

QString transcriptText(LocalDB& db, const QString& callId);

/// Calls with sound and a transcript that ended before the given time.
QList<CallDetails> callsWithSoundBefore(LocalDB& db, qint64 endedBeforeMs);

/// A person whose name may be mentioned.
struct NamedContact {
    QString id;
    QString name;
};

QList<NamedContact> namedContacts(LocalDB& db, int limit); ///< the most recently updated first

/// The contact with that e-mail address, ignoring case; empty if there is none.
QString contactWithEmail(LocalDB& db, const QString& email);

}
