#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Cancellation.h"
#include "Foundation/Coalescer.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/Result.h"
#include "Store/Sync/CloudPush.h"
#include "Store/Sync/SyncQueries.h"

#include <QJsonObject>
#include <QObject>
#include <QUrl>

namespace corvane {

class SessionStore;
class UserDefaults;
class WebClient;

/// Copies local WhatsApp conversations to the web when the user asks for it. One way, one push at a time.
class SyncClient : public QObject {
    Q_OBJECT
public:
    static constexpr int mostThreads = 200; ///< per push
    static constexpr int mostMessages = 500; ///< per chat in a push, and per request

    struct Status {
        enum class Kind { Idle, Syncing, Done, WaitingForWeb, Error, Cancelled };
        Kind kind = Kind::Idle;
        QString text; ///< of WaitingForWeb and Error
        int chats = 0; ///< of Done and Cancelled

        bool operator==(const Status&) const = default;
    };

    /// The progress of the running or the last push.
    struct Progress {
        int chats = 0;
        int allChats = 0;
        qint64 messages = 0; ///< accepted by the web
        qint64 allMessages = 0;
        QString title; ///< of the current chat
    };

    /// All references outlive the object.
    SyncClient(SessionStore& session, LocalDB& db, Scheduler& scheduler, QObject* parent = nullptr);
    ~SyncClient() override;

    void attach() { m_attached = true; } ///< called by the start sequence; nothing is pushed before
    bool attached() const { return m_attached; }

    const Status& status() const { return m_status; }
    QString statusLine() const;
    int lastSyncedThreads() const { return m_lastSyncedThreads; }
    int lastSyncedMessages() const { return m_lastSyncedMessages; }
    const Progress& progress() const { return m_progress; }
    bool isRunning() const { return m_run != nullptr; }

    QUrl target() const; ///< where a push goes; invalid if the address is

    /// Nothing leaves the machine before the user has agreed to the data, the service and the account.
    bool isApproved() const;
    void approve();

    /// Pushes what is due: up to 200 chats with 500 messages each. Does nothing while a push is running, or before
    /// `approve`.
    void syncNow();

    /// Pushes what earlier pushes skipped because a chat had more than 500 messages.
    void pushTheRest();

    /// What the web has accepted stays there.
    void cancel();

    /// Determines what a push would include; `reviewed` follows.
    void lookUp();
    bool isLookingUp() const { return m_lookingUp; }
    const std::optional<PushReview>& review() const { return m_review; } ///< nothing if it could not be read

    /// Writes what a push would send into a readable file; `dryRunWritten` follows.
    void writeDryRun(const QString& path);
    bool isWriting() const { return m_writing; }

    /// The next push sends everything again, as to a new service. Does nothing while a push is running.
    void startOver();

Q_SIGNALS:
    void changed();
    void reviewed();
    void dryRunWritten(const QString& path, const QString& error); ///< the error is for the user; empty on success

private:
    struct Run; ///< one push from start to end
    struct Aside;
    enum class What { Due, LeftOut };

    void start(What what);
    void setStatus(const Status& status);
    void recordSkipped(const QString& why);
    SyncHealthRow healthRow(const QString& status, const QString& error, const QJsonObject& extra) const;
    QJsonObject bridgeHealthPayload(const QJsonObject& extra) const;
    QString ingestBase() const;
    QString agreedTarget() const; ///< the service and account that the user agreed to
    static QString accountIdKey(const QString& slug); ///< of the user default with the web's id of an account

    SessionStore& m_session;
    LocalDB& m_db;
    UserDefaults& m_defaults;
    Scheduler& m_scheduler;
    std::unique_ptr<WebClient> m_client;
    Status m_status;
    Progress m_progress;
    int m_lastSyncedThreads = 0;
    int m_lastSyncedMessages = 0;
    qint64 m_newestMs = 0; ///< the time of the newest pushed message
    bool m_attached = false;
    bool m_lookingUp = false;
    bool m_writing = false;
    std::optional<PushReview> m_review;
    std::shared_ptr<Run> m_run;
    CancelHandle m_lookUp;
    CancelHandle m_end; ///< cancels running writes with the object
    Coalescer m_tell; ///< reports progress
    NotificationCentre::Observation m_workspaceChanged;
    BackgroundQueue m_background; ///< destroyed first: no callbacks afterwards
};

}
