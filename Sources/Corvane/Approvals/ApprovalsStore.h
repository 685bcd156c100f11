#pragma once

#include "Approvals/ApprovalKey.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/Result.h"
#include "Foundation/Scheduler.h"
#include "Store/Approvals/CrmProposals.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Work/CalendarQueries.h"
#include "Store/Work/WorkRecords.h"

#include <QObject>
#include <QPointer>
#include <map>
#include <set>

namespace corvane {

class CalendarCommands;
class RecordedCalls;
class DraftDelivery;
class Notifier;

constexpr Milliseconds undoWindow { 5000 };

/// An item as it is announced.
struct ApprovalItem {
    ApprovalKey key; ///< a draft keeps its key when it fails
    QString kind; ///< "draft", "draft_failed", "proposal", "decision" or "event"
    QString title;
    QString body;
    QString hash; ///< of everything that the user sees of it
};

/// The single gate for everything that leaves the machine or cannot be undone: it checks every five seconds for pending
/// items, announces new ones, and carries out the user's verdicts from any surface. The user approves what was shown to
/// them; if the row differs, nothing happens and they are asked again.
class ApprovalsStore : public QObject {
    Q_OBJECT
public:
    /// The references outlive the store.
    ApprovalsStore(NotificationCentre& centre, Notifier& notifier, Scheduler& scheduler, QObject* parent = nullptr);

    /// Once at startup; a second call has no effect. Without the two, or after their destruction, every action only
    /// reports that it is not possible.
    void attach(DraftDelivery& delivery, RecordedCalls& calls);
    void attach(CalendarCommands& events); ///< requested by agents; a second call has no effect
    void refresh();

    const QList<WorkDecisionRecord>& decisions() const { return m_decisions; } ///< the first 50 pending ones
    const QList<PendingDraft>& drafts() const; ///< of the delivery; empty without it
    const QList<CRMUpdateProposal>& proposals() const; ///< of the recorder; empty without it
    const QList<CalCommand>& events() const; ///< of the calendar; empty without it

    /// Records a verdict on the item as it is shown now. It is carried out after the undo window; until then nothing is
    /// written, and quitting forgets it. An item with a verdict keeps it.
    void decide(const ApprovalKey& key, Verdict verdict, Milliseconds window);
    void undo(const ApprovalKey& key);
    std::optional<Verdict> armed(const ApprovalKey& key) const;
    int secondsLeft(const ApprovalKey& key) const; ///< for undo; never 0 during the undo window

    /// Saves the text, trimmed, or returns the error for the user. Ends an undo window.
    Result<void> saveDraftBody(const QString& id, const QString& body);

    QString whyNot(const ApprovalKey& key) const; ///< why it no longer accepts a verdict or an edit

    bool linkProposal(const QString& id, const QString& contactId); ///< false if it is no longer pending

    const QString& notice() const { return m_notice; } ///< why the last verdict had no effect, or empty
    void dismissNotice();

Q_SIGNALS:
    void changed(); ///< a list, the notice or a verdict; every second during an undo window
    void confirmationRequested(const QString& key); ///< a banner's Approve that needs confirmation in the window

private:
    enum class From { Window, Banner };
    struct Armed {
        Verdict verdict = Verdict::Approve;
        qint64 untilMs = 0;
        ApprovalItem seen; ///< its hash is empty if nothing was shown
        std::unique_ptr<Timer> timer;
    };

    void handleNotificationAction(const QString& kind, const QString& id, const QString& action);
    void notifyNewItems();
    void notifyActionFailure(Verdict verdict, const QString& reason = {});

    void windowEnds(const ApprovalKey& key);
    Decided carryOut(const ApprovalItem& seen, Verdict verdict);
    void settle(const ApprovalItem& seen, Verdict verdict, From from);
    void tellRefusal(const ApprovalItem& seen, Verdict verdict, Decided decided);
    bool asksFirst(const ApprovalKey& key) const;
    ApprovalItem shown(const ApprovalKey& key) const;
    std::optional<ApprovalItem> disarm(const ApprovalKey& key); ///< the item as seen, if it had a verdict

    NotificationCentre& m_centre;
    Notifier& m_notifier;
    Scheduler& m_scheduler;
    QPointer<DraftDelivery> m_delivery;
    QPointer<RecordedCalls> m_calls;
    QPointer<CalendarCommands> m_events;
    QList<WorkDecisionRecord> m_decisions;
    std::map<ApprovalKey, Armed> m_armed;
    std::unique_ptr<Timer> m_countDown;
    QString m_notice;
    std::set<ApprovalKey> m_seen; ///< announced, or pending at launch
    std::map<ApprovalKey, ApprovalItem> m_announced; ///< as announced
    bool m_baselined = false;
    std::unique_ptr<Timer> m_timer;
    NotificationCentre::Observation m_actionObserver;
};

/// The number of pending items; those with a verdict no longer count.
int waitingForDecision(const ApprovalsStore& store);

}
