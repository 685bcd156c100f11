#pragma once

#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Work/CalendarQueries.h"

namespace corvane {

// A person's word on an event that an agent wants to add. Each goes into the record of decisions.

/// Stands for what a person reads before they decide.
QString eventHash(const CalCommand& command);

/// Approves it as it was seen, that is: with that hash. The row stays pending until the calendar has the event.
Decided approveEvent(LocalDB& db, const QString& id, const QString& seenHash);
Decided rejectEvent(LocalDB& db, const QString& id);

/// Whether a person has said so to the event as it stands: to itself, or to the proposal that it came from.
bool isApproved(LocalDB& db, const CalCommand& command);

/// Inside the transaction that applies the proposal.
[[nodiscard]] bool recordProposedEvent(LocalDB& db, const QString& id);

}
