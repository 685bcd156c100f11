#include "Approvals/ApprovalsStore.h"

#include "Calls/CallRecorder.h"
#include "Engines/EngineManager.h"
#include "Foundation/Ids.h"
#include "Notifications/Notifier.h"
#include "Store/Approvals/WorkDecisions.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds pollPeriod { 5000 };
constexpr int draftsRead = 50;
constexpr int proposalsRead = 20;
constexpr int decisionsRead = 50;

const QString draftKind = QStringLiteral("draft");
const QString failedDraftKind = QStringLiteral("draft_failed");
const QString proposalKind = QStringLiteral("proposal");
const QString decisionKind = QStringLiteral("decision");
const QString owner = QStringLiteral("Oskel");

QString draftKey(const QString& id)
{
    return QStringLiteral("draft:") + id;
}

ApprovalItem itemOf(const PendingDraft& draft, const QString& kind)
{
    return { draftKey(draft.id), kind, draft.id, draft.title.isEmpty() ? draft.externalId : draft.title, draft.body };
}

ApprovalItem itemOf(const CRMUpdateProposal& proposal)
{
    return { QStringLiteral("proposal:") + proposal.id, proposalKind, proposal.id, proposal.title,
        proposal.bodyPreview() };
}

ApprovalItem itemOf(const WorkDecisionRecord& decision)
{
    return { QStringLiteral("decision:") + decision.id, decisionKind, decision.id, decision.title, decision.proposal };
}

}

