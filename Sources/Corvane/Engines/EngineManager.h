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

/// What became of a message that was sent directly. One that is uncertain may have gone out.
enum class SendFate { Sent, Failed, Uncertain };

/// Owns every engine child process, the tool server, and the one database. Main thread only.
class EngineManager : public QObject {
    Q_OBJECT
public:
    /// What the manager stands on; all of it outlives the manager.
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

    /// Who a phone number belongs to; without one every number is unknown.
    void setContactsBridge(ContactsBridge* contacts);

    /// Which accounts there are; without them, those that were started since launch.
    void setAccounts(AccountStore* accounts);

    // Engines
    void start(const Account& account); ///< nothing where the account's engine runs
    void resume(const Account& account); ///< a person wants it to run: starts it, and it is paused no more
    void stop(const Account& account);
    void forget(const Account& account); ///< it is removed: stops it, and nothing of it comes back
    void stopAll(); ///< at quit; `allEnded` follows
    void resetAuth(const Account& account); ///< stops, and deletes the engine's state folder
    bool isRunning(const Account& account) const;
    bool isRunning(const QUuid& accountId) const;
    bool isStarting(const Account& account) const; ///< it does not run yet, and does soon by itself
    std::optional<Account> accountBySlug(const QString& slug) const;
    bool isGone(const QString& slug) const; ///< no account has that slug (any more)
    std::optional<Account> runningAccount(const QString& slug) const; ///< started since launch
    RuntimeState runtime(const QUuid& accountId) const;
    qint64 processId(const Account& account) const; ///< 0 where none runs
    std::shared_ptr<ChildProcess> engineOf(const Account& account) const; ///< null where none runs

    // Tool server
    void startUnifiedMCP(int port);
    void stopUnifiedMCP();
    bool mcpRunning() const;
    const QString& mcpProblem() const; ///< why the tool server keeps ending; empty where it does not
    QString mcpURL() const;

    /// Answers from now on what other processes ask of the assistant. `ai` outlives the manager; may be called again.
    void startAIRequestWatch(LumoAI& ai);

    // Commands to engines; true where the line is on its way
    bool writeCommand(const Account& account, const QJsonObject& command);
    /// To an engine that runs; the log names the caller where it fails.
    bool writeLine(const Account& account, const QByteArray& line, const QString& caller);
    /// What a person sends directly; the subject and the files go with it where the account's channel carries them.
    /// With an id of `directSendId`, `directSendAnswered` tells what became of it.
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
    QStringList mediaPlaces(const UnifiedMsgRow& row) const; ///< where the file of a message may lie

    // Files on their way out
    const Outbox& outbox() const;
    /// Queues a draft that waits for the user; it gets copies of the picked files. False where there is no such
    /// conversation, or a file is not as it was picked.
    bool queueDraft(const QString& conversationId, const OutgoingMessage& message, const QString& source);

    // What the screens show
    qint64 inboxRevision() const { return m_inboxRevision; }
    int unreadTotal() const { return m_unreadTotal; }
    const QString& openContactId() const;
    void setOpenContactId(const QString& contactId);
    std::optional<MediaDownloadStatus> mediaDownloadStatus(const QString& messageId) const;
    void refreshUnreadBadge();
    /// Something that the inbox shows of this person may have changed; of anybody where no one is named.
    void bump(const QString& contactId = {});

    /// What an engine printed behind the sentinel, as a group of its own; anything but a JSON object with a "type" is
    /// ignored.
    void handleEvent(const QUuid& accountId, const QString& line, Speaker speaker);

Q_SIGNALS:
    void runtimeChanged(const QUuid& accountId);
    void inboxRevisionChanged(const QString& contactId); ///< as told to `bump`
    void unreadTotalChanged();
    void mediaDownloadStatusChanged(const QString& messageId);
    void mcpRunningChanged(); ///< or its problem
    void directSendAnswered(const QString& id, SendFate fate, const QString& error);
    void sendProgressed(const QString& accountSlug, const QString& id); ///< a draft or direct send is still worked at
    void featuresChanged(const QString& accountSlug); ///< `fetchFeatures` has them
    void stopping(); ///< every engine, at quit
    void engineEnded(const std::shared_ptr<ChildProcess>& engine); ///< after its last event
    void allEnded(); ///< no engine is left, and what they printed is dealt with
    void eventHandled(const QString& accountSlug, const QString& type); ///< a line that counted, after the commit

private:
    bool takeEvent(const QUuid& accountId, const QJsonObject& event, Speaker speaker);
    void tellDirectSend(const QString& id, const QJsonObject& acknowledgment);
    void failMediaOf(const std::shared_ptr<ChildProcess>& engine); ///< it ended
    void setMediaDownload(const QString& messageId, const std::optional<MediaDownloadStatus>& status);

    struct State;
    std::unique_ptr<State> m_state;
    qint64 m_inboxRevision = 0;
    int m_unreadTotal = 0;
};

}
