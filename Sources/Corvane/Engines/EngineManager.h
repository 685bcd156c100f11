#pragma once

#include "Engines/Account.h"
#include "Engines/RuntimeState.h"

#include <QJsonObject>
#include <QList>
#include <QObject>
#include <memory>

namespace corvane {

class AccountStore;
class BackgroundQueue;
class ChildProcess;
class ContactsBridge;
class Desktop;
class Keychain;
class LocalDB;
class LumoAI;
class Notifier;
class Outbox;
class PortHolders;
class ProcessLauncher;
class Scheduler;
enum class Speaker;
struct AppPaths;
struct OutgoingMessage;
struct UnifiedMsgRow;

/// The result of a message that was sent directly. An uncertain one may have been sent.
enum class SendFate { Sent, Failed, Uncertain };

/// Owns all engine processes, the tool server and the database. Main thread only.
class EngineManager : public QObject {
    Q_OBJECT
public:
    /// All references outlive the manager.
    struct Surroundings {
        const AppPaths& paths;
        Scheduler& scheduler;
        ProcessLauncher& launcher;
        PortHolders& ports;
        BackgroundQueue& background;
        Keychain& keychain;
        Notifier& notifier;
        Desktop& desktop;
    };

    EngineManager(const Surroundings& surroundings, std::unique_ptr<LocalDB> db, QObject* parent = nullptr);
    ~EngineManager() override;

    LocalDB& db();

    /// The owner of a phone number; without it all numbers are unknown.
    void setContactsBridge(ContactsBridge* contacts);

    /// The existing accounts; without it, those that were started since launch.
    void setAccounts(AccountStore* accounts);

    // Engines
    void start(const Account& account); ///< does nothing if the account's engine is running
    void resume(const Account& account); ///< the user starts it: also clears the pause
    void stop(const Account& account);
    void forget(const Account& account); ///< the account is removed: stops it for good
    void stopAll(); ///< when quitting; `allEnded` follows
    void resetAuth(const Account& account); ///< stops the engine and deletes its state folder
    bool isRunning(const Account& account) const;
    bool isRunning(const QUuid& accountId) const;
    bool isStarting(const Account& account) const; ///< not running yet, but about to start
    std::optional<Account> accountBySlug(const QString& slug) const;
    bool isGone(const QString& slug) const; ///< no account has that slug (any more)
    std::optional<Account> runningAccount(const QString& slug) const; ///< started since launch
    RuntimeState runtime(const QUuid& accountId) const;
    qint64 processId(const Account& account) const; ///< 0 if it is not running
    std::shared_ptr<ChildProcess> engineOf(const Account& account) const; ///< null if it is not running

    // Tool server
    void startUnifiedMCP(int port);
    void stopUnifiedMCP();
    bool mcpRunning() const;
    const QString& mcpProblem() const; ///< why the tool server keeps exiting; empty otherwise
    QString mcpURL() const;

    /// Starts answering the assistant requests of other processes. `ai` outlives the manager; may be called again.
    void startAIRequestWatch(LumoAI& ai);

    // Commands to engines; true if the line was written
    bool writeCommand(const Account& account, const QJsonObject& command);
    /// To a running engine; on failure the log names the caller.
    bool writeLine(const Account& account, const QByteArray& line, const QString& caller);
    /// What the user sends directly; subject and files are included if the account's channel supports them. With an id
    /// from `directSendId`, `directSendAnswered` reports the result.
    bool sendText(
        const Account& account, const QString& chatId, const OutgoingMessage& message, const QString& sendId = {});
    static QString directSendId(qint64 nowMs);
    bool sendAudio(const Account& account, const QString& chatId, const QString& path);
    bool markRead(const Account& account, const QString& chatId);
    bool loadMoreHistory(const Account& account, const QString& chatId, int count);
    bool react(
        const Account& account, const QString& chatId, const QString& messageId, bool fromMe, const QString& emoji);
    bool fetchAvatar(const Account& account, const QString& jid);
    bool sync(const Account& account);
    void retryMediaDownload(const UnifiedMsgRow& row);
    QStringList mediaPlaces(const UnifiedMsgRow& row) const; ///< where a message's file may be

    // Outgoing files
    const Outbox& outbox() const;
    /// Queues a draft for approval; it gets copies of the picked files. False if there is no such conversation, or if a
    /// file has changed since it was picked.
    bool queueDraft(const QString& conversationId, const OutgoingMessage& message, const QString& source);

    // For the screens
    qint64 inboxRevision() const { return m_inboxRevision; }
    int unreadTotal() const { return m_unreadTotal; }
    const QString& openContactId() const;
    void setOpenContactId(const QString& contactId);
    std::optional<MediaDownloadStatus> mediaDownloadStatus(const QString& messageId) const;
    void refreshUnreadBadge();
    /// What the inbox shows of this person may have changed; of anyone if the id is empty.
    void bump(const QString& contactId = {});

    /// An event that an engine printed after the sentinel, as its own group; anything but a JSON object with a "type"
    /// is ignored.
    void handleEvent(const QUuid& accountId, const QString& line, Speaker speaker);

Q_SIGNALS:
    void runtimeChanged(const QUuid& accountId);
    void inboxRevisionChanged(const QString& contactId); ///< see `bump`
    void unreadTotalChanged();
    void mediaDownloadStatusChanged(const QString& messageId);
    void mcpRunningChanged(); ///< or its problem
    void directSendAnswered(const QString& id, SendFate fate, const QString& error);
    void sendProgressed(const QString& accountSlug, const QString& id); ///< a draft or direct send is in progress
    void featuresChanged(const QString& accountSlug); ///< read them with `fetchFeatures`
    void stopping(); ///< all engines, when quitting
    void engineEnded(const std::shared_ptr<ChildProcess>& engine); ///< after its last event
    void allEnded(); ///< no engine is left, and all output is handled
    void eventHandled(const QString& accountSlug, const QString& type); ///< an accepted event, after the commit

private:
    bool takeEvent(const QUuid& accountId, const QJsonObject& event, Speaker speaker);
    void tellDirectSend(const QString& id, const QJsonObject& acknowledgment);
    void countUnread();
    void failMediaOf(const std::shared_ptr<ChildProcess>& engine); ///< it exited
    void setMediaDownload(const QString& messageId, const std::optional<MediaDownloadStatus>& status);

    struct State;
    std::unique_ptr<State> m_state;
    qint64 m_inboxRevision = 0;
    int m_unreadTotal = 0;
};

}
