#pragma once

#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Approvals/OutboundQueries.h"

namespace corvane {

// The one road of a draft from "pending" to an engine and back. Each step is a transaction that changes the row, what
// is remembered of its approval, and the record of decisions; a step that cannot be recorded does not happen.

/// Stands for what leaves the machine: body, channel, account and recipient, and where there are any, the subject and
/// the files with the hashes of their content.
QString draftHash(const PendingDraft& draft);

/// Approves a pending or failed draft as it was seen, that is: with that hash.
Decided approveDraft(LocalDB& db, const QString& id, const QString& seenHash);

/// Its files are not as the person saw them: it waits for another decision with those that are given. `Changed`, or
/// `Refused` where nobody can decide about it.
Decided returnDraft(LocalDB& db, const QString& id, const QList<OutgoingFile>& files);

/// From "pending", "failed", "approved" and "placed"; one that is on its way is not called back.
Decided rejectDraft(LocalDB& db, const QString& id);

Decided takeBackDraft(LocalDB& db, const QString& id); ///< one that is approved waits for a person again
Decided confirmDraftSent(LocalDB& db, const QString& id); ///< a person saw that one that was placed went out
bool editDraft(LocalDB& db, const QString& id, const QString& body); ///< only while pending or failed

/// A pending or failed draft that nobody can send.
void failWaitingDraft(LocalDB& db, const QString& id, const QString& error);

/// Every approved draft of the account, in any workspace.
void failApprovedDrafts(LocalDB& db, const QString& accountId, const QString& error);

/// A draft on its way to an engine. Only `claimDraft` makes one.
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

/// Takes an approved draft to "sending": of two programs, or two ticks, one gets it. One that is not as it was
/// approved goes back to "pending". A draft that another process set to "approved" is taken as it stands.
struct DraftClaim {
    static DraftClaim claim(LocalDB& db, const QString& id);
    std::optional<ClaimedDraft> draft;
    bool returned = false; ///< it waits for a person again

private:
    DraftClaim() = default;
};

/// The engine took nothing: the draft is approved as before.
[[nodiscard]] bool unclaimDraft(LocalDB& db, const ClaimedDraft& draft);

/// What an account's engine says became of a draft: "sent", "placed", or anything else with an error. Counts only for
/// a draft of that account which was handed over and not confirmed or refused yet.
void acknowledgeDraft(LocalDB& db, const QString& accountSlug, const QString& id, const QString& status,
    const std::optional<QString>& providerMsgId, const QString& error);

/// Nobody says what became of a draft that was handed over.
void failUnacknowledgedDraft(LocalDB& db, const QString& id);

/// A draft that was claimed and must not be handed over.
void failClaimedDraft(LocalDB& db, const ClaimedDraft& draft, const QString& error);

}
