#include "Approvals/ApprovalRow.h"

#include "Approvals/DraftWords.h"
#include "Approvals/RiskQuestion.h"
#include "Calendar/CalendarLayout.h"

namespace corvane {

namespace {

const QStringList risksWithAColour { QStringLiteral("money"), QStringLiteral("credential"), QStringLiteral("external"),
    QStringLiteral("high") };

ApprovalRow rowOf(const ApprovalKey& key, const QString& head, const QString& approveLabel)
{
    ApprovalRow row;
    row.setKey(key);
    row.head = head;
    row.approveLabel = approveLabel;
    row.canDecide = true;
    return row;
}

void arm(ApprovalRow& row, const std::optional<Arming>& arming, const QString& approving, const QString& approved)
{
    if (!arming)
        return;
    const bool approve = arming->verdict == Verdict::Approve;
    row.canDecide = row.canEdit = false;
    row.linkLabel.clear();
    row.secondsLeft = arming->secondsLeft;
    row.stateText = approve ? approving : QStringLiteral("Rejecting…");
    row.settledText = approve ? approved : QStringLiteral("Rejected");
}

/// Kinds of proposals are words of other programs; one that nobody knows stands as it is.
QString capitalised(QString word)
{
    if (!word.isEmpty())
        word[0] = word[0].toUpper();
    return word;
}

/// What the title says already is not said twice.
QString beyond(const QString& title, const QString& body)
{
    const QString first = body.section(u'\n', 0, 0);
    return first.trimmed() == title.trimmed() ? body.mid(first.size() + 1) : body;
}

}

void ApprovalRow::setKey(const ApprovalKey& key)
{
    kind = kindWord(key.kind);
    id = key.id;
    m_key = key.text();
}

ApprovalRow draftRow(const PendingDraft& draft, const std::optional<Arming>& arming)
{
    ApprovalRow row = rowOf(draftKey(draft.id), QStringLiteral("Outbound Messages"),
        draft.state() == DraftStatus::Failed ? QStringLiteral("Retry") : QStringLiteral("Approve"));
    row.title = draftStatusTitle(draft);
    row.subject = subjectLine(draft);
    row.body = draft.body;
    row.platform = draft.channel;
    row.canDecide = row.canEdit = waitsForPerson(draft);
    row.failureReason = draftFailureReason(draft);
    const QString sending = QStringLiteral("Sending…");
    if (!row.canDecide)
        row.stateText = draft.state() == DraftStatus::Sending ? sending : statusLabel(draft);
    if (allows(draft.state(), DraftStep::Acknowledge))
        row.settledText = QStringLiteral("Sent");
    if (row.canDecide && mayHaveGoneOut(draft))
        row.question = confirmQuestion(draft);
    arm(row, arming, sending, QStringLiteral("Approved"));
    return row;
}

ApprovalRow proposalRow(
    const CRMUpdateProposal& proposal, const QString& contactName, const std::optional<Arming>& arming)
{
    ApprovalRow row
        = rowOf({ ApprovalKind::Proposal, proposal.id }, QStringLiteral("CRM Updates"), QStringLiteral("Apply"));
    row.title = proposal.title;
    row.body = beyond(proposal.title, proposal.bodyPreview());
    row.detail = capitalised(proposal.kind);
    if (!contactName.isEmpty())
        row.detail += QStringLiteral(" · ") + contactName;
    row.failureReason = proposal.error;
    row.linkLabel = contactName.isEmpty() ? QStringLiteral("Link contact") : QStringLiteral("Change contact");
    arm(row, arming, QStringLiteral("Applying…"), QStringLiteral("Applied"));
    return row;
}

ApprovalRow decisionRow(const WorkDecisionRecord& decision, const std::optional<Arming>& arming)
{
    ApprovalRow row
        = rowOf({ ApprovalKind::Decision, decision.id }, QStringLiteral("Agent Decisions"), QStringLiteral("Approve"));
    row.title = decision.title;
    row.body = decision.proposal;
    row.detail = decision.module;
    if (!decision.rationale.trimmed().isEmpty())
        row.why = QStringLiteral("Why: ") + decision.rationale;
    if (!decision.risk.trimmed().isEmpty())
        row.riskText = decision.risk + QStringLiteral(" risk");
    if (risksWithAColour.contains(decision.risk))
        row.riskTone = decision.risk;
    if (isRisky(decision))
        row.question = riskQuestion(decision);
    arm(row, arming, QStringLiteral("Approving…"), QStringLiteral("Approved"));
    return row;
}

ApprovalRow eventRow(const CalCommand& event, qint64 nowMs, const std::optional<Arming>& arming)
{
    ApprovalRow row
        = rowOf({ ApprovalKind::Event, event.id }, QStringLiteral("Calendar Events"), QStringLiteral("Add"));
    row.title = event.title;
    row.body = event.notes;
    row.detail = eventWords(event, nowMs);
    arm(row, arming, QStringLiteral("Adding…"), QStringLiteral("Added"));
    return row;
}

QString eventWords(const CalCommand& event, qint64 nowMs)
{
    CalEvent timed;
    timed.startMs = event.startMs;
    timed.endMs = event.endMs;
    QStringList parts { whenText(timed, nowMs), event.location, event.calendar };
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

}
