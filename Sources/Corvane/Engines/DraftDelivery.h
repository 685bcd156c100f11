#pragma once

#include "Foundation/Scheduler.h"
#include "Store/OutboundQueries.h"

namespace corvane {

class EngineManager;
struct Account;

/// A draft that a person released. It is only ever made from a row whose status is "approved".
class ApprovedDraft {
public:
    static std::optional<ApprovedDraft> from(const PendingDraft& row);
    const PendingDraft& row() const { return m_row; }

private:
    explicit ApprovedDraft(const PendingDraft& row)
        : m_row(row)
    {
    }

    PendingDraft m_row;
};

/// Brings approved drafts to their engines, and keeps the list of those that wait for the user or for an
/// acknowledgment.
class DraftDelivery {
public:
    /// The references outlive the object. `pendingChanged` is called after each change of `pending`.
    DraftDelivery(EngineManager& engines, Scheduler& scheduler, std::function<void()> pendingChanged);

    void startWatch(); ///< at once and every 4 seconds; a second call starts no second timer
    void refresh();
    const QList<PendingDraft>& pending() const { return m_pending; }

    /// The one place where a draft's text goes to an engine. One that takes nothing is started, and the draft stays
    /// approved.
    void deliver(const ApprovedDraft& draft, const Account& account);

private:
    EngineManager& m_engines;
    Scheduler& m_scheduler;
    std::function<void()> m_pendingChanged;
    std::unique_ptr<Timer> m_timer;
    QList<PendingDraft> m_pending;
};

/// Where a draft stands, in the user's words.
QString statusLabel(const PendingDraft& draft);

}
