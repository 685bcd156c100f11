#include "Store/Approvals/WorkDecisions.h"

#include "Store/Core/Transaction.h"
#include "Store/Work/WorkWrites.h"

namespace corvane {

Decided decideWorkDecision(LocalDB& db, const QString& id, const QString& status, const QString& decidedBy)
{
    Transaction transaction(db);
    const auto decision = transaction.begun() ? fetchWorkDecision(db, id) : std::nullopt;
    if (decision && decision->status == status)
        return Decided::AlreadySo;
    if (!decision || decision->status != u"proposed")
        return Decided::Refused;
    const QString hash = fieldsHash({ QStringLiteral("decision"), decision->module, decision->title, decision->proposal,
        decision->rationale, decision->risk });
    const QString action = status == u"approved" ? QStringLiteral("approve") : QStringLiteral("reject");
    const bool done = updateWorkDecisionStatus(db, id, status, decidedBy)
        && appendRecord(db, QStringLiteral("decision"), id, action, hash) && transaction.commit();
    return done ? Decided::Taken : Decided::Refused;
}

}
