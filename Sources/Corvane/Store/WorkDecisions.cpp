#include "Store/WorkDecisions.h"

#include "Store/Transaction.h"
#include "Store/WorkRecords.h"

#include <QDateTime>
#include <QTimeZone>

namespace corvane {

namespace {

bool updateWorkDecisionStatus(LocalDB& db, const QString& id, const QString& status, const QString& decidedBy)
{
    const QString now = QDateTime::fromMSecsSinceEpoch(db.nowMs(), Qt::UTC).toString(Qt::ISODate);
    return db.changedRows("UPDATE work_decision SET status=?, decided_by=?, updated_at=? WHERE id=?;",
               { status, decidedBy, now, id })
        == 1
        && db.run("UPDATE work_context SET updated_at=? WHERE id=(SELECT context_id FROM work_decision WHERE id=?);",
            { now, id });
}

}

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
