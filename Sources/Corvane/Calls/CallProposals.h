#pragma once

#include <QString>

namespace corvane {

class LocalDB;

/// Proposes what a call changes in the CRM: a note and a follow-up task. They wait for a person. Those of an earlier
/// processing that were not decided are brought up to date.
void createCRMProposalsForCall(
    LocalDB& db, const QString& callId, const QString& title, const QString& summary, const QString& transcript);

}
