#pragma once

#include "Approvals/ApprovalKey.h"

namespace corvane {

class LocalDB;

/// Why a verdict, or an edit, changed nothing, from the row as it stands now: "Already approved elsewhere.", ...
QString refusalWords(LocalDB& db, const ApprovalKey& key);

}
