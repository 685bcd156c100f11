#pragma once

#include "Approvals/ApprovalKey.h"
#include "Approvals/DraftActions.h"
#include "Store/Approvals/CrmProposals.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Work/CalendarQueries.h"
#include "Store/Work/WorkRecords.h"

#include <QMetaType>

namespace corvane {

/// An item that waits for the user, or is being processed after their decision, as the screen shows it.
class ApprovalRow {
    Q_GADGET
    Q_PROPERTY(QString key MEMBER m_key)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString head MEMBER head)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString body MEMBER body)
    Q_PROPERTY(QString subject MEMBER subject)
    Q_PROPERTY(QList<corvane::DraftFile> files MEMBER files)
    Q_PROPERTY(QString why MEMBER why)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(QString platform MEMBER platform)
    Q_PROPERTY(QString riskText MEMBER riskText)
    Q_PROPERTY(QString riskTone MEMBER riskTone)
    Q_PROPERTY(QString failureReason MEMBER failureReason)
    Q_PROPERTY(QString stateText MEMBER stateText)
    Q_PROPERTY(int secondsLeft MEMBER secondsLeft)
    Q_PROPERTY(QString approveLabel MEMBER approveLabel)
    Q_PROPERTY(QString question MEMBER question)
    Q_PROPERTY(bool canDecide MEMBER canDecide)
    Q_PROPERTY(bool canEdit MEMBER canEdit)
    Q_PROPERTY(QString linkLabel MEMBER linkLabel)
    Q_PROPERTY(QList<corvane::DraftAction> actions MEMBER actions)
public:
    QString kind; ///< "draft", "proposal", "decision" or "event"
    QString id;
    QString head; ///< its heading: "Outbound Messages", ...
    QString title;
    QString body;
    QString subject; ///< "Subject: ..." of a draft; empty for none
    QList<DraftFile> files; ///< of a draft
    QString why; ///< "Why: ..." of a decision
    QString detail; ///< secondary text: "Task", "ops"
    QString platform; ///< such as "WHATSAPP", for its mark
    QString riskText; ///< "money risk"; unknown words are shown as they are
    QString riskTone; ///< "money", "credential", "external" or "high"; empty for a risk without a colour
    QString failureReason; ///< why it failed or is pending again
    QString stateText; ///< "Sending…", for an item being processed
    int secondsLeft = 0; ///< for undo; 0 if it can't be undone
    QString settledText; ///< "Approved", after the undo window
    QString approveLabel; ///< "Approve", "Retry", "Apply" or "Add"
    QString question; ///< confirmation before approving; empty if none is needed
    bool canDecide = false; ///< can be approved and rejected
    bool canEdit = false;
    QString linkLabel; ///< "Link contact" or "Change contact"; empty if it has no contact
    QList<DraftAction> actions; ///< of a draft that was decided but not sent

    static constexpr const char* role = "approval";
    void setKey(const ApprovalKey& key);
    const QString& key() const { return m_key; }
    bool operator==(const ApprovalRow&) const = default;

private:
    QString m_key; ///< "draft:{id}"
};

/// The user's verdict on an item within its undo window.
struct Arming {
    Verdict verdict = Verdict::Approve;
    int secondsLeft = 0;
};

ApprovalRow draftRow(const PendingDraft& draft, const std::optional<Arming>& arming = {});
ApprovalRow proposalRow(
    const CRMUpdateProposal& proposal, const QString& contactName, const std::optional<Arming>& arming = {});
ApprovalRow decisionRow(const WorkDecisionRecord& decision, const std::optional<Arming>& arming = {});
ApprovalRow eventRow(const CalCommand& event, qint64 nowMs, const std::optional<Arming>& arming = {});

/// When and where a requested event takes place, on one line.
QString eventWords(const CalCommand& event, qint64 nowMs);

}
