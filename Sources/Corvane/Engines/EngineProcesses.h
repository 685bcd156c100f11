#pragma once

#include "Engines/Account.h"
#include "Engines/EngineLines.h"
#include "Platform/ProcessLauncher.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <map>

namespace corvane {

class Keychain;
class RuntimeStates;
struct AppPaths;

/// Whose event it is: the account's current engine, or one that is about to be replaced.
enum class Speaker { Current, Superseded };

/// The engine processes, one per account, and their restarts after a crash: after 2, 4, 8, 16 and 30 seconds, then only
/// by hand; a connection resets the budget. An account's engine starts only when its predecessor has exited.
class EngineProcesses {
public:
    struct Handlers {
        /// False if the event must be delivered again.
        std::function<bool(const QUuid& accountId, Speaker speaker, const QJsonObject& event)> event;
        std::function<void(const std::shared_ptr<ChildProcess>& child)> ended; ///< after its last event
        std::function<void()> allEnded; ///< once, after `stopAll`
    };

    /// Every reference outlives the object.
    EngineProcesses(const AppPaths& paths, Scheduler& scheduler, ProcessLauncher& launcher, Keychain& keychain,
        RuntimeStates& runtime, Handlers handlers, LineGroup& lines);

    /// Does nothing if the account's engine is running; one that closed its input is restarted.
    void start(const Account& account);
    void stop(const Account& account); ///< also cancels pending restarts
    void forget(const Account& account); ///< stops it; the account is removed
    void stopAll(); ///< when quitting; nothing starts any more
    void secretsArrived(); ///< starts what was waiting for the keyring
    void connectionOpened(const QUuid& accountId);

    std::shared_ptr<ChildProcess> child(const QUuid& accountId) const; ///< null if none was started or it was stopped
    bool isRunning(const QUuid& accountId) const;
    bool isStarting(const QUuid& accountId) const; ///< not running yet, but about to start

    /// The account as of its last start since launch.
    std::optional<Account> account(const QUuid& accountId) const;
    std::optional<Account> accountBySlug(const QString& slug) const;

private:
    struct Engine {
        Account account;
        ProcessSpec spec;
        std::shared_ptr<ChildProcess> child;
        std::shared_ptr<EngineStream> stream;
        int exitCode = 0;
    };

    void cancelStart(const QUuid& accountId);
    void launchWhenAlone(const Account& account);
    void clearAndLaunch(const Account& account, int round);
    void launch(const Account& account);
    ProcessLauncher::Handlers handlersFor(const std::shared_ptr<Engine>& engine);
    void handleExit(const std::shared_ptr<Engine>& engine);
    void tellExit(const Engine& engine);
    void restartLater(const Account& account);
    void launchNext();

    const AppPaths& m_paths;
    Scheduler& m_scheduler;
    ProcessLauncher& m_launcher;
    Keychain& m_keychain;
    RuntimeStates& m_runtime;
    const Handlers m_handlers;

    EngineLines m_lines;
    QList<std::shared_ptr<Engine>> m_engines; ///< all whose exit has not been handled
    QHash<QUuid, std::shared_ptr<Engine>> m_current;
    QHash<QUuid, Account> m_accounts;
    QHash<QUuid, Account> m_awaitingSecret; ///< to be started, but the secret is only in the keyring
    QSet<QUuid> m_intentionalStops; ///< until the next start
    QHash<QUuid, int> m_restartAttempts; ///< crashes since the last connection
    QHash<QString, Account> m_successors; ///< by slug: to be started once the old engine has exited
    std::map<QUuid, std::unique_ptr<Timer>> m_starts; ///< delayed
    std::deque<Account> m_due; ///< whose delay has passed
    std::unique_ptr<Timer> m_launch;
    bool m_isQuitting = false;
};

}
