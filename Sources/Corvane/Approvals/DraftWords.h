#pragma once

#include "Engines/Account.h"
#include "Engines/RuntimeState.h"
#include "Store/Approvals/OutboundQueries.h"

namespace corvane {

/// Whose draft it is and where it stands, as the line over the thread says it.
QString draftStatusTitle(const PendingDraft& draft);

/// "Subject: ..."; empty where it has none.
QString subjectLine(const PendingDraft& draft);

/// Where it stands, in a word or two.
QString statusLabel(const PendingDraft& draft);

/// Why it failed, or why it waits for a person again; empty of every other draft.
QString draftFailureReason(const PendingDraft& draft);

/// What is asked before it is sent.
QString confirmQuestion(const PendingDraft& draft);

/// Why an approved draft waits, and what helps; empty where its engine is only on its way.
QString waitingReason(const PendingDraft& draft, const Account& account, const RuntimeState& engine);

}
