#include "Approvals/ApprovalsStore.h"

#include "Approvals/ApprovalRow.h"
#include "Approvals/RefusalWords.h"
#include "Approvals/RiskQuestion.h"
#include "Calendar/CalendarCommands.h"
#include "Calls/RecordedCalls.h"
#include "Engines/DraftDelivery.h"
#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Notifications/Notifier.h"
#include "Store/Approvals/WorkDecisions.h"
#include "Store/Core/StoreWatch.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds pollPeriod { 5000 };
constexpr Milliseconds aSecond { 1000 };
constexpr int draftsRead = 50;
constexpr int proposalsRead = 20;
constexpr int decisionsRead = 50;

const QString owner = u"Oskel"_s;

ApprovalItem itemOf(const PendingDraft& draft)
{
    return { draftKey(draft.id), draft.state() == DraftStatus::Failed ? u"draft_failed"_s : u"draft"_s,
        draft.title.isEmpty() ? draft.externalId : draft.title, draft.body, draftHash(draft) };
}

ApprovalItem itemOf(const CRMUpdateProposal& proposal)
{
    return { { ApprovalKind::Proposal, proposal.id }, kindWord(ApprovalKind::Proposal), proposal.title,
        proposal.bodyPreview(), proposalHash(proposal) };
}

ApprovalItem itemOf(const WorkDecisionRecord& decision)
{
    return { { ApprovalKind::Decision, decision.id }, kindWord(ApprovalKind::Decision), decision.title,
        decision.proposal, decisionHash(decision) };
}

ApprovalItem itemOf(const CalCommand& event, qint64 nowMs)
{
    return { { ApprovalKind::Event, event.id }, kindWord(ApprovalKind::Event), event.title, eventWords(event, nowMs),
        eventHash(event) };
}

template <typename Row> const Row* findById(const QList<Row>& rows, const QString& id)
{
    const auto found = std::ranges::find(rows, id, &Row::id);
    return found == rows.end() ? nullptr : &*found;
}

}

