#pragma once

#include "Foundation/Scheduler.h"
#include "Store/Approvals/DraftApprovals.h"

#include <QHash>
#include <QObject>
#include <QSet>

namespace corvane {

class ChildProcess;
class EngineManager;
struct Account;

/// Hands approved drafts to their engines, and keeps the list of drafts that wait for the user, their engine or an
/// acknowledgment.
class DraftDelivery : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object. It acts whenever the database's watch reports drafts.
    DraftDelivery(LocalDB& db, EngineManager& engines, Scheduler& scheduler, QObject* parent = nullptr);
    ~DraftDelivery() override;

    LocalDB& db() { return m_db; }

    /// Now and every 4 seconds; a second call has no effect.
    void startWatch();

    /// Hands over what is approved. Starts the engine of an account if it is not running, even a paused one, once per
    /// approval. Inside a transaction it is deferred until the commit.
    void refresh();
    const QList<PendingDraft>& pending() const { return m_pending; }

    /// The user approves a draft if it still has the given hash and files.
    Decided approve(const QString& draftId, const QString& seenHash);

    /// The only place where a draft's text is handed to an engine, and only after claiming the row as it was approved:
    /// of two programs, or two ticks, one succeeds. A crash after that step leaves a row that times out, never one that
    /// is sent twice. False if the engine did not accept it: the draft stays approved.
    bool deliver(const QString& draftId, const Account& account);

Q_SIGNALS:
    void pendingChanged();
    void returned(const QString& draftId); ///< it differs from what was approved: the user must decide again

private:
    /// A draft that this or an earlier run handed over.
    struct Awaited {
        qint64 sinceMs = 0; ///< by the monotonic clock
        std::optional<ClaimedDraft> draft; ///< none for an earlier run
        std::shared_ptr<ChildProcess> engine; ///< the engine that has the line
        QByteArray line;
    };

    void stop();
    void engineEnded(const std::shared_ptr<ChildProcess>& engine);
    bool isStillUnread(const ClaimedDraft& draft, const QByteArray& line);
    bool takeBack(const Awaited& awaited);
    void sendProgressed(const QString& accountSlug, const QString& draftId);
    std::optional<QString> obstacle(
        const std::optional<QList<OutgoingFile>>& files, bool takesFiles, const Account& account) const;
    void tidyFiles();
    void expire();
    void failThoseOfGoneAccounts();
    void deliverApproved(const QList<DraftOfAccount>& approved);
    bool canTake(const Account& account) const;
    void wakeEngines(const QList<DraftOfAccount>& approved);
    void present();

    LocalDB& m_db;
    EngineManager& m_engines;
    Scheduler& m_scheduler;
    std::unique_ptr<Timer> m_timer;
    std::unique_ptr<Timer> m_soon;
    QHash<QString, Awaited> m_awaited; ///< by draft
    QSet<QString> m_wokenFor; ///< approved drafts whose engines were started
    bool m_isFirstLook = true;
    bool m_filesAreTidy = false; ///< this run has cleaned up
    bool m_isStopped = false; ///< while quitting: nothing is sent any more
    QList<PendingDraft> m_pending;
};

}
