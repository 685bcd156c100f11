#pragma once

#include "Store/Approvals/DraftStatus.h"
#include "Store/Approvals/OutgoingMessage.h"
#include "Store/Core/LocalDB.h"

#include <QStringList>

namespace corvane {

/// A message that waits to go out, or went.
struct PendingDraft {
    QString id;
    QString conversationId;
    QString channel;
    QString accountId; ///< the account's slug
    QString externalId;
    QString title;
    QString body;
    QString status; ///< the word in the row, also one that `DraftStatus` does not know
    QString source;
    QString webAckStatus;
    QString providerMsgId;
    QString error;
    QString subject = {};
    QString files = {}; ///< as the row holds them: `filesFromText` reads it
    QString accountName = {}; ///< as the person calls the account, where it is known; in no column

    DraftStatus state() const { return draftStatus(status); }
    bool operator==(const PendingDraft&) const = default;
};

/// Queues a draft that waits for the user; false where there is no such conversation.
bool queueDraft(LocalDB& db, const QString& conversationId, const QString& text, const QString& source);

/// The same with a subject and with files that lie in the outbox of the drafts.
bool queueDraft(LocalDB& db, const QString& conversationId, const OutgoingMessage& message, const QString& source);

/// Every file of a draft that may still be sent, in any workspace; nothing where they cannot be read.
std::optional<QList<OutgoingFile>> fetchDraftFiles(LocalDB& db);

/// Oldest first within failed, pending, sending, and the rest.
QList<PendingDraft> fetchDrafts(LocalDB& db, const QList<DraftStatus>& statuses, int limit);

/// Of those approved drafts that `accountIds` can take, the oldest first.
QList<PendingDraft> fetchApprovedDrafts(LocalDB& db, const QStringList& accountIds, int limit);

struct DraftOfAccount {
    QString id;
    QString accountId;
};
/// Every approved draft of the active workspace.
QList<DraftOfAccount> fetchApprovedIds(LocalDB& db);

/// The slugs of the accounts that have approved drafts, in any workspace.
QStringList accountsWithApprovedDrafts(LocalDB& db);

/// Every draft that was handed to an engine and not acknowledged, in any workspace.
QStringList fetchSendingIds(LocalDB& db);

/// Whether a person can approve, reject and edit it.
bool waitsForPerson(const PendingDraft& draft);

/// Whether it failed because nobody acknowledged it in time, or its engine cannot know: it may have gone out.
bool mayHaveGoneOut(const PendingDraft& draft);

/// The row as it stands now, whatever its status and workspace.
std::optional<PendingDraft> fetchDraft(LocalDB& db, const QString& id);

/// Takes the row from one status to the next, in one step that only one caller can win: true where this call moved
/// it, false where it no longer stood at `from` or the file did not take the change. Other programs move the same
/// rows, so every step that must happen once is asked for here.
[[nodiscard]] bool moveDraft(LocalDB& db, const QString& id, DraftStatus from, DraftStatus to);

void markDraftCompleted(
    LocalDB& db, const QString& id, DraftStatus status, const std::optional<QString>& providerMsgId);
void markDraftFailed(LocalDB& db, const QString& id, const QString& error);
void updateDraftBody(LocalDB& db, const QString& id, const QString& body); ///< only while pending or failed
void markDraftUnacknowledged(LocalDB& db, const QString& id); ///< only while sending

}
