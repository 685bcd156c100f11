#pragma once

#include "Store/Approvals/OutboundQueries.h"

namespace corvane {

/// Whose draft it is and where it stands, as the line over the thread says it.
QString draftStatusTitle(const PendingDraft& draft);

/// Why it failed, or why it waits for a person again; empty of every other draft.
QString draftFailureReason(const PendingDraft& draft);

}
