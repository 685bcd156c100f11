#pragma once

#include "Store/Approvals/ApprovalRecords.h"

namespace corvane {

/// A person approves or rejects an agent's decision that waits for them, and the record says so. `status` is
/// "approved" or "rejected".
Decided decideWorkDecision(LocalDB& db, const QString& id, const QString& status, const QString& decidedBy);

}
