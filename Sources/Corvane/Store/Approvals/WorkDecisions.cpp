#include "Store/Approvals/WorkDecisions.h"

#include "Foundation/Literals.h"
#include "Store/Core/Transaction.h"
#include "Store/Work/WorkWrites.h"

namespace corvane {

namespace {

/// Rejecting needs no hash: whatever it says by now, it will not happen.
Decided decide(LocalDB& db, const QString& id, const char* action, const QString& status, const QString& decidedBy,
    const std::optional<QString>& seenHash)
{
    Transaction transaction(db);
    const auto decision = transaction.begun() ? fetchWorkDecision(db, id) : std::nullopt;
    if (decision && decision->status == status)
        return Decided::AlreadySo;
    if (!decision || decision->status != u"proposed")
        return Decided::Refused;
    const QString hash = decisionHash(*decision);
    if (seenHash && *seenHash != hash)
        return Decided::Changed;
    const bool done = updateWorkDecisionStatus(db, id, status, decidedBy)
        && appendRecord(db, u"decision"_s, id, QString::fromLatin1(action), hash) && transaction.commit();
    return done ? Decided::Taken : Decided::Refused;
}

}

QString decisionHash(const WorkDecisionRecord& decision)
{
    return fieldsHash(
        { u"decision"_s, decision.module, decision.title, decision.proposal, decision.rationale, decision.risk });
}

Decided approveWorkDecision(LocalDB& db, const QString& id, const QString& decidedBy, const QString& seenHash)
{
    return decide(db, id, "approve", u"approved"_s, decidedBy, seenHash);
}

Decided rejectWorkDecision(LocalDB& db, const QString& id, const QString& decidedBy)
{
    return decide(db, id, "reject", u"rejected"_s, decidedBy, std::nullopt);
}

}
