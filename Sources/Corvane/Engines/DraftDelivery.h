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

/// Brings approved drafts to their engines, and keeps the list of those that wait for the user, for their engine or
/// for an acknowledgment.
class DraftDelivery : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object. It acts whenever the database's watch tells of drafts.
    DraftDelivery(LocalDB& db, EngineManager& engines, Scheduler& scheduler, QObject* parent = nullptr);
    ~DraftDelivery() override;

    LocalDB& db() { return m_db; }

    /// At once and every 4 seconds; a second call starts no second timer.
    void startWatch();

    /// Hands over what is approved. An account whose engine does not run is started, also a paused one, once for each
    /// approval. Inside a transaction: once it is over.
    void refresh();
    const QList<PendingDraft>& pending() const { return m_pending; }

    /// A person approves a draft as it was seen, that is: with that hash, and with the files that it stands for.
    Decided approve(const QString& draftId, const QString& seenHash);

    /// The one place where a draft's text goes to an engine, and only by whoever claims the row as it was approved: of
    /// two programs, or two ticks, one does. A crash after that step leaves a row that fails by its age, never one
    /// that goes out again. False where the engine took nothing: the draft stays approved.
    bool deliver(const QString& draftId, const Account& account);

Q_SIGNALS:
    void pendingChanged();
    void returned(const QString& draftId); ///< it is not as it was approved: the person is to be asked again

private:
    /// A draft that was handed over, by this run or an earlier one.
    struct Awaited {
        qint64 sinceMs = 0; ///< by the monotonic clock
        std::optional<ClaimedDraft> draft; ///< none of an earlier run
        std::shared_ptr<ChildProcess> engine; ///< who has the line
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
    QSet<QString> m_wokenFor; ///< approved drafts whose accounts had their start
    bool m_isFirstLook = true;
    bool m_filesAreTidy = false; ///< this run has looked
    bool m_isStopped = false; ///< at quit: nothing goes out any more
    QList<PendingDraft> m_pending;
};

}