ApprovalsStore::ApprovalsStore(NotificationCentre& centre, Notifier& notifier, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_centre(centre)
    , m_notifier(notifier)
    , m_scheduler(scheduler)
{
}

void ApprovalsStore::attach(EngineManager& engine, CallRecorder& calls)
{
    if (m_engine)
        disconnect(m_engine, nullptr, this, nullptr);
    if (m_calls)
        disconnect(m_calls, nullptr, this, nullptr);
    m_engine = &engine;
    m_calls = &calls;
    connect(&engine, &EngineManager::pendingDraftsChanged, this, &ApprovalsStore::changed);
    connect(&engine, &EngineManager::draftReturned, this, [this](const QString& id) { m_seen.remove(draftKey(id)); });
    connect(&calls, &CallRecorder::changed, this, &ApprovalsStore::changed);
    refresh();
    m_timer = m_scheduler.every(pollPeriod, [this] { refresh(); });
    m_actionObserver = m_centre.observe(notifications::approvalAction, [this](const Notification& notification) {
        const auto text = [&](const char* key) {
            return notification.userInfo.value(QLatin1String(key));
        };
        const QVariant kind = text("kind");
        const QVariant id = text("id");
        const QVariant action = text("action");
        if (kind.isValid() && id.isValid() && action.isValid())
            handleNotificationAction(kind.toString(), id.toString(), action.toString());
    });
}

void ApprovalsStore::refresh()
{
    if (!m_engine)
        return;
    const QList<WorkDecisionRecord> decisions = fetchPendingWorkDecisions(m_engine->db(), decisionsRead);
    const bool decisionsChanged = std::exchange(m_decisions, decisions) != decisions;
    if (m_calls)
        m_calls->refresh();
    notifyNewItems();
    if (decisionsChanged)
        Q_EMIT changed();
}

const QList<PendingDraft>& ApprovalsStore::drafts() const
{
    static const QList<PendingDraft> none;
    return m_engine ? m_engine->pendingDrafts() : none;
}

const QList<CRMUpdateProposal>& ApprovalsStore::proposals() const
{
    static const QList<CRMUpdateProposal> none;
    return m_calls ? m_calls->pendingProposals() : none;
}

void ApprovalsStore::approveDraft(const QString& id, Milliseconds undoWindow)
{
    if (m_armed.contains(id))
        return;
    m_armed[id] = { shownHash(id), m_scheduler.after(undoWindow, [this, id] {
                       const QString armedId = id; // the callback goes with its timer
                       if (const auto seen = disarm(armedId))
                           approveAsSeen(armedId, *seen);
                   }) };
    m_armedDrafts.insert(id);
    Q_EMIT changed();
}

void ApprovalsStore::undo(const QString& id)
{
    const auto seen = disarm(id);
    if (seen && m_engine)
        recordUndo(m_engine->db(), id, *seen);
}

void ApprovalsStore::rejectDraft(const QString& id)
{
    disarm(id);
    if (!m_engine)
        return notifyActionFailure(Action::Reject);
    settle(corvane::rejectDraft(m_engine->db(), id), Action::Reject, id);
}

void ApprovalsStore::saveDraftBody(const QString& id, const QString& body)
{
    const QString text = body.trimmed();
    if (text.isEmpty() || !m_engine)
        return;
    disarm(id);
    editDraft(m_engine->db(), id, text);
    m_engine->refreshDrafts();
}

void ApprovalsStore::applyProposal(const QString& id)
{
    if (!m_calls)
        return notifyActionFailure(Action::Approve);
    const bool applied = applyCRMUpdateProposal(m_calls->db(), id);
    m_calls->refresh();
    if (!applied)
        return notifyActionFailure(Action::Approve);
    refresh();
}

void ApprovalsStore::rejectProposal(const QString& id)
{
    if (!m_calls)
        return notifyActionFailure(Action::Reject);
    rejectCRMUpdateProposal(m_calls->db(), id);
    m_calls->refresh();
    refresh();
}

bool ApprovalsStore::linkProposal(const QString& id, const QString& contactId)
{
    if (!m_calls)
        return false;
    const bool linked = linkCRMUpdateProposal(m_calls->db(), id, contactId);
    m_calls->refresh();
    return linked;
}

void ApprovalsStore::approveDecision(const QString& id)
{
    decideWork(id, Action::Approve);
}

void ApprovalsStore::rejectDecision(const QString& id)
{
    decideWork(id, Action::Reject);
}

void ApprovalsStore::handleNotificationAction(const QString& kind, const QString& id, const QString& action)
{
    const bool approve = action == u"approve";
    if (!approve && action != u"reject")
        return;
    if (kind == draftKind || kind == failedDraftKind) {
        if (!approve)
            return rejectDraft(id);
        disarm(id);
        approveAsSeen(id, m_announced.contains(id) ? m_announced.value(id) : shownHash(id));
    } else if (kind == proposalKind) {
        approve ? applyProposal(id) : rejectProposal(id);
    } else if (kind == decisionKind) {
        decideWork(id, approve ? Action::Approve : Action::Reject);
    }
}

void ApprovalsStore::notifyNewItems()
{
    LocalDB& db = m_engine->db();
    QList<ApprovalItem> items;
    QHash<QString, PendingDraft> drafts;
    for (const PendingDraft& draft : fetchDrafts(db,
             { QStringLiteral("failed"), QStringLiteral("pending"), QStringLiteral("sending"),
                 QStringLiteral("placed") },
             draftsRead)) {
        const QString status = draft.status.toLower();
        if (status != u"pending" && status != u"failed")
            continue;
        items.append(itemOf(draft, status == u"failed" ? failedDraftKind : draftKind));
        drafts.insert(draftKey(draft.id), draft);
    }
    for (const CRMUpdateProposal& proposal : fetchCRMUpdateProposals(db, QStringLiteral("pending"), proposalsRead))
        items.append(itemOf(proposal));
    for (const WorkDecisionRecord& decision : std::as_const(m_decisions))
        items.append(itemOf(decision));

    for (const ApprovalItem& item : std::as_const(items)) {
        if (m_seen.contains(item.key))
            continue;
        m_seen.insert(item.key);
        if (!m_baselined)
            continue;
        if (drafts.contains(item.key))
            m_announced.insert(item.id, draftHash(drafts.value(item.key)));
        m_notifier.notifyApproval(item.kind, item.id, item.title, item.body);
    }
    m_baselined = true;
}

void ApprovalsStore::notifyActionFailure(Action action)
{
    const QString text
        = action == Action::Reject ? QStringLiteral("Couldn't reject") : QStringLiteral("Couldn't approve");
    m_notifier.notifyApproval(
        QStringLiteral("approval"), uuidText(), text, text + QStringLiteral(" — engine not ready, try again"));
}

void ApprovalsStore::approveAsSeen(const QString& id, const QString& seenHash)
{
    if (!m_engine)
        return notifyActionFailure(Action::Approve);
    settle(corvane::approveDraft(m_engine->db(), id, seenHash), Action::Approve, id);
}

void ApprovalsStore::decideWork(const QString& id, Action action)
{
    const QString status = action == Action::Approve ? QStringLiteral("approved") : QStringLiteral("rejected");
    if (!m_engine || decideWorkDecision(m_engine->db(), id, status, owner) == Decided::Refused)
        return notifyActionFailure(action);
    refresh();
}

void ApprovalsStore::settle(Decided decided, Action action, const QString& id)
{
    if (decided == Decided::Refused)
        notifyActionFailure(action);
    if (decided == Decided::Changed)
        m_seen.remove(draftKey(id));
    m_engine->refreshDrafts();
    refresh();
}

QString ApprovalsStore::shownHash(const QString& id) const
{
    if (!m_engine)
        return {};
    const QList<PendingDraft>& shown = m_engine->pendingDrafts();
    const auto found = std::ranges::find(shown, id, &PendingDraft::id);
    if (found != shown.end())
        return draftHash(*found);
    const auto unlisted = fetchDraft(m_engine->db(), id);
    return unlisted ? draftHash(*unlisted) : QString();
}

std::optional<QString> ApprovalsStore::disarm(const QString& id)
{
    const auto armed = m_armed.extract(id);
    if (!armed)
        return std::nullopt;
    m_armedDrafts.remove(id);
    Q_EMIT changed();
    return armed.mapped().seenHash;
}

}
