#include "Approvals/DraftWords.h"

#include "Foundation/MachineWords.h"
#include "Presentation/WAName.h"

namespace corvane {

QString draftStatusTitle(const PendingDraft& draft)
{
    const QString target = WAName::pretty(draft.title.isEmpty() ? draft.externalId : draft.title)
        + QStringLiteral(" · ") + draft.channel;
    const DraftStatus status = draftStatus(draft.status.toLower());
    const QString source = draft.source.toLower();
    if (mayHaveGoneOut(draft))
        return QStringLiteral("May have gone out to ") + target;
    if (status == DraftStatus::Approved)
        return QStringLiteral("Approved for ") + target;
    if (status == DraftStatus::Placed)
        return QStringLiteral("Placed in browser for ") + target;
    if (status == DraftStatus::Failed)
        return QStringLiteral("Local send failed to ") + target;
    if (status == DraftStatus::Sending)
        return QStringLiteral("Sending from %1 to ").arg(machineWords::thisMachine) + target;
    if (source == u"web" || !draft.webAckStatus.isEmpty())
        return QStringLiteral("Web draft waiting for local approval · ") + target;
    if (source == u"forward")
        return QStringLiteral("You forward to ") + target;
    if (source == u"compose")
        return QStringLiteral("You write to ") + target;
    return QStringLiteral("AI wants to send to ") + target;
}

QString subjectLine(const PendingDraft& draft)
{
    return draft.subject.isEmpty() ? QString() : QStringLiteral("Subject: ") + draft.subject;
}

QString statusLabel(const PendingDraft& draft)
{
    if (mayHaveGoneOut(draft))
        return QStringLiteral("May have gone out");
    switch (draft.state()) {
    case DraftStatus::Failed:
        return QStringLiteral("failed ") + draft.error;
    case DraftStatus::Sending:
    case DraftStatus::Rejected:
        return draft.status;
    case DraftStatus::Placed:
        return QStringLiteral("Placed — awaiting LinkedIn confirmation");
    case DraftStatus::Sent:
        return draft.providerMsgId.isEmpty() ? draft.status : QStringLiteral("sent - ") + draft.providerMsgId;
    case DraftStatus::Approved:
        return QStringLiteral("Waits for the engine of ") + draft.accountName;
    case DraftStatus::Pending:
    case DraftStatus::Other:
        return QStringLiteral("waiting approval");
    }
    return {};
}

QString confirmQuestion(const PendingDraft& draft)
{
    return mayHaveGoneOut(draft) ? QStringLiteral("This may have gone out already. Send it again?")
                                 : QStringLiteral("Send this message?");
}

QString waitingReason(const PendingDraft& draft, const Account& account, const RuntimeState& engine)
{
    if (draft.state() != DraftStatus::Approved)
        return {};
    if (account.paused.value_or(false))
        return QStringLiteral("The account is paused. Start runs its engine, which then sends the message.");
    if (engine.status == WAStatus::LoggedOut)
        return QStringLiteral("The account is signed out. Sign in again in Settings.");
    if (engine.status == WAStatus::NeedsQR)
        return QStringLiteral("The account waits to be linked in Settings.");
    return engine.status == WAStatus::Error ? QStringLiteral("The engine does not run. ") + engine.lastLog : QString();
}

QString draftFailureReason(const PendingDraft& draft)
{
    if (!waitsForPerson(draft))
        return {};
    const QString reason = draft.error.trimmed();
    return reason.isEmpty() && draft.state() == DraftStatus::Failed
        ? QStringLiteral("Send failed — engine did not report a reason. Retry or check the account connection.")
        : reason;
}

}
