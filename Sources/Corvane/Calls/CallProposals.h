#pragma once

#include <QString>

namespace corvane {

class LocalDB;

/// Proposes changes to the CRM after a call: a note and a follow-up task, which wait for approval. Undecided ones from
/// an earlier run are updated.
void createCRMProposalsForCall(
    LocalDB& db, const QString& callId, const QString& title, const QString& summary, const QString& transcript);

}
