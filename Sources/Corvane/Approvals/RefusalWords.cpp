#include "Approvals/RefusalWords.h"

#include "Foundation/Literals.h"
#include "Store/Approvals/CrmProposals.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Work/CalendarQueries.h"
#include "Store/Work/WorkRecords.h"

namespace corvane {

namespace {

const QString gone = u"It is no longer there."_s;
const QString notSaved = u"It couldn't be saved. Try again."_s;
const QString approvedElsewhere = u"Already approved elsewhere."_s;
const QString rejectedElsewhere = u"Already rejected elsewhere."_s;

QString wordsOf(const PendingDraft& draft)
{
    if (draft.state() == DraftStatus::Rejected)
        return rejectedElsewhere;
    if (draft.state() == DraftStatus::Sent)
        return u"Already sent."_s;
    return waitsForPerson(draft) ? notSaved : approvedElsewhere;
}

QString wordsOf(const CRMUpdateProposal& proposal)
{
    if (proposal.status == u"applied")
        return u"Already applied elsewhere."_s;
    if (proposal.status == u"rejected")
        return rejectedElsewhere;
    return proposal.error.isEmpty() ? notSaved : proposal.error;
}

QString wordsOf(const WorkDecisionRecord& decision)
{
    if (decision.status == u"approved")
        return approvedElsewhere;
    return decision.status == u"rejected" ? rejectedElsewhere : notSaved;
}

QString wordsOf(const CalCommand& command)
{
    if (command.status == u"done")
        return u"Already added elsewhere."_s;
    if (command.error == eventRejected)
        return rejectedElsewhere;
    return command.error.isEmpty() ? notSaved : command.error;
}

template <typename Row> QString wordsOrGone(const std::optional<Row>& row)
{
    return row ? wordsOf(*row) : gone;
}

}

QString refusalWords(LocalDB& db, const ApprovalKey& key)
{
    switch (key.kind) {
    case ApprovalKind::Draft:
        return wordsOrGone(fetchDraft(db, key.id));
    case ApprovalKind::Proposal:
        return wordsOrGone(crmProposal(db, key.id));
    case ApprovalKind::Decision:
        return wordsOrGone(fetchWorkDecision(db, key.id));
    case ApprovalKind::Event:
        return wordsOrGone(fetchCalendarCommand(db, key.id));
    }
    return {};
}

}
