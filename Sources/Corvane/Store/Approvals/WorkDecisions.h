#pragma once

#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Work/WorkRecords.h"

namespace corvane {

// A person's word on an agent's decision that waits for them. Each changes the row and the record of decisions as one.

/// Stands for what a person reads before they decide.
QString decisionHash(const WorkDecisionRecord& decision);

/// Approves it as it was seen, that is: with that hash.
Decided approveWorkDecision(LocalDB& db, const QString& id, const QString& decidedBy, const QString& seenHash);
Decided rejectWorkDecision(LocalDB& db, const QString& id, const QString& decidedBy);

}
