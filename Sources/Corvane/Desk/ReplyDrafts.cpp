#include "Desk/ReplyDrafts.h"

#include "AI/AIServices.h"
#include "AI/DraftContext.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Foundation/WAName.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Core/StoreWatch.h"

#include <algorithm>

namespace corvane {

namespace {

const QString draftSource = u"panel"_s;

bool hasText(const QList<UnifiedMsgRow>& messages)
{
    return std::ranges::any_of(
        messages, [](const UnifiedMsgRow& message) { return !message.body.trimmed().isEmpty(); });
}

}

ReplyDrafts::ReplyDrafts(LocalDB& db, AIServices& ai, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_ai(ai)
{
}

ReplyDrafts::~ReplyDrafts()
{
    m_cancel.cancel();
}

void ReplyDrafts::draft(const InboxGlanceRow& row)
{
    if (state(row.conversationId).isBusy)
        return;
    set(row.conversationId, { true, u"Drafting…"_s });
    run(row, m_cancel);
}

QCoro::Task<> ReplyDrafts::run(InboxGlanceRow row, CancelHandle cancel)
{
    const QString text = co_await queued(row, cancel);
    if (!cancel.isCancelled())
        set(row.conversationId, { false, text });
}

QCoro::Task<QString> ReplyDrafts::queued(InboxGlanceRow row, CancelHandle cancel)
{
    const auto contact = row.contactId.isEmpty() ? std::nullopt : fetchContact(m_db, row.contactId);
    if (!contact)
        co_return u"No CRM contact linked to this thread yet — open it and link first."_s;
    const QList<UnifiedMsgRow> thread = draftThread(m_db, contact->id);
    if (!hasText(thread))
        co_return u"No text messages in this thread to reply to."_s;
    if (!m_ai.ai.availableName())
        co_return u"%1 or Codex CLI unavailable — start %2 or install Codex CLI."_s.arg(
            atStart(machineWords::localModel), machineWords::localModel);
    const auto draft
        = co_await m_ai.drafts.draftReply(draftContext(m_db, *contact, WAName::pretty(contact->name.simplified())),
            thread, defaultDraftStyle(), m_ai.ai.modelSpec(), cancel);
    if (cancel.isCancelled())
        co_return QString();
    if (!draft)
        co_return draft.error().message;
    if (!queueDraft(m_db, row.conversationId, draft->draft, draftSource))
        co_return u"Couldn't queue the draft for this conversation."_s;
    storeDraftMetadata(m_db, contact->id, row.conversationId, *draft);
    m_db.watch().tell(StoreSubject::Drafts);
    m_db.watch().tell(StoreSubject::Approvals);
    co_return u"Queued in Approvals"_s;
}

void ReplyDrafts::forgetDone()
{
    m_states.removeIf([](const auto& entry) { return !entry->isBusy; });
}

void ReplyDrafts::set(const QString& conversationId, const State& state)
{
    m_states[conversationId] = state;
    Q_EMIT changed();
}

}
