#include "Approvals/PendingDraftsView.h"

#include "Approvals/ApprovalsStore.h"
#include "Approvals/DraftEdit.h"
#include "Approvals/DraftWords.h"
#include "Engines/AccountStore.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int previewLength = 240;

}

PendingDraftItem PendingDraftsView::itemOf(const PendingDraft& draft) const
{
    PendingDraftItem item;
    item.id = draft.id;
    item.title = draftStatusTitle(draft);
    item.body = draft.body;
    item.subject = subjectLine(draft);
    item.files = m_at.actions.files(draft);
    item.preview = singleLine(firstCharacters(draft.body, previewLength));
    item.status = draft.status;
    item.statusLabel = statusLabel(draft);
    item.failureReason = draftFailureReason(draft);
    if (item.failureReason.isEmpty())
        item.failureReason = m_at.actions.waitingReason(draft);
    item.actions = m_at.actions.actions(draft);
    item.platform = draft.channel;
    item.canDecide = waitsForPerson(draft);
    item.approveLabel = draft.state() == DraftStatus::Failed ? u"Retry Send"_s : u"Approve & Send"_s;
    return item;
}

PendingDraftsView::PendingDraftsView(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
    , m_rows(surroundings.scheduler)
{
    connect(&m_at.approvals, &ApprovalsStore::changed, this, &PendingDraftsView::present);
    connect(&m_at.editor, &DraftEdit::changed, this, &PendingDraftsView::present);
    connect(&m_at.actions, &DraftActions::changed, this, &PendingDraftsView::present);
    present();
}

const QString& PendingDraftsView::notice() const
{
    return m_at.approvals.notice();
}

DraftEdit* PendingDraftsView::editor() const
{
    return &m_at.editor;
}

const PendingDraft* PendingDraftsView::shown(const QString& id) const
{
    const auto found = std::ranges::find(m_drafts, id, &PendingDraft::id);
    return found == m_drafts.end() ? nullptr : &*found;
}

const PendingDraft* PendingDraftsView::decidable(const QString& id) const
{
    const PendingDraft* const draft = shown(id);
    const bool free = draft && waitsForPerson(*draft) && id != m_at.editor.draftId();
    return free && !m_at.approvals.armed(draftKey(id)) ? draft : nullptr;
}

QString PendingDraftsView::confirmText() const
{
    return confirmQuestion(shown(m_confirmDraft) ? *shown(m_confirmDraft) : PendingDraft());
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
    const PendingDraft* const asked = decidable(id);
    if (!asked)
        return;
    const QString draft = id; // closing the question clears it
    m_confirmDraft.clear();
    if (!m_at.accounts.findBySlug(asked->accountId)) {
        failWaitingDraft(m_at.db, draft, describe(DraftFailure::AccountGone, asked->accountId));
        m_at.db.watch().tell(StoreSubject::Drafts);
        return;
    }
    m_rows.hold(draft);
    m_at.approvals.decide(draftKey(draft), Verdict::Approve, undoWindow);
}

void PendingDraftsView::reject(const QString& id)
{
    if (!decidable(id))
        return;
    m_rows.hold(id);
    m_at.approvals.decide(draftKey(id), Verdict::Reject, undoWindow);
}

void PendingDraftsView::perform(const QString& id, const QString& action)
{
    if (const PendingDraft* const draft = shown(id))
        m_at.actions.perform(*draft, action);
}

void PendingDraftsView::undo(const QString& id)
{
    if (m_at.approvals.armed(draftKey(id)))
        m_at.approvals.undo(draftKey(id));
}

void PendingDraftsView::dismissNotice()
{
    m_at.approvals.dismissNotice();
}

void PendingDraftsView::present()
{
    m_drafts = m_at.editor.withLost(m_at.approvals.drafts());
    QList<PendingDraftItem> items;
    for (const PendingDraft& draft : std::as_const(m_drafts)) {
        PendingDraftItem item = itemOf(draft);
        if (const auto verdict = m_at.approvals.armed(draftKey(draft.id))) {
            item.canDecide = false;
            item.secondsLeft = m_at.approvals.secondsLeft(draftKey(draft.id));
            item.statusLabel = *verdict == Verdict::Approve ? u"Sending…"_s : u"Discarding…"_s;
        }
        if (m_at.editor.lost() && draft.id == m_at.editor.draftId())
            item.statusLabel = u"No longer waiting"_s;
        const bool saysWhyBelow = draft.state() == DraftStatus::Failed && item.canDecide && !mayHaveGoneOut(draft);
        item.stateText = saysWhyBelow ? draft.status : item.statusLabel;
        items.append(item);
    }
    m_rows.assign(items, [](PendingDraftItem& item) {
        item.canDecide = false;
        item.actions.clear();
        item.secondsLeft = 0;
    });
    if (!decidable(m_confirmDraft))
        m_confirmDraft.clear();
    Q_EMIT changed();
}

}
