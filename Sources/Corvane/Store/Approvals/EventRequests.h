#pragma once

#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Work/CalendarQueries.h"

namespace corvane {

// The user's decision on an event that an agent wants to add. Each is logged.

/// A hash of what the user sees before deciding.
QString eventHash(const CalCommand& command);

/// Approves it if it still has the given hash. The row stays pending until the calendar has the event.
Decided approveEvent(LocalDB& db, const QString& id, const QString& seenHash);
Decided rejectEvent(LocalDB& db, const QString& id);

/// Whether the user has approved the event as it is: directly, or the proposal that it came from.
bool isApproved(LocalDB& db, const CalCommand& command);

/// Inside the transaction that applies the proposal.
[[nodiscard]] bool recordProposedEvent(LocalDB& db, const QString& id);

}
