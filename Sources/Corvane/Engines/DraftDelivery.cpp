#include "Engines/DraftDelivery.h"

#include "Engines/EngineManager.h"
#include "Store/Core/LocalDB.h"

namespace corvane {

namespace {

constexpr Milliseconds watchPeriod { 4000 };
constexpr qint64 acknowledgmentMs = 120'000;
constexpr int rowsPerTick = 50;

const QString approved = QStringLiteral("approved");

bool placesTextInBrowser(Channel channel)
{
    return channel == Channel::LinkedIn || channel == Channel::Instagram || channel == Channel::Messenger;
}

}

DraftDelivery::DraftDelivery(EngineManager& engines, Scheduler& scheduler)
    : m_engines(engines)
    , m_scheduler(scheduler)
{
}

void DraftDelivery::startWatch()
{
    refresh();
    m_timer = m_scheduler.every(watchPeriod, [this] {
        refresh();
        if (m_engines.db().changedElsewhere())
            m_engines.bump();
    });
}

void DraftDelivery::refresh()
{
    LocalDB& db = m_engines.db();
    if (db.isHeldElsewhere())
        return; // the next tick does it
    failUnacknowledgedDrafts(db, acknowledgmentMs);
    for (const PendingDraft& row : fetchDrafts(db, { approved }, rowsPerTick)) {
        if (const auto account = m_engines.runningAccount(row.accountId))
            deliver(row.id, *account);
        else
            m_engines.startBySlug(row.accountId);
    }
    const QList<PendingDraft> pending = fetchDrafts(db,
        { QStringLiteral("failed"), QStringLiteral("pending"), QStringLiteral("sending"), QStringLiteral("placed") },
        rowsPerTick);
    if (std::exchange(m_pending, pending) != pending)
        Q_EMIT m_engines.pendingDraftsChanged();
}

Decided DraftDelivery::release(const PendingDraft& seen, const Account& account)
{
    const Decided decided = approveDraft(m_engines.db(), seen.id, draftHash(seen));
    if (decided == Decided::Taken)
        deliver(seen.id, account);
    if (decided == Decided::Changed)
        Q_EMIT m_engines.draftReturned(seen.id);
    return decided;
}

void DraftDelivery::deliver(const QString& draftId, const Account& account)
{
    const DraftClaim claim = DraftClaim::claim(m_engines.db(), draftId);
    if (claim.returned)
        Q_EMIT m_engines.draftReturned(draftId);
    if (!claim.draft)
        return;
    const PendingDraft& row = claim.draft->row();
    const bool taken = placesTextInBrowser(account.channel())
        ? m_engines.writeCommand(account,
              { { QStringLiteral("cmd"), QStringLiteral("draft") }, { QStringLiteral("threadId"), row.externalId },
                  { QStringLiteral("text"), row.body }, { QStringLiteral("draftId"), row.id } })
        : m_engines.sendText(account, row.externalId, row.body, row.id);
    if (!taken && unclaimDraft(m_engines.db(), *claim.draft))
        m_engines.start(account);
}

bool waitsForPerson(const PendingDraft& draft)
{
    return draft.status == u"pending" || draft.status == u"failed";
}

QString statusLabel(const PendingDraft& draft)
{
    if (draft.status == u"failed")
        return QStringLiteral("failed ") + draft.error;
    if (draft.status == u"sending" || draft.status == u"rejected")
        return draft.status;
    if (draft.status == u"placed")
        return QStringLiteral("Placed — awaiting LinkedIn confirmation");
    if (draft.status == u"sent")
        return draft.providerMsgId.isEmpty() ? draft.status : QStringLiteral("sent - ") + draft.providerMsgId;
    return QStringLiteral("waiting approval");
}

}
