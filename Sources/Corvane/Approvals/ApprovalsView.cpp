#include "Approvals/ApprovalsView.h"

#include "Approvals/ApprovalsStore.h"
#include "Foundation/Literals.h"
#include "Foundation/WAName.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>

namespace corvane {

ApprovalsView::ApprovalsView(
    ApprovalsStore& store, DraftActions& actions, LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_actions(actions)
    , m_db(db)
    , m_scheduler(scheduler)
    , m_editor(store)
    , m_link(db,
          [&store](const QString& proposal, const QString& contact) { return store.linkProposal(proposal, contact); })
    , m_log(store, db, scheduler)
    , m_rows(scheduler)
{
    connect(&store, &ApprovalsStore::changed, this, &ApprovalsView::present);
    connect(&store, &ApprovalsStore::confirmationRequested, this, &ApprovalsView::ask);
    connect(&actions, &DraftActions::changed, this, &ApprovalsView::present);
    connect(&m_editor, &DraftEdit::changed, this, &ApprovalsView::present);
    present();
}

ApprovalsView::~ApprovalsView() = default;

QString ApprovalsView::badge() const
{
    return m_waiting == 0 ? QString() : m_waiting < 100 ? QString::number(m_waiting) : u"99+"_s;
}

QString ApprovalsView::waitingText() const
{
    return u"%1 waiting for your approval"_s.arg(m_waiting);
}

QString ApprovalsView::emptyText() const
{
    return u"Nothing is waiting on you. Agents queue outbound messages, CRM updates, and decisions here "
           "for your approval."_s;
}

QString ApprovalsView::settingsEmptyText() const
{
    return u"No approvals yet — appears when an agent queues a send, external action, money action, "
           "destructive action, or proposes a decision."_s;
}

const QString& ApprovalsView::notice() const
{
    return m_store.notice();
}

int ApprovalsView::askingRow() const
{
    const auto& rows = m_rows.rows();
    const auto found = std::ranges::find(rows, asking(), &ApprovalRow::key);
    return asking().isEmpty() || found == rows.end() ? -1 : int(found - rows.begin());
}

const ApprovalRow* ApprovalsView::find(const QString& key) const
{
    const auto found = std::ranges::find(m_rows.rows(), key, &ApprovalRow::key);
    return found == m_rows.rows().end() ? nullptr : &*found;
}

const ApprovalRow* ApprovalsView::decidable(const QString& key) const
{
    const ApprovalRow* const row = find(key);
    const bool edited = row && row->kind == u"draft" && row->id == m_editor.draftId();
    return row && row->canDecide && !edited ? row : nullptr;
}

void ApprovalsView::approve(const QString& key)
{
    const ApprovalRow* const row = decidable(key);
    if (!row)
        return;
    if (!row->question.isEmpty())
        return ask(key);
    decide(*row, Verdict::Approve);
}

void ApprovalsView::confirm()
{
    if (const ApprovalRow* const row = decidable(asking()))
        decide(*row, Verdict::Approve);
}

void ApprovalsView::reject(const QString& key)
{
    if (const ApprovalRow* const row = decidable(key))
        decide(*row, Verdict::Reject);
}

void ApprovalsView::decide(const ApprovalRow& row, Verdict verdict)
{
    const auto key = ApprovalKey::fromText(row.key());
    m_rows.hold(row.key());
    if (row.key() == asking())
        ask({});
    if (key)
        m_store.decide(*key, verdict, undoWindow);
}

void ApprovalsView::ask(const QString& key)
{
    const ApprovalRow* const row = decidable(key);
    m_asked = row ? *row : ApprovalRow();
    if (row)
        m_log.setShown(false);
    Q_EMIT askingChanged();
}

void ApprovalsView::undo(const QString& key)
{
    const auto undone = ApprovalKey::fromText(key);
    if (undone && m_store.armed(*undone))
        m_store.undo(*undone);
}

void ApprovalsView::edit(const QString& key)
{
    if (const ApprovalRow* const row = find(key); row && row->canEdit)
        m_editor.begin(QString(row->id));
}

void ApprovalsView::perform(const QString& key, const QString& action)
{
    const ApprovalRow* const row = find(key);
    const auto& drafts = m_store.drafts();
    const auto draft = row ? std::ranges::find(drafts, row->id, &PendingDraft::id) : drafts.end();
    if (draft == drafts.end())
        return;
    m_rows.hold(key);
    m_actions.perform(PendingDraft(*draft), action);
}

bool ApprovalsView::stepBack()
{
    if (!asking().isEmpty())
        ask({});
    else if (!m_editor.draftId().isEmpty())
        m_editor.close();
    else if (!m_link.subject().isEmpty())
        m_link.cancel();
    else
        return false;
    return true;
}

void ApprovalsView::dismissNotice()
{
    m_store.dismissNotice();
}

void ApprovalsView::refresh()
{
    m_store.refresh();
}

std::optional<Arming> ApprovalsView::arming(ApprovalKind kind, const QString& id) const
{
    const ApprovalKey key { kind, id };
    const auto verdict = m_store.armed(key);
    return verdict ? std::optional(Arming { *verdict, m_store.secondsLeft(key) }) : std::nullopt;
}

QList<ApprovalRow> ApprovalsView::currentRows() const
{
    QList<ApprovalRow> rows;
    for (const PendingDraft& draft : m_editor.withLost(m_store.drafts())) {
        ApprovalRow row = draftRow(draft, arming(ApprovalKind::Draft, draft.id));
        row.actions = m_actions.actions(draft);
        row.files = m_actions.files(draft);
        if (row.failureReason.isEmpty())
            row.failureReason = m_actions.waitingReason(draft);
        rows.append(row);
    }
    for (const CRMUpdateProposal& proposal : m_store.proposals())
        rows.append(proposalRow(proposal,
            proposal.contactId.isEmpty() ? QString() : WAName::pretty(displayName(m_db, proposal.contactId)),
            arming(ApprovalKind::Proposal, proposal.id)));
    for (const WorkDecisionRecord& decision : m_store.decisions())
        rows.append(decisionRow(decision, arming(ApprovalKind::Decision, decision.id)));
    for (const CalCommand& event : m_store.events())
        rows.append(eventRow(event, m_scheduler.nowMs(), arming(ApprovalKind::Event, event.id)));
    return rows;
}

QString ApprovalHeads::title(const QString& head) const
{
    const int items = count(head);
    return items == 0 ? head : u"%1  %2"_s.arg(head, QString::number(items));
}

void ApprovalsView::present()
{
    const QList<ApprovalRow> rows = currentRows();
    m_waiting = int(std::ranges::count_if(rows, &ApprovalRow::canDecide));
    m_heads = {};
    for (const ApprovalRow& row : rows)
        m_heads.add(row.head);
    m_emptyLines.clear();
    if (m_store.drafts().isEmpty())
        m_emptyLines.append(u"No message drafts waiting."_s);
    if (m_store.proposals().isEmpty())
        m_emptyLines.append(u"No CRM update proposals waiting."_s);
    if (m_store.decisions().isEmpty())
        m_emptyLines.append(u"No agent decisions waiting."_s);
    m_rows.assign(rows, [this](ApprovalRow& row) {
        row.canDecide = row.canEdit = false;
        row.actions.clear();
        row.secondsLeft = 0;
        row.stateText
            = m_store.notice().isEmpty() && !row.settledText.isEmpty() ? row.settledText : u"No longer waiting"_s;
    });
    const ApprovalRow* const asked = decidable(asking());
    if (!asking().isEmpty() && (!asked || *asked != m_asked))
        ask({}); // the item has changed since the question was asked
    if (const QString linked = m_link.subject(); !linked.isEmpty() && !find(u"proposal:"_s + linked))
        m_link.cancel();
    Q_EMIT changed();
}

}
