#include "Approvals/ApprovalRow.h"

#include "Approvals/DraftWords.h"
#include "Engines/DraftDelivery.h"

namespace corvane {

namespace {

const QString failed = QStringLiteral("failed");
const QStringList risksWithAColour { QStringLiteral("money"), QStringLiteral("credential"), QStringLiteral("external"),
    QStringLiteral("high") };

ApprovalRow rowOf(const char* kind, const QString& id, const QString& head, const QString& approveLabel)
{
    ApprovalRow row;
    row.kind = QString::fromLatin1(kind);
    row.id = id;
    row.head = head;
    row.approveLabel = approveLabel;
    row.canDecide = true;
    row.setKey();
    return row;
}

/// Kinds of proposals are words of other programs; one that nobody knows stands as it is.
QString capitalised(QString word)
{
    if (!word.isEmpty())
        word[0] = word[0].toUpper();
    return word;
}

}

ApprovalRow draftRow(const PendingDraft& draft, int secondsLeft)
{
    ApprovalRow row = rowOf("draft", draft.id, QStringLiteral("Outbound Messages"),
        draft.status == failed ? QStringLiteral("Retry") : QStringLiteral("Approve"));
    row.title = draftStatusTitle(draft);
    row.body = draft.body;
    row.platform = draft.channel;
    row.secondsLeft = secondsLeft;
    row.canDecide = row.canEdit = waitsForPerson(draft) && secondsLeft == 0;
    row.failureReason = draftFailureReason(draft);
    if (secondsLeft > 0 || draft.status == u"sending")
        row.stateText = QStringLiteral("Sending…");
    else if (!row.canDecide)
        row.stateText = statusLabel(draft);
    return row;
}

ApprovalRow proposalRow(const CRMUpdateProposal& proposal, const QString& contactName)
{
    ApprovalRow row = rowOf("proposal", proposal.id, QStringLiteral("CRM Updates"), QStringLiteral("Apply"));
    row.title = proposal.title;
    row.body = proposal.bodyPreview();
    row.detail = capitalised(proposal.kind);
    if (!contactName.isEmpty())
        row.detail += QStringLiteral(" · ") + contactName;
    row.failureReason = proposal.error;
    row.linkLabel = contactName.isEmpty() ? QStringLiteral("Link contact") : QStringLiteral("Change contact");
    return row;
}

ApprovalRow decisionRow(const WorkDecisionRecord& decision)
{
    ApprovalRow row = rowOf("decision", decision.id, QStringLiteral("Agent Decisions"), QStringLiteral("Approve"));
    row.title = decision.title;
    row.body = decision.proposal;
    row.detail = decision.module;
    if (!decision.rationale.trimmed().isEmpty())
        row.why = QStringLiteral("Why: ") + decision.rationale;
    if (!decision.risk.trimmed().isEmpty())
        row.riskText = decision.risk + QStringLiteral(" risk");
    if (risksWithAColour.contains(decision.risk))
        row.riskTone = decision.risk;
    return row;
}

}
