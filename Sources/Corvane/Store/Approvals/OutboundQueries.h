#pragma once

#include "Store/Approvals/DraftStatus.h"
#include "Store/Approvals/OutgoingMessage.h"
#include "Store/Core/LocalDB.h"

#include <QStringList>

namespace corvane {

/// A message that is waiting to be sent, or was sent.
struct PendingDraft {
    QString id;
    QString conversationId;
    QString channel;
    QString accountId; ///< the account's slug
    QString externalId;
    QString title;
    QString body;
    QString status; ///< as stored; may be unknown to `DraftStatus`
    QString source;
    QString webAckStatus;
    QString providerMsgId;
    QString error;
    QString subject = {};
    QString files = {}; ///< as stored: `filesFromText` reads it
    QString accountName = {}; ///< the account's display name, if known; not a column

    DraftStatus state() const { return draftStatus(status); }
    bool operator==(const PendingDraft&) const = default;
};

/// Queues a draft for approval; false if there is no such conversation.
bool queueDraft(LocalDB& db, const QString& conversationId, const QString& text, const QString& source);

/// The same with a subject and files from the drafts' outbox.
bool queueDraft(LocalDB& db, const QString& conversationId, const OutgoingMessage& message, const QString& source);

/// All files of drafts that may still be sent, in any workspace; nothing if they cannot be read.
std::optional<QList<OutgoingFile>> fetchDraftFiles(LocalDB& db);

/// Failed, pending, sending, then the rest; oldest first within each.
QList<PendingDraft> fetchDrafts(LocalDB& db, const QList<DraftStatus>& statuses, int limit);

/// The approved drafts of these accounts, oldest first.
QList<PendingDraft> fetchApprovedDrafts(LocalDB& db, const QStringList& accountIds, int limit);

struct DraftOfAccount {
    QString id;
    QString accountId;
};
/// All approved drafts of the active workspace.
QList<DraftOfAccount> fetchApprovedIds(LocalDB& db);

/// The slugs of the accounts that have approved drafts, in any workspace.
QStringList accountsWithApprovedDrafts(LocalDB& db);

/// All drafts that were handed to an engine and not acknowledged, in any workspace.
QStringList fetchSendingIds(LocalDB& db);

/// Whether the user can approve, reject and edit it.
bool waitsForPerson(const PendingDraft& draft);

/// Whether it failed without a definite result (no acknowledgment, the engine cannot know, or it comes from a backup):
/// it may have been sent.
bool mayHaveGoneOut(const PendingDraft& draft);

/// The current row, whatever its status and workspace.
std::optional<PendingDraft> fetchDraft(LocalDB& db, const QString& id);

/// Moves the row from one status to another atomically: true if this call changed it, false if its status was no longer
/// `from` or the file could not be written. Other programs change the same rows, so every step that must happen once
/// goes through here.
[[nodiscard]] bool moveDraft(LocalDB& db, const QString& id, DraftStatus from, DraftStatus to);

void markDraftCompleted(
    LocalDB& db, const QString& id, DraftStatus status, const std::optional<QString>& providerMsgId);
void markDraftFailed(LocalDB& db, const QString& id, const QString& error);
void updateDraftBody(LocalDB& db, const QString& id, const QString& body); ///< only while pending or failed
void markDraftUnacknowledged(LocalDB& db, const QString& id); ///< only while sending

}
