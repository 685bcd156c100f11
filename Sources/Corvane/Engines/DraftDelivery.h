#pragma once

#include "Foundation/Scheduler.h"
#include "Store/Approvals/DraftApprovals.h"

#include <QHash>
#include <QSet>

namespace corvane {

class ChildProcess;
class EngineManager;
struct Account;

/// Brings approved drafts to their engines, and keeps the list of those that wait for the user, for their engine or
/// for an acknowledgment.
class DraftDelivery {
public:
    /// The references outlive the object. The manager signals each change of `pending`, and each draft that goes back
    /// to the person who approved it.
    DraftDelivery(EngineManager& engines, Scheduler& scheduler);

    /// At once and every 4 seconds; a second call starts no second timer. What other programs wrote to the database
    /// shows at the next tick, too.
    void startWatch();

    /// Hands over what is approved. An account whose engine does not run is started, also a paused one, once for each
    /// approval. Inside a transaction: once it is over.
    void refresh();
    void stop(); ///< at quit: nothing goes out any more
    const QList<PendingDraft>& pending() const { return m_pending; }

    /// The one place where a draft's text goes to an engine, and only by whoever claims the row as it was approved: of
    /// two programs, or two ticks, one does. A crash after that step leaves a row that fails by its age, never one
    /// that goes out again. False where the engine took nothing: the draft stays approved.
    bool deliver(const QString& draftId, const Account& account);

    /// What it has not read goes back to "approved".
    void engineEnded(const std::shared_ptr<ChildProcess>& engine);

private:
    /// A draft that was handed over, by this run or an earlier one.
    struct Awaited {
        qint64 sinceMs = 0; ///< by the monotonic clock
        std::optional<ClaimedDraft> draft; ///< none of an earlier run
        std::shared_ptr<ChildProcess> engine; ///< who has the line
        QByteArray line;
    };

    bool isStillUnread(const ClaimedDraft& draft, const QByteArray& line);
    bool takeBack(const Awaited& awaited);
    void expire();
    void failThoseOfGoneAccounts();
    void deliverApproved(const QList<DraftOfAccount>& approved);
    bool canTake(const Account& account) const;
    void wakeEngines(const QList<DraftOfAccount>& approved);
    void present();

    EngineManager& m_engines;
    Scheduler& m_scheduler;
    std::unique_ptr<Timer> m_timer;
    std::unique_ptr<Timer> m_soon;
    QHash<QString, Awaited> m_awaited; ///< by draft
    QSet<QString> m_wokenFor; ///< approved drafts whose accounts had their start
    bool m_isFirstLook = true;
    bool m_isStopped = false;
    QList<PendingDraft> m_pending;
};

/// Whether the draft can be approved, rejected and edited.
bool waitsForPerson(const PendingDraft& draft);

/// Where a draft stands, in the user's words.
QString statusLabel(const PendingDraft& draft);

}
