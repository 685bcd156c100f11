#pragma once

#include "Store/Work/CallQueries.h"

namespace corvane {

// Writes of the recorder. Each returns false, and logs, if nothing was written.

/// A new call; its paths are absolute.
struct NewCall {
    QString id;
    QString calendarEventId;
    QString contactId;
    QString conversationId;
    QString title;
    QString sourceApp;
    QString sourceBundleId;
    QString captureBackend;
    QString captureMode;
    qint64 startedAtMs = 0;
    QString audioPath; ///< the file that is transcribed first
    QString micPath;
    QString systemPath;
    bool consentRequired = true;
    bool consentGranted = false;
    QString consentNote;
    QString disclosureMode;
};

bool insertCall(LocalDB& db, const NewCall& call); ///< with the status "recording"
bool endCall(LocalDB& db, const QString& id, qint64 startedAtMs, qint64 endedAtMs, const QString& status);
bool updateCallProcessing(
    LocalDB& db, const QString& id, const QString& status, const std::optional<QString>& error = std::nullopt);

/// The full text of a call; replaces an earlier one.
struct NewTranscript {
    QString callId;
    QString captureMode; ///< of what was transcribed
    QString text;
    QString model;
};

bool replaceCallTranscript(LocalDB& db, const NewTranscript& transcript);

bool storeCallSummary(
    LocalDB& db, const QString& callId, const QString& summary, const QString& model, const QStringList& warnings);

/// A change to the CRM that a call proposes. An already decided proposal with that id is left alone.
struct NewCallProposal {
    QString id;
    QString callId;
    QString contactId;
    QString kind;
    QString title;
    QString payloadJson;
    double confidence = 0;
};

bool upsertCallProposal(LocalDB& db, const NewCallProposal& proposal);

QString callContact(LocalDB& db, const QString& callId); ///< empty if none is linked

bool renameCall(LocalDB& db, const QString& id, const QString& title);
bool linkCall(LocalDB& db, const QString& id, const QString& contactId); ///< and its undecided proposals
bool deleteCall(LocalDB& db, const QString& id); ///< its undecided proposals are rejected

}
