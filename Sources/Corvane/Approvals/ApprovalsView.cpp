#include "Approvals/ApprovalsView.h"

#include "Approvals/ApprovalsStore.h"
#include "Engines/DraftDelivery.h"
#include "Presentation/WAName.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds undoWindow { 5000 };

QString editedDraftIsGone(const QString& text)
{
    return QStringLiteral("The draft that you edited no longer waits. Your text was: ") + text;
}

}

ApprovalsView::ApprovalsView(ApprovalsStore& store, LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_db(db)
    , m_scheduler(scheduler)
    , m_link(store, db)
{
    connect(&store, &ApprovalsStore::changed, this, &ApprovalsView::present);
    present();
}

ApprovalsView::~ApprovalsView() = default;

QString ApprovalsView::badge() const
{
    return m_waiting == 0 ? QString() : m_waiting < 100 ? QString::number(m_waiting) : QStringLiteral("99+");
}

QString ApprovalsView::waitingText() const
{
    return QStringLiteral("%1 waiting for your approval").arg(m_waiting);
}

QString ApprovalsView::emptyText() const
{
    return QStringLiteral("Nothing is waiting on you. Agents queue outbound messages, CRM updates, and decisions here "
                          "for your approval.");
}

QString ApprovalsView::settingsEmptyText() const
{
    return QStringLiteral("No approvals yet — appears when an agent queues a send, external action, money action, "
                          "destructive action, or work_decision proposal.");
}

void ApprovalsView::setEditText(const QString& text)
{
    if (text == m_editText)
        return;
    m_editText = text;
    Q_EMIT editTextChanged();
}

const ApprovalRow* ApprovalsView::find(const QString& key) const
{
    const auto found = std::ranges::find(m_rows.rows(), key, &ApprovalRow::key);
    return found == m_rows.rows().end() ? nullptr : &*found;
}

void ApprovalsView::approve(const QString& key)
{
    const ApprovalRow* const row = find(key);
    if (!row || !row->canDecide || key == m_editing)
        return;
    const QString id = row->id;
    if (row->kind == u"draft")
        m_store.approveDraft(id, undoWindow);
    else if (row->kind == u"proposal")
        m_store.applyProposal(id);
    else
        m_store.approveDecision(id);
}

void ApprovalsView::reject(const QString& key)
{
    const ApprovalRow* const row = find(key);
    if (!row || !row->canDecide || key == m_editing)
        return;
    const QString id = row->id;
    if (row->kind == u"draft")
        m_store.rejectDraft(id);
    else if (row->kind == u"proposal")
        m_store.rejectProposal(id);
    else
        m_store.rejectDecision(id);
}

void ApprovalsView::undo(const QString& key)
{
    if (const ApprovalRow* const row = find(key); row && row->secondsLeft > 0)
        m_store.undo(QString(row->id));
}

void ApprovalsView::edit(const QString& key)
{
    const ApprovalRow* const row = find(key);
    if (!row || !row->canEdit || key == m_editing)
        return;
    m_editing = key;
    setEditText(row->body);
    Q_EMIT editingChanged();
}

void ApprovalsView::saveEdit()
{
    const ApprovalRow* const row = find(m_editing);
    const QString text = m_editText;
    if (!row || text.trimmed().isEmpty())
        return;
    const QString id = row->id;
    leaveEdit();
    m_store.saveDraftBody(id, text);
}

void ApprovalsView::cancelEdit()
{
    leaveEdit();
}

bool ApprovalsView::stepBack()
{
    const bool editing = !m_editing.isEmpty();
    const bool linking = !editing && !m_link.proposalId().isEmpty();
    leaveEdit();
    if (linking)
        m_link.cancel();
    return editing || linking;
}

void ApprovalsView::leaveEdit()
{
    if (m_editing.isEmpty())
        return;
    m_editing.clear();
    Q_EMIT editingChanged();
}

void ApprovalsView::dismissNotice()
{
    m_notice.clear();
    Q_EMIT changed();
}

void ApprovalsView::refresh()
{
    m_store.refresh();
}

int ApprovalsView::secondsLeft(const QString& draftId) const
{
    const auto until = m_armedUntil.constFind(draftId);
    if (until == m_armedUntil.cend())
        return 0;
    // Never 0 while it can still be undone.
    return int(std::max<qint64>(1, (*until - m_scheduler.nowMs() + 999) / 1000));
}

void ApprovalsView::countDown()
{
    const QSet<QString>& armed = m_store.armedDrafts();
    m_armedUntil.removeIf([&](const auto& entry) { return !armed.contains(entry.key()); });
    for (const QString& id : armed) {
        if (!m_armedUntil.contains(id))
            m_armedUntil.insert(id, m_scheduler.nowMs() + undoWindow.count());
    }
    if (armed.isEmpty())
        m_countDown.reset();
    else if (!m_countDown)
        m_countDown = m_scheduler.every(Milliseconds(1000), [this] { present(); });
}

QList<ApprovalRow> ApprovalsView::currentRows()
{
    QList<ApprovalRow> rows;
    for (const PendingDraft& draft : m_store.drafts())
        rows.append(draftRow(draft, secondsLeft(draft.id)));
    for (const CRMUpdateProposal& proposal : m_store.proposals())
        rows.append(proposalRow(proposal,
            proposal.contactId.isEmpty() ? QString() : WAName::pretty(displayName(m_db, proposal.contactId))));
    for (const WorkDecisionRecord& decision : m_store.decisions())
        rows.append(decisionRow(decision));
    return rows;
}

void ApprovalsView::present()
{
    countDown();
    const QList<ApprovalRow> rows = currentRows();
    m_waiting = 0;
    m_headCounts.clear();
    for (const ApprovalRow& row : rows) {
        m_waiting += row.canDecide ? 1 : 0;
        m_headCounts[row.head] = m_headCounts.value(row.head).toInt() + 1;
    }
    m_emptyLines.clear();
    if (m_store.drafts().isEmpty())
        m_emptyLines.append(QStringLiteral("No message drafts waiting."));
    if (m_store.proposals().isEmpty())
        m_emptyLines.append(QStringLiteral("No CRM update proposals waiting."));
    if (m_store.decisions().isEmpty())
        m_emptyLines.append(QStringLiteral("No agent decisions waiting."));
    m_rows.assign(rows);
    if (const ApprovalRow* const edited = find(m_editing); !m_editing.isEmpty() && (!edited || !edited->canEdit)) {
        m_notice = editedDraftIsGone(m_editText);
        leaveEdit();
    }
    if (const QString linked = m_link.proposalId(); !linked.isEmpty() && !find(QStringLiteral("proposal:") + linked))
        m_link.cancel();
    Q_EMIT changed();
}

int waitingForDecision(const ApprovalsStore& store)
{
    const auto drafts = std::ranges::count_if(store.drafts(),
        [&](const PendingDraft& draft) { return waitsForPerson(draft) && !store.armedDrafts().contains(draft.id); });
    return int(drafts + store.proposals().size() + store.decisions().size());
}

}
