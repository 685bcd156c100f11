#pragma once

#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Work/WorkRecords.h"

namespace corvane {

// The user's answer to a decision that an agent asked for. Each changes the row and the decision log in one
// transaction.

/// A hash of what the user sees before deciding.
QString decisionHash(const WorkDecisionRecord& decision);

/// Approves it if it still has the given hash.
Decided approveWorkDecision(LocalDB& db, const QString& id, const QString& decidedBy, const QString& seenHash);
Decided rejectWorkDecision(LocalDB& db, const QString& id, const QString& decidedBy);

}
