#include "Approvals/PendingDraftsView.h"

#include "Approvals/DraftWords.h"
#include "Engines/AccountStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Foundation/Text.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int previewLength = 240;
const QString failed = QStringLiteral("failed");

PendingDraftItem itemOf(const PendingDraft& draft)
{
    PendingDraftItem item;
    item.id = draft.id;
    item.title = draftStatusTitle(draft);
    item.body = draft.body;
    item.preview = singleLine(firstCharacters(draft.body, previewLength));
    item.status = draft.status;
    item.statusLabel = statusLabel(draft);
    item.failureReason = draftFailureReason(draft);
    item.platform = draft.channel;
    item.canDecide = waitsForPerson(draft);
    item.approveLabel = draft.status == failed ? QStringLiteral("Retry Send") : QStringLiteral("Approve & Send");
    return item;
}

}

PendingDraftsView::PendingDraftsView(EngineManager& engine, AccountStore& accounts, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_accounts(accounts)
{
    connect(&engine, &EngineManager::pendingDraftsChanged, this, &PendingDraftsView::present);
    present();
}

const PendingDraft* PendingDraftsView::decidable(const QString& id) const
{
    const auto found = std::ranges::find(m_drafts, id, &PendingDraft::id);
    return found == m_drafts.end() || !waitsForPerson(*found) ? nullptr : &*found;
}

void PendingDraftsView::askToConfirm(const QString& id)
{
    m_confirmDraft = decidable(id) ? id : QString();
    Q_EMIT changed();
}

void PendingDraftsView::cancelConfirm()
{
    m_confirmDraft.clear();
    Q_EMIT changed();
}

void PendingDraftsView::approveDraft(const QString& id)
{
    const PendingDraft* shown = decidable(id);
    if (!shown)
        return;
    const PendingDraft draft = *shown;
    if (const auto account = m_accounts.findBySlug(draft.accountId)) {
        afterAction(m_engine.releaseDraft(draft, *account));
        return;
    }
    failWaitingDraft(m_engine.db(), id, QStringLiteral("Account %1 is no longer connected").arg(draft.accountId));
    afterAction(Decided::Taken);
}

void PendingDraftsView::reject(const QString& id)
{
    if (decidable(id))
        afterAction(rejectDraft(m_engine.db(), id));
}

void PendingDraftsView::edit(const QString& id, const QString& body)
{
    if (!decidable(id) || body.trimmed().isEmpty())
        return;
    afterAction(editDraft(m_engine.db(), id, body.trimmed()) ? Decided::Taken : Decided::Refused);
}

void PendingDraftsView::dismissNotice()
{
    m_notice.clear();
    Q_EMIT changed();
}

void PendingDraftsView::afterAction(Decided decided)
{
    m_notice = decided == Decided::Taken
        ? QString()
        : QStringLiteral("This draft changed while it was shown. Read it again before you decide.");
    m_confirmDraft.clear();
    m_engine.refreshDrafts();
    Q_EMIT changed();
}

void PendingDraftsView::present()
{
    m_drafts = m_engine.pendingDrafts();
    QList<PendingDraftItem> items;
    for (const PendingDraft& draft : std::as_const(m_drafts))
        items.append(itemOf(draft));
    m_rows.assign(items);
    if (!decidable(m_confirmDraft))
        m_confirmDraft.clear();
    Q_EMIT changed();
}

}
