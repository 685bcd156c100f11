#include "Approvals/DraftWords.h"

#include "Engines/DraftDelivery.h"
#include "Presentation/WAName.h"

namespace corvane {

QString draftStatusTitle(const PendingDraft& draft)
{
    const QString target = WAName::pretty(draft.title.isEmpty() ? draft.externalId : draft.title)
        + QStringLiteral(" · ") + draft.channel;
    const QString status = draft.status.toLower();
    if (status == u"placed")
        return QStringLiteral("Placed in browser for ") + target;
    if (status == u"failed")
        return QStringLiteral("Local send failed to ") + target;
    if (status == u"sending")
        return QStringLiteral("Sending from local Mac to ") + target;
    if (draft.source.toLower() == u"web" || !draft.webAckStatus.isEmpty())
        return QStringLiteral("Web draft waiting for local approval · ") + target;
    if (draft.source == u"forward")
        return QStringLiteral("You forward to ") + target;
    if (draft.source == u"compose")
        return QStringLiteral("You write to ") + target;
    return QStringLiteral("AI wants to send to ") + target;
}

QString draftFailureReason(const PendingDraft& draft)
{
    if (!waitsForPerson(draft))
        return {};
    const QString reason = draft.error.trimmed();
    return reason.isEmpty() && draft.status == u"failed"
        ? QStringLiteral("Send failed — engine did not report a reason. Retry or check the account connection.")
        : reason;
}

}
