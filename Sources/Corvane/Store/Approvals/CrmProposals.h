#pragma once

#include "Store/Approvals/ApprovalRecords.h"

namespace corvane {

/// A proposed change to the CRM.
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

/// Newest first; an empty `status` means any.
QList<CRMUpdateProposal> fetchCRMUpdateProposals(LocalDB& db, const QString& status, int limit);
QList<CRMUpdateProposal> callProposals(LocalDB& db, const QString& callId); ///< of any status
std::optional<CRMUpdateProposal> crmProposal(LocalDB& db, const QString& id);

/// A hash of what it would write, and for whom.
QString proposalHash(const CRMUpdateProposal& proposal);

/// Applies a pending proposal if it still has the given hash. If that fails, it stays pending and keeps the reason.
Decided applyCRMUpdateProposal(LocalDB& db, const QString& id, const QString& seenHash);
Decided rejectCRMUpdateProposal(LocalDB& db, const QString& id);

/// Links a pending proposal to a contact, and with it its call and all pending proposals of that call.
bool linkCRMUpdateProposal(LocalDB& db, const QString& id, const QString& contactId);

}