ApprovalsStore::ApprovalsStore(NotificationCentre& centre, Notifier& notifier, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_centre(centre)
    , m_notifier(notifier)
    , m_scheduler(scheduler)
{
}

void ApprovalsStore::attach(DraftDelivery& delivery, RecordedCalls& calls)
{
    if (m_delivery) {
        disconnect(m_delivery, nullptr, this, nullptr);
        disconnect(&m_delivery->db().watch(), nullptr, this, nullptr);
    }
    if (m_calls)
        disconnect(m_calls, nullptr, this, nullptr);
    m_delivery = &delivery;
    m_calls = &calls;
    connect(&delivery, &DraftDelivery::pendingChanged, this, &ApprovalsStore::changed);
    connect(&delivery, &DraftDelivery::returned, this, [this](const QString& id) { m_seen.erase(draftKey(id)); });
    delivery.db().watch().on(StoreSubject::Approvals, this, [this] {
        refresh();
        Q_EMIT changed();
    });
    connect(&calls, &RecordedCalls::changed, this, &ApprovalsStore::changed);
    refresh();
    m_timer = m_scheduler.every(pollPeriod, [this] { refresh(); });
    m_actionObserver = m_centre.observe(notifications::approvalAction, [this](const Notification& notification) {
        const auto text = [&](const char* key) {
            return notification.userInfo.value(QLatin1StringView(key));
        };
        const QVariant kind = text("kind");
        const QVariant id = text("id");
        const QVariant action = text("action");
        if (kind.isValid() && id.isValid() && action.isValid())
            handleNotificationAction(kind.toString(), id.toString(), action.toString());
    });
}

void ApprovalsStore::attach(CalendarCommands& events)
{
    if (m_events == &events)
        return;
    m_events = &events;
    connect(&events, &CalendarCommands::changed, this, [this] {
        refresh();
        Q_EMIT changed();
    });
    connect(&events, &CalendarCommands::refused, this, [this](const QString& title, const QString& reason) {
        m_notice = title + u": "_s + reason;
        Q_EMIT changed();
    });
}

void ApprovalsStore::refresh()
{
    if (!m_delivery)
        return;
    const QList<WorkDecisionRecord> decisions = fetchPendingWorkDecisions(m_delivery->db(), decisionsRead);
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
    return m_delivery ? m_delivery->pending() : none;
}

const QList<CRMUpdateProposal>& ApprovalsStore::proposals() const
{
    static const QList<CRMUpdateProposal> none;
    return m_calls ? m_calls->pendingProposals() : none;
}

const QList<CalCommand>& ApprovalsStore::events() const
{
    static const QList<CalCommand> none;
    return m_events ? m_events->waiting() : none;
}

void ApprovalsStore::decide(const ApprovalKey& key, Verdict verdict, Milliseconds window)
{
    if (m_armed.contains(key))
        return;
    m_notice.clear();
    Armed& armed = m_armed[key];
    armed.verdict = verdict;
    armed.untilMs = m_scheduler.nowMs() + window.count();
    armed.seen = shown(key);
    armed.timer = m_scheduler.after(window, [this, armedKey = key] { windowEnds(ApprovalKey(armedKey)); });
    if (!m_countDown)
        m_countDown = m_scheduler.every(aSecond, [this] { Q_EMIT changed(); });
    Q_EMIT changed();
}

void ApprovalsStore::windowEnds(const ApprovalKey& key)
{
    const Verdict verdict = armed(key).value_or(Verdict::Reject);
    if (const auto seen = disarm(key))
        settle(*seen, verdict, From::Window);
}

void ApprovalsStore::undo(const ApprovalKey& key)
{
    const auto seen = disarm(key);
    if (!seen)
        return;
    if (m_delivery)
        recordUndo(m_delivery->db(), kindWord(key.kind), key.id, seen->hash);
    Q_EMIT changed();
}

std::optional<Verdict> ApprovalsStore::armed(const ApprovalKey& key) const
{
    const auto found = m_armed.find(key);
    return found == m_armed.end() ? std::nullopt : std::optional(found->second.verdict);
}

int ApprovalsStore::secondsLeft(const ApprovalKey& key) const
{
    const auto found = m_armed.find(key);
    return found == m_armed.end()
        ? 0
        : int(std::max<qint64>(1, (found->second.untilMs - m_scheduler.nowMs() + 999) / 1000));
}

Result<void> ApprovalsStore::saveDraftBody(const QString& id, const QString& body)
{
    const QString text = body.trimmed();
    if (text.isEmpty())
        return failure(u"A message needs a text."_s);
    if (!m_delivery)
        return failure(whyNot(draftKey(id)));
    LocalDB& db = m_delivery->db();
    disarm(draftKey(id));
    const bool taken = editDraft(db, id, text) && fetchDraft(db, id).value_or(PendingDraft()).body == text;
    const QString reason = taken ? QString() : whyNot(draftKey(id));
    m_delivery->refresh();
    Q_EMIT changed();
    return taken ? Result<void>() : failure(reason);
}

QString ApprovalsStore::whyNot(const ApprovalKey& key) const
{
    return m_delivery ? refusalWords(m_delivery->db(), key) : u"It couldn't be saved. Try again."_s;
}

bool ApprovalsStore::linkProposal(const QString& id, const QString& contactId)
{
    if (!m_calls)
        return false;
    const bool linked = linkCRMUpdateProposal(m_calls->db(), id, contactId);
    m_calls->refresh();
    return linked;
}

void ApprovalsStore::dismissNotice()
{
    m_notice.clear();
    Q_EMIT changed();
}

void ApprovalsStore::handleNotificationAction(const QString& kind, const QString& id, const QString& action)
{
    const auto known = kindOf(kind);
    const bool approve = action == u"approve";
    if (!known || (!approve && action != u"reject"))
        return;
    const ApprovalKey key { *known, id };
    if (approve && asksFirst(key)) {
        refresh();
        m_centre.post(notifications::openApprovals);
        Q_EMIT confirmationRequested(key.text());
        return;
    }
    disarm(key);
    const auto announced = m_announced.find(key);
    settle(announced == m_announced.end() ? shown(key) : announced->second,
        approve ? Verdict::Approve : Verdict::Reject, From::Banner);
}

void ApprovalsStore::notifyNewItems()
{
    LocalDB& db = m_delivery->db();
    QList<ApprovalItem> items;
    for (const PendingDraft& draft : fetchDrafts(db,
             { DraftStatus::Failed, DraftStatus::Pending, DraftStatus::Sending, DraftStatus::Placed }, draftsRead)) {
        if (waitsForPerson(draft))
            items.append(itemOf(draft));
    }
    for (const CRMUpdateProposal& proposal : fetchCRMUpdateProposals(db, u"pending"_s, proposalsRead))
        items.append(itemOf(proposal));
    for (const WorkDecisionRecord& decision : std::as_const(m_decisions))
        items.append(itemOf(decision));
    for (const CalCommand& event : events())
        items.append(itemOf(event, m_scheduler.nowMs()));

    std::erase_if(m_announced, [&](const auto& announced) {
        const bool waits = std::ranges::find(items, announced.first, &ApprovalItem::key) != items.end();
        if (!waits)
            m_notifier.withdrawApproval(announced.second.kind, announced.first.id);
        return !waits;
    });
    for (const ApprovalItem& item : std::as_const(items)) {
        if (!m_seen.insert(item.key).second || !m_baselined)
            continue;
        m_announced[item.key] = item;
        m_notifier.notifyApproval(item.kind, item.key.id, item.title, item.body);
    }
    m_baselined = true;
}

void ApprovalsStore::notifyActionFailure(Verdict verdict, const QString& reason)
{
    const QString text = verdict == Verdict::Reject ? u"Couldn't reject"_s : u"Couldn't approve"_s;
    m_notifier.notifyApproval(
        u"approval"_s, uuidText(), text, reason.isEmpty() ? text + u" — engine not ready, try again"_s : reason);
}

Decided ApprovalsStore::carryOut(const ApprovalItem& seen, Verdict verdict)
{
    LocalDB& db = m_delivery->db();
    const QString& id = seen.key.id;
    const bool approve = verdict == Verdict::Approve;
    switch (seen.key.kind) {
    case ApprovalKind::Draft:
        return approve ? m_delivery->approve(id, seen.hash) : rejectDraft(db, id);
    case ApprovalKind::Proposal:
        return approve ? applyCRMUpdateProposal(db, id, seen.hash) : rejectCRMUpdateProposal(db, id);
    case ApprovalKind::Decision:
        return approve ? approveWorkDecision(db, id, owner, seen.hash) : rejectWorkDecision(db, id, owner);
    case ApprovalKind::Event:
        if (!m_events)
            return Decided::Refused;
        return approve ? m_events->add(id, seen.hash) : m_events->reject(id);
    }
    return Decided::Refused;
}

void ApprovalsStore::settle(const ApprovalItem& seen, Verdict verdict, From from)
{
    if (!m_delivery || !m_calls)
        return notifyActionFailure(verdict);
    const Decided decided = carryOut(seen, verdict);
    if (decided == Decided::Changed)
        m_seen.erase(seen.key);
    const bool pressedTwice = from == From::Banner && decided == Decided::AlreadySo;
    if (decided != Decided::Taken && !pressedTwice)
        tellRefusal(seen, verdict, decided);
    if (seen.key.kind == ApprovalKind::Decision)
        m_delivery->db().watch().tell(StoreSubject::Work);
    m_delivery->refresh();
    refresh();
    Q_EMIT changed();
}

void ApprovalsStore::tellRefusal(const ApprovalItem& seen, Verdict verdict, Decided decided)
{
    const QString reason = decided == Decided::Changed ? u"Changed since you saw it."_s : whyNot(seen.key);
    m_notice = seen.title.isEmpty() ? reason : seen.title + u": "_s + reason;
    if (decided == Decided::Refused)
        notifyActionFailure(verdict, m_notice);
}

bool ApprovalsStore::asksFirst(const ApprovalKey& key) const
{
    if (!m_delivery || key.kind == ApprovalKind::Proposal || key.kind == ApprovalKind::Event)
        return false;
    if (key.kind == ApprovalKind::Draft) {
        const auto draft = fetchDraft(m_delivery->db(), key.id);
        return draft && waitsForPerson(*draft) && mayHaveGoneOut(*draft);
    }
    const auto decision = fetchWorkDecision(m_delivery->db(), key.id);
    return decision && decision->status == u"proposed" && isRisky(*decision);
}

ApprovalItem ApprovalsStore::shown(const ApprovalKey& key) const
{
    ApprovalItem item { key, kindWord(key.kind), {}, {}, {} };
    if (!m_delivery)
        return item;
    LocalDB& db = m_delivery->db();
    if (key.kind == ApprovalKind::Draft) {
        if (const auto* draft = findById(drafts(), key.id))
            return itemOf(*draft);
        if (const auto unlisted = fetchDraft(db, key.id))
            return itemOf(*unlisted);
    } else if (key.kind == ApprovalKind::Proposal) {
        if (const auto* proposal = findById(proposals(), key.id))
            return itemOf(*proposal);
        item.title = crmProposal(db, key.id).value_or(CRMUpdateProposal()).title;
    } else if (key.kind == ApprovalKind::Event) {
        if (const auto* event = findById(events(), key.id))
            return itemOf(*event, m_scheduler.nowMs());
        item.title = fetchCalendarCommand(db, key.id).value_or(CalCommand()).title;
    } else {
        if (const auto* decision = findById(m_decisions, key.id))
            return itemOf(*decision);
        item.title = fetchWorkDecision(db, key.id).value_or(WorkDecisionRecord()).title;
    }
    return item;
}

std::optional<ApprovalItem> ApprovalsStore::disarm(const ApprovalKey& key)
{
    const auto armed = m_armed.extract(key);
    if (!armed)
        return std::nullopt;
    if (m_armed.empty())
        m_countDown.reset();
    return armed.mapped().seen;
}

int waitingForDecision(const ApprovalsStore& store)
{
    const auto waits = [&](ApprovalKind kind) {
        return [&store, kind](const auto& row) {
            return !store.armed({ kind, row.id });
        };
    };
    const auto drafts = std::ranges::count_if(store.drafts(),
        [&](const PendingDraft& draft) { return waitsForPerson(draft) && waits(ApprovalKind::Draft)(draft); });
    return int(drafts + std::ranges::count_if(store.proposals(), waits(ApprovalKind::Proposal))
        + std::ranges::count_if(store.decisions(), waits(ApprovalKind::Decision))
        + std::ranges::count_if(store.events(), waits(ApprovalKind::Event)));
}

}
