#include "Engines/DraftDelivery.h"

#include "Engines/EngineManager.h"
#include "Store/LocalDB.h"

namespace corvane {

namespace {

constexpr Milliseconds watchPeriod { 4000 };
constexpr qint64 acknowledgmentMs = 120'000;
constexpr int rowsPerTick = 50;

const QString approved = QStringLiteral("approved");
const QString sending = QStringLiteral("sending");

bool placesTextInBrowser(Channel channel)
{
    return channel == Channel::LinkedIn || channel == Channel::Instagram || channel == Channel::Messenger;
}

}

std::optional<ApprovedDraft> ApprovedDraft::from(const PendingDraft& row)
{
    return row.status == approved ? std::optional(ApprovedDraft(row)) : std::nullopt;
}

DraftDelivery::DraftDelivery(EngineManager& engines, Scheduler& scheduler, std::function<void()> pendingChanged)
    : m_engines(engines)
    , m_scheduler(scheduler)
    , m_pendingChanged(std::move(pendingChanged))
{
}

void DraftDelivery::startWatch()
{
    refresh();
    m_timer = m_scheduler.every(watchPeriod, [this] { refresh(); });
}

void DraftDelivery::refresh()
{
    LocalDB& db = m_engines.db();
    if (db.isHeldElsewhere())
        return; // the next tick does it
    failStaleSendingDrafts(db, acknowledgmentMs);
    for (const PendingDraft& row : fetchDrafts(db, { approved }, rowsPerTick)) {
        const auto account = m_engines.runningAccount(row.accountId);
        const auto draft = ApprovedDraft::from(row);
        if (account && draft)
            deliver(*draft, *account);
        else
            m_engines.startBySlug(row.accountId);
    }
    const QList<PendingDraft> pending = fetchDrafts(db,
        { QStringLiteral("failed"), QStringLiteral("pending"), QStringLiteral("sending"), QStringLiteral("placed") },
        rowsPerTick);
    if (std::exchange(m_pending, pending) != pending)
        m_pendingChanged();
}

bool DraftDelivery::release(const PendingDraft& seen, const Account& account)
{
    LocalDB& db = m_engines.db();
    if (!waitsForPerson(seen) || fetchDraft(db, seen.id) != seen || !moveDraft(db, seen.id, seen.status, approved))
        return false;
    PendingDraft released = seen;
    released.status = approved;
    if (const auto draft = ApprovedDraft::from(released))
        deliver(*draft, account);
    return true;
}

void DraftDelivery::deliver(const ApprovedDraft& draft, const Account& account)
{
    const PendingDraft& row = draft.row();
    if (!moveDraft(m_engines.db(), row.id, approved, sending))
        return;
    const bool taken = placesTextInBrowser(account.channel())
        ? m_engines.writeCommand(account,
              { { QStringLiteral("cmd"), QStringLiteral("draft") }, { QStringLiteral("threadId"), row.externalId },
                  { QStringLiteral("text"), row.body }, { QStringLiteral("draftId"), row.id } })
        : m_engines.sendText(account, row.externalId, row.body, row.id);
    if (taken)
        return;
    if (moveDraft(m_engines.db(), row.id, sending, approved))
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
