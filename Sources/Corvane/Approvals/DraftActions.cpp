#include "Approvals/DraftActions.h"

#include "Approvals/ApprovalsStore.h"
#include "Approvals/DraftWords.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Engines/Outbox.h"
#include "Foundation/Literals.h"
#include "Presentation/SizeWords.h"
#include "Store/Core/StoreWatch.h"

#include <algorithm>

namespace corvane {

namespace {

DraftAction action(const char* id, const QString& label, const char* kind)
{
    return { QString::fromLatin1(id), label, QString::fromLatin1(kind) };
}

}

DraftActions::DraftActions(ApprovalsStore& approvals, EngineManager& engine, AccountStore& accounts, QObject* parent)
    : QObject(parent)
    , m_approvals(approvals)
    , m_engine(engine)
    , m_accounts(accounts)
{
    connect(&engine, &EngineManager::runtimeChanged, this, [this] {
        const auto isApproved = [](const PendingDraft& draft) {
            return draft.state() == DraftStatus::Approved;
        };
        if (std::ranges::any_of(m_approvals.drafts(), isApproved))
            Q_EMIT changed();
    });
}

QList<DraftAction> DraftActions::actions(const PendingDraft& draft) const
{
    if (m_approvals.armed(draftKey(draft.id)))
        return {};
    QList<DraftAction> actions;
    if (allows(draft.state(), DraftStep::TakeBack)) {
        const auto account = m_accounts.findBySlug(draft.accountId);
        if (!account || !m_engine.isRunning(*account))
            actions.append(action("start", u"Start"_s, "primary"));
        actions.append(action("takeBack", u"Take back"_s, "plain"));
        actions.append(action("reject", u"Reject"_s, "danger"));
    } else if (allows(draft.state(), DraftStep::Confirm)) {
        actions.append(action("confirmSent", u"It was sent"_s, "primary"));
        actions.append(action("reject", u"Discard"_s, "danger"));
    }
    return actions;
}

QList<DraftFile> DraftActions::files(const PendingDraft& draft) const
{
    QList<DraftFile> files;
    for (const OutgoingFile& file : filesFromText(draft.files).value_or(QList<OutgoingFile>())) {
        const bool isHere = m_engine.outbox().holds(file);
        files.append(
            { file.name, isHere ? sizeWords(file.bytes) : u"Not there any more"_s, isHere ? file.path : QString() });
    }
    return files;
}

QString DraftActions::waitingReason(const PendingDraft& draft) const
{
    const auto account = m_accounts.findBySlug(draft.accountId);
    return account ? corvane::waitingReason(draft, *account, m_engine.runtime(account->id)) : QString();
}

void DraftActions::perform(const PendingDraft& draft, const QString& action)
{
    const ApprovalKey key = draftKey(draft.id);
    if (m_approvals.armed(key))
        return;
    LocalDB& db = m_engine.db();
    const QString id = draft.id; // the row may be deleted by the action
    if (action == u"start") {
        if (const auto account = m_accounts.findBySlug(draft.accountId))
            m_engine.resume(*account);
    } else if (action == u"takeBack") {
        takeBackDraft(db, id);
    } else if (action == u"confirmSent") {
        confirmDraftSent(db, id);
    } else if (action == u"reject" && draft.state() == DraftStatus::Placed) {
        m_approvals.decide(key, Verdict::Reject, undoWindow);
    } else if (action == u"reject") {
        rejectDraft(db, id); // immediately: its engine may start during the undo window
    }
    db.watch().tell(StoreSubject::Drafts);
}

}
