#include "Approvals/ApprovalRow.h"

#include "Approvals/DraftWords.h"
#include "Approvals/RiskQuestion.h"
#include "Calendar/CalendarLayout.h"
#include "Foundation/Literals.h"

namespace corvane {

namespace {

const QStringList risksWithAColour { u"money"_s, u"credential"_s, u"external"_s, u"high"_s };

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
    row.stateText = approve ? approving : u"Rejecting…"_s;
    row.settledText = approve ? approved : u"Rejected"_s;
}

/// Other programs write proposals: an unknown kind is shown as it is.
QString capitalised(QString word)
{
    if (!word.isEmpty())
        word[0] = word[0].toUpper();
    return word;
}

/// Does not repeat what the title says.
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
    ApprovalRow row = rowOf(
        draftKey(draft.id), u"Outbound Messages"_s, draft.state() == DraftStatus::Failed ? u"Retry"_s : u"Approve"_s);
    row.title = draftStatusTitle(draft);
    row.subject = subjectLine(draft);
    row.body = draft.body;
    row.platform = draft.channel;
    row.canDecide = row.canEdit = waitsForPerson(draft);
    row.failureReason = draftFailureReason(draft);
    const QString sending = u"Sending…"_s;
    if (!row.canDecide)
        row.stateText = draft.state() == DraftStatus::Sending ? sending : statusLabel(draft);
    if (allows(draft.state(), DraftStep::Acknowledge))
        row.settledText = u"Sent"_s;
    if (row.canDecide && mayHaveGoneOut(draft))
        row.question = confirmQuestion(draft);
    arm(row, arming, sending, u"Approved"_s);
    return row;
}

ApprovalRow proposalRow(
    const CRMUpdateProposal& proposal, const QString& contactName, const std::optional<Arming>& arming)
{
    ApprovalRow row = rowOf({ ApprovalKind::Proposal, proposal.id }, u"CRM Updates"_s, u"Apply"_s);
    row.title = proposal.title;
    row.body = beyond(proposal.title, proposal.bodyPreview());
    row.detail = capitalised(proposal.kind);
    if (!contactName.isEmpty())
        row.detail += u" · "_s + contactName;
    row.failureReason = proposal.error;
    row.linkLabel = contactName.isEmpty() ? u"Link contact"_s : u"Change contact"_s;
    arm(row, arming, u"Applying…"_s, u"Applied"_s);
    return row;
}

ApprovalRow decisionRow(const WorkDecisionRecord& decision, const std::optional<Arming>& arming)
{
    ApprovalRow row = rowOf({ ApprovalKind::Decision, decision.id }, u"Agent Decisions"_s, u"Approve"_s);
    row.title = decision.title;
    row.body = decision.proposal;
    row.detail = decision.module;
    if (!decision.rationale.trimmed().isEmpty())
        row.why = u"Why: "_s + decision.rationale;
    if (!decision.risk.trimmed().isEmpty())
        row.riskText = decision.risk + u" risk"_s;
    if (risksWithAColour.contains(decision.risk))
        row.riskTone = decision.risk;
    if (isRisky(decision))
        row.question = riskQuestion(decision);
    arm(row, arming, u"Approving…"_s, u"Approved"_s);
    return row;
}

ApprovalRow eventRow(const CalCommand& event, qint64 nowMs, const std::optional<Arming>& arming)
{
    ApprovalRow row = rowOf({ ApprovalKind::Event, event.id }, u"Calendar Events"_s, u"Add"_s);
    row.title = event.title;
    row.body = event.notes;
    row.detail = eventWords(event, nowMs);
    arm(row, arming, u"Adding…"_s, u"Added"_s);
    return row;
}

QString eventWords(const CalCommand& event, qint64 nowMs)
{
    CalEvent timed;
    timed.startMs = event.startMs;
    timed.endMs = event.endMs;
    QStringList parts { whenText(timed, nowMs), event.location, event.calendar };
    parts.removeAll(QString());
    return parts.join(u" · "_s);
}

}
