#pragma once

#include "Approvals/ApprovalKey.h"

namespace corvane {

class LocalDB;

/// Why a verdict or an edit had no effect, from the row's current state: "Already approved elsewhere.", ...
QString refusalWords(LocalDB& db, const ApprovalKey& key);

}
