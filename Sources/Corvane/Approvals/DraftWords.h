#pragma once

#include "Engines/Account.h"
#include "Engines/RuntimeState.h"
#include "Store/Approvals/OutboundQueries.h"

namespace corvane {

/// The recipient and state of a draft, for the line above the thread.
QString draftStatusTitle(const PendingDraft& draft);

/// "Subject: ..."; empty if it has none.
QString subjectLine(const PendingDraft& draft);

/// The state in a word or two.
QString statusLabel(const PendingDraft& draft);

/// Why it failed or is pending again; empty for every other draft.
QString draftFailureReason(const PendingDraft& draft);

/// The confirmation before sending.
QString confirmQuestion(const PendingDraft& draft);

/// Why an approved draft waits, and what helps; empty if its engine is just starting.
QString waitingReason(const PendingDraft& draft, const Account& account, const RuntimeState& engine);

}
