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

    /// A person releases a pending or failed draft as they saw it, and it goes out at once. A row that has changed
    /// since, or is on its way already, stays as it is: false.
    bool release(const PendingDraft& seen, const Account& account);

    /// The one place where a draft's text goes to an engine, and only by whoever takes the row from "approved" to
    /// "sending": of two programs, or two ticks, one does. A crash after that step leaves a row that fails by its
    /// age, never one that goes out again. An engine that takes nothing is started, and the draft stays approved.
    void deliver(const ApprovedDraft& draft, const Account& account);

private:
    EngineManager& m_engines;
    Scheduler& m_scheduler;
    std::function<void()> m_pendingChanged;
    std::unique_ptr<Timer> m_timer;
    QList<PendingDraft> m_pending;
};

/// Whether the draft can be approved, rejected and edited.
bool waitsForPerson(const PendingDraft& draft);

/// Where a draft stands, in the user's words.
QString statusLabel(const PendingDraft& draft);

}
