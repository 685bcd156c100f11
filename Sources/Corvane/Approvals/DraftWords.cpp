#include "Approvals/DraftWords.h"

#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Foundation/WAName.h"

namespace corvane {

QString draftStatusTitle(const PendingDraft& draft)
{
    const QString target
        = WAName::pretty(draft.title.isEmpty() ? draft.externalId : draft.title) + u" · "_s + draft.channel;
    const DraftStatus status = draftStatus(draft.status.toLower());
    const QString source = draft.source.toLower();
    if (mayHaveGoneOut(draft))
        return u"May have gone out to "_s + target;
    if (status == DraftStatus::Approved)
        return u"Approved for "_s + target;
    if (status == DraftStatus::Placed)
        return u"Placed in browser for "_s + target;
    if (status == DraftStatus::Failed)
        return u"Local send failed to "_s + target;
    if (status == DraftStatus::Sending)
        return u"Sending from %1 to "_s.arg(machineWords::thisMachine) + target;
    if (source == u"web" || !draft.webAckStatus.isEmpty())
        return u"Web draft waiting for local approval · "_s + target;
    if (source == u"forward")
        return u"You forward to "_s + target;
    if (source == u"compose")
        return u"You write to "_s + target;
    return u"AI wants to send to "_s + target;
}

QString subjectLine(const PendingDraft& draft)
{
    return draft.subject.isEmpty() ? QString() : u"Subject: "_s + draft.subject;
}

QString statusLabel(const PendingDraft& draft)
{
    if (mayHaveGoneOut(draft))
        return u"May have gone out"_s;
    switch (draft.state()) {
    case DraftStatus::Failed:
        return u"failed "_s + draft.error;
    case DraftStatus::Sending:
    case DraftStatus::Rejected:
        return draft.status;
    case DraftStatus::Placed:
        return u"Placed — awaiting LinkedIn confirmation"_s;
    case DraftStatus::Sent:
        return draft.providerMsgId.isEmpty() ? draft.status : u"sent - "_s + draft.providerMsgId;
    case DraftStatus::Approved:
        return u"Waits for the engine of "_s + draft.accountName;
    case DraftStatus::Pending:
    case DraftStatus::Other:
        return u"waiting approval"_s;
    }
    return {};
}

QString confirmQuestion(const PendingDraft& draft)
{
    return mayHaveGoneOut(draft) ? u"This may have gone out already. Send it again?"_s : u"Send this message?"_s;
}

QString waitingReason(const PendingDraft& draft, const Account& account, const RuntimeState& engine)
{
    if (draft.state() != DraftStatus::Approved)
        return {};
    if (account.paused.value_or(false))
        return u"The account is paused. Start runs its engine, which then sends the message."_s;
    if (engine.status == WAStatus::LoggedOut)
        return u"The account is signed out. Sign in again in Settings."_s;
    if (engine.status == WAStatus::NeedsQR)
        return u"The account waits to be linked in Settings."_s;
    return engine.status == WAStatus::Error ? u"The engine is not running. "_s + engine.lastLog : QString();
}

QString draftFailureReason(const PendingDraft& draft)
{
    if (!waitsForPerson(draft))
        return {};
    const QString reason = draft.error.trimmed();
    return reason.isEmpty() && draft.state() == DraftStatus::Failed
        ? u"Send failed — engine did not report a reason. Retry or check the account connection."_s
        : reason;
}

}
