#pragma once

#include "Shell/TextCall.h"

namespace corvane {

// The inbox in a terminal; may run beside the program. Texts of others are printed without terminal control characters.
// The exit code is also 1 if nothing was found.

int listPeople(const TextCall& call); ///< `corvane list [--all] [--limit N] [--json]`
int showPerson(const TextCall& call); ///< `corvane show [--limit N] [--json] PERSON`
/// `corvane search [--limit N] [--json] WORDS`, which may narrow as in the search field; the limit is of each group.
int searchInbox(const TextCall& call);
int printStatus(const TextCall& call); ///< `corvane status [--json]`

/// `corvane send PERSON [WORDS]`: a draft that waits in Approvals, whatever the arguments. Without words, the text is
/// `typed`.
int draftMessage(const TextCall& call, const QString& typed);

}
