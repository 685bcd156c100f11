#pragma once

#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Approvals/OutboundQueries.h"

namespace corvane {

// The only way of a draft from "pending" to an engine and back. Each step is a transaction that changes the row, its
// approval data and the decision log; a step that cannot be logged does not happen.

/// A hash of everything that leaves the machine: body, channel, account and recipient, and, if present, the subject and
/// the files with the hashes of their content.
QString draftHash(const PendingDraft& draft);

/// Approves a pending or failed draft if it still has the given hash.
Decided approveDraft(LocalDB& db, const QString& id, const QString& seenHash);

/// Its files differ from what the user saw: it needs another decision with the given ones. `Changed`, or `Refused` if
/// it cannot be decided.
Decided returnDraft(LocalDB& db, const QString& id, const QList<OutgoingFile>& files);

/// From "pending", "failed", "approved" and "placed"; one that is being sent is not called back.
Decided rejectDraft(LocalDB& db, const QString& id);

Decided takeBackDraft(LocalDB& db, const QString& id); ///< from approved back to pending
Decided confirmDraftSent(LocalDB& db, const QString& id); ///< the user saw that a placed draft was sent
bool editDraft(LocalDB& db, const QString& id, const QString& body); ///< only while pending or failed

/// A pending or failed draft that can no longer be sent.
void failWaitingDraft(LocalDB& db, const QString& id, const QString& error);

/// All approved drafts of the account, in any workspace.
void failApprovedDrafts(LocalDB& db, const QString& accountId, const QString& error);

/// All drafts that are approved or handed to an engine, in any workspace, after a backup was restored. False if nothing
/// was changed.
[[nodiscard]] bool failRestoredDrafts(LocalDB& db);

/// A draft on its way to an engine. Only `claimDraft` creates one.
class ClaimedDraft {
public:
    const PendingDraft& row() const { return m_row; } ///< exactly what was approved

private:
    friend struct DraftClaim;
    explicit ClaimedDraft(PendingDraft row)
        : m_row(std::move(row))
    {
    }

    PendingDraft m_row;
};

/// Moves an approved draft to "sending": of several programs, or ticks, only one succeeds. A draft that differs from
/// what was approved goes back to "pending". A draft that another process set to "approved" is accepted as it is.
struct DraftClaim {
    static DraftClaim claim(LocalDB& db, const QString& id);
    std::optional<ClaimedDraft> draft;
    bool returned = false; ///< it is pending again

private:
    DraftClaim() = default;
};

/// The engine did not accept it: the draft is approved again.
[[nodiscard]] bool unclaimDraft(LocalDB& db, const ClaimedDraft& draft);

/// The result that an account's engine reports for a draft: "sent", "placed", or anything else with an error. Only
/// accepted for a draft of that account that was handed over and has no result yet.
void acknowledgeDraft(LocalDB& db, const QString& accountSlug, const QString& id, const QString& status,
    const std::optional<QString>& providerMsgId, const QString& error);

/// No result arrived for a draft that was handed over.
void failUnacknowledgedDraft(LocalDB& db, const QString& id);

/// A claimed draft that must not be handed over.
void failClaimedDraft(LocalDB& db, const ClaimedDraft& draft, const QString& error);

}
