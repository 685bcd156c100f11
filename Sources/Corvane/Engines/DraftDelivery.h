#pragma once

#include "Foundation/Scheduler.h"
#include "Store/Approvals/DraftApprovals.h"

namespace corvane {

class EngineManager;
struct Account;

/// Brings approved drafts to their engines, and keeps the list of those that wait for the user or for an
/// acknowledgment.
class DraftDelivery {
public:
    /// The references outlive the object. The manager signals each change of `pending`, and each draft that goes back
    /// to the person who approved it.
    DraftDelivery(EngineManager& engines, Scheduler& scheduler);

    /// At once and every 4 seconds; a second call starts no second timer. What other programs wrote to the database
    /// shows at the next tick, too.
    void startWatch();
    void refresh();
    const QList<PendingDraft>& pending() const { return m_pending; }

    /// A person approves a pending or failed draft as they saw it, and it goes out at once.
    Decided release(const PendingDraft& seen, const Account& account);

    /// The one place where a draft's text goes to an engine, and only by whoever claims the row as it was approved: of
    /// two programs, or two ticks, one does. A crash after that step leaves a row that fails by its age, never one
    /// that goes out again. An engine that takes nothing is started, and the draft stays approved.
    void deliver(const QString& draftId, const Account& account);

private:
    EngineManager& m_engines;
    Scheduler& m_scheduler;
    std::unique_ptr<Timer> m_timer;
    QList<PendingDraft> m_pending;
};

/// Whether the draft can be approved, rejected and edited.
bool waitsForPerson(const PendingDraft& draft);

/// Where a draft stands, in the user's words.
QString statusLabel(const PendingDraft& draft);

}
