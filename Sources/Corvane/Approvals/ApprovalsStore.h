#pragma once

#include "Foundation/NotificationCentre.h"
#include "Foundation/Scheduler.h"
#include "Store/Approvals/CrmProposals.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Work/WorkRecords.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <map>

namespace corvane {

class CallRecorder;
class EngineManager;
class Notifier;

/// Something that waits for a person, as it is announced.
struct ApprovalItem {
    QString key; ///< a draft keeps its key when it fails
    QString kind; ///< "draft", "draft_failed", "proposal" or "decision"
    QString id;
    QString title;
    QString body;
};

/// The single gate in front of everything that leaves the machine or cannot be undone: it looks every five seconds for
/// what waits, announces what is new, and carries out what the person says on any surface. Who approves a draft
/// approves what was shown to them; where the row differs it is not sent, and they are asked again.
class ApprovalsStore : public QObject {
    Q_OBJECT
public:
    /// The references outlive the store.
    ApprovalsStore(NotificationCentre& centre, Notifier& notifier, Scheduler& scheduler, QObject* parent = nullptr);

    /// Once at boot; a second call leaves one timer and one observer. Without the two, once they are gone, every
    /// action only says that it could not be done.
    void attach(EngineManager& engine, CallRecorder& calls);
    void refresh();

    const QList<WorkDecisionRecord>& decisions() const { return m_decisions; } ///< the 50 first that wait
    const QSet<QString>& armedDrafts() const { return m_armedDrafts; } ///< ids inside their undo window
    const QList<PendingDraft>& drafts() const; ///< those of the engines; empty without them
    const QList<CRMUpdateProposal>& proposals() const; ///< those of the recorder; empty without it

    /// Arms the draft as it is shown now; after the window it is approved and goes out, unless it is undone, rejected
    /// or edited before. A second call inside the window does nothing.
    void approveDraft(const QString& id, Milliseconds undoWindow);
    void undo(const QString& id);
    void rejectDraft(const QString& id);
    void saveDraftBody(const QString& id, const QString& body); ///< one that is only white space does nothing

    void applyProposal(const QString& id);
    void rejectProposal(const QString& id);
    bool linkProposal(const QString& id, const QString& contactId); ///< false where it no longer waits
    void approveDecision(const QString& id);
    void rejectDecision(const QString& id);

Q_SIGNALS:
    void changed(); ///< a list, or which drafts are armed

private:
    enum class Action { Approve, Reject };
    struct Armed {
        QString seenHash; ///< empty where nothing was shown
        std::unique_ptr<Timer> timer;
    };

    void handleNotificationAction(const QString& kind, const QString& id, const QString& action);
    void notifyNewItems();
    void notifyActionFailure(Action action);

    void approveAsSeen(const QString& id, const QString& seenHash);
    void decideWork(const QString& id, Action action);
    void settle(Decided decided, Action action, const QString& id);
    QString shownHash(const QString& id) const;
    std::optional<QString> disarm(const QString& id); ///< what was seen, where it was armed

    NotificationCentre& m_centre;
    Notifier& m_notifier;
    Scheduler& m_scheduler;
    QPointer<EngineManager> m_engine;
    QPointer<CallRecorder> m_calls;
    QList<WorkDecisionRecord> m_decisions;
    QSet<QString> m_armedDrafts;
    std::map<QString, Armed> m_armed;
    QSet<QString> m_seen; ///< keys of what was announced, or waited at launch
    QHash<QString, QString> m_announced; ///< the hash of each draft as it was announced
    bool m_baselined = false;
    std::unique_ptr<Timer> m_timer;
    NotificationCentre::Observation m_actionObserver;
};

}
