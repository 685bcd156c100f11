#include "Calls/CallProposalsView.h"

#include "Calls/RecordedCalls.h"
#include "Foundation/Literals.h"

namespace corvane {

CallProposalsView::CallProposalsView(RecordedCalls& recorded, QObject* parent)
    : QObject(parent)
    , m_recorded(recorded)
{
}

void CallProposalsView::show(const QString& callId)
{
    m_callId = callId;
    m_rows.clear();
    m_seen.clear();
    if (!callId.isEmpty()) {
        for (const CRMUpdateProposal& proposal : callProposals(m_recorded.db(), callId)) {
            m_rows.append(proposalRow(proposal));
            m_seen.insert(proposal.id, proposalHash(proposal));
        }
    }
    Q_EMIT changed();
}

void CallProposalsView::decide(const QString& id, bool apply)
{
    LocalDB& db = m_recorded.db();
    const Decided decided = apply ? applyCRMUpdateProposal(db, id, m_seen.value(id)) : rejectCRMUpdateProposal(db, id);
    if (decided == Decided::Changed)
        Q_EMIT refused(u"It was changed in the meantime. Please read it again."_s);
    m_recorded.refresh();
    show(QString(m_callId));
}

void CallProposalsView::applyProposal(const QString& id)
{
    decide(id, true);
}

void CallProposalsView::rejectProposal(const QString& id)
{
    decide(id, false);
}

}
