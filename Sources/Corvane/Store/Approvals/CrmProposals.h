#pragma once

#include "Store/Approvals/ApprovalRecords.h"

namespace corvane {

/// A change to the CRM that waits for a person.
struct CRMUpdateProposal {
    QString id;
    QString callId;
    QString contactId;
    QString dealId;
    QString kind; ///< "note", "task" or "event"
    QString title;
    QString payloadJson; ///< "body" of a note; "title", "due", "priority", "status" of a task; "title",
                         ///< "startMs", "endMs", "location", "notes", "calendar" of an event
    double confidence = 0;
    QString status; ///< "pending", "applied" or "rejected"
    qint64 createdAt = 0; ///< milliseconds since the epoch
    QString error; ///< why the last attempt to apply it failed

    QString bodyPreview() const; ///< what it would write, for a notification
    bool operator==(const CRMUpdateProposal&) const = default;
};

/// Newest first; an empty `status` means every status.
QList<CRMUpdateProposal> fetchCRMUpdateProposals(LocalDB& db, const QString& status, int limit);
QList<CRMUpdateProposal> callProposals(LocalDB& db, const QString& callId); ///< of every status
std::optional<CRMUpdateProposal> crmProposal(LocalDB& db, const QString& id);

/// Stands for what it would write, and on whom.
QString proposalHash(const CRMUpdateProposal& proposal);

/// Writes what a pending proposal proposes, as it was seen, that is: with that hash. Where that fails it stays pending
/// and keeps the reason.
Decided applyCRMUpdateProposal(LocalDB& db, const QString& id, const QString& seenHash);
Decided rejectCRMUpdateProposal(LocalDB& db, const QString& id);

/// Points a pending proposal at a contact, and with it its call and all pending proposals of that call.
bool linkCRMUpdateProposal(LocalDB& db, const QString& id, const QString& contactId);

}
