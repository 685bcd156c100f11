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

/// Something that waits for a person, as it is announced.
struct ApprovalItem {
    ApprovalKey key; ///< a draft keeps its key when it fails
    QString kind; ///< "draft", "draft_failed", "proposal", "decision" or "event"
    QString title;
    QString body;
    QString hash; ///< stands for all that a person sees of it
};

/// The single gate in front of everything that leaves the machine or cannot be undone: it looks every five seconds for
/// what waits, announces what is new, and carries out what the person says on any surface. Who approves something
/// approves what was shown to them; where the row differs nothing happens, and they are asked again.
class ApprovalsStore : public QObject {
    Q_OBJECT
public:
    /// The references outlive the store.
    ApprovalsStore(NotificationCentre& centre, Notifier& notifier, Scheduler& scheduler, QObject* parent = nullptr);

    /// Once at boot; a second call leaves one timer and one observer. Without the two, once they are gone, every
    /// action only says that it could not be done.
    void attach(DraftDelivery& delivery, RecordedCalls& calls);
    void attach(CalendarCommands& events); ///< that agents want to add; a second call changes nothing
    void refresh();

    const QList<WorkDecisionRecord>& decisions() const { return m_decisions; } ///< the 50 first that wait
    const QList<PendingDraft>& drafts() const; ///< those of the delivery; empty without it
    const QList<CRMUpdateProposal>& proposals() const; ///< those of the recorder; empty without it
    const QList<CalCommand>& events() const; ///< those of the calendar; empty without it

    /// Arms a verdict on the item as it is shown now. After the window it is carried out; until then nothing is written
    /// and a quit forgets it. An item that is armed already keeps its verdict.
    void decide(const ApprovalKey& key, Verdict verdict, Milliseconds window);
    void undo(const ApprovalKey& key);
    std::optional<Verdict> armed(const ApprovalKey& key) const;
    int secondsLeft(const ApprovalKey& key) const; ///< to undo it; never 0 while it is armed

    /// The row holds the text, trimmed, or the error says why not, for the person. It ends an undo window.
    Result<void> saveDraftBody(const QString& id, const QString& body);

    QString whyNot(const ApprovalKey& key) const; ///< why it no longer takes a verdict or an edit

    bool linkProposal(const QString& id, const QString& contactId); ///< false where it no longer waits

    const QString& notice() const { return m_notice; } ///< why the last verdict changed nothing, or empty
    void dismissNotice();

Q_SIGNALS:
    void changed(); ///< a list, the notice, or what is armed, and each second while something is
    void confirmationRequested(const QString& key); ///< a banner's Approve of what is asked about first, in the window

private:
    enum class From { Window, Banner };
    struct Armed {
        Verdict verdict = Verdict::Approve;
        qint64 untilMs = 0;
        ApprovalItem seen; ///< its hash is empty where nothing was shown
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
    std::optional<ApprovalItem> disarm(const ApprovalKey& key); ///< what was seen, where it was armed

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
    std::set<ApprovalKey> m_seen; ///< what was announced, or waited at launch
    std::map<ApprovalKey, ApprovalItem> m_announced; ///< each as it was announced
    bool m_baselined = false;
    std::unique_ptr<Timer> m_timer;
    NotificationCentre::Observation m_actionObserver;
};

/// How much of what the store holds waits for a decision; what is armed counts no more.
int waitingForDecision(const ApprovalsStore& store);

}
