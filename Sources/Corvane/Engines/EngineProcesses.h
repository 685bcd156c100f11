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

/// Whose event it is: the account's engine of now, or one that a later start is to take the place of.
enum class Speaker { Current, Superseded };

/// The engines' child processes, one per account, and when a dead one starts again: after 2, 4, 8, 16 and 30
/// seconds, then no more until it is started by hand; a connection gives the whole budget back. An account's engine
/// starts when nothing of an earlier one is left.
class EngineProcesses {
public:
    struct Handlers {
        /// False where the event is to come again.
        std::function<bool(const QUuid& accountId, Speaker speaker, const QJsonObject& event)> event;
        std::function<void(const std::shared_ptr<ChildProcess>& child)> ended; ///< after its last event
        std::function<void()> allEnded; ///< once, after `stopAll`
    };

    /// Every reference outlives the object.
    EngineProcesses(const AppPaths& paths, Scheduler& scheduler, ProcessLauncher& launcher, Keychain& keychain,
        RuntimeStates& runtime, Handlers handlers, LineGroup& lines);

    /// Nothing where the account's engine runs; one that closed its input is ended and started afresh.
    void start(const Account& account);
    void stop(const Account& account); ///< and every restart that is pending
    void forget(const Account& account); ///< stops it; the account is removed
    void stopAll(); ///< at quit; nothing starts any more
    void secretsArrived(); ///< starts what waits for the keyring, where it has answered
    void connectionOpened(const QUuid& accountId);

    std::shared_ptr<ChildProcess> child(
        const QUuid& accountId) const; ///< null where none was started or it was stopped
    bool isRunning(const QUuid& accountId) const;
    bool isStarting(const QUuid& accountId) const; ///< it runs soon, by itself

    /// The account as it was at its last start since launch.
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
    QHash<QUuid, Account> m_awaitingSecret; ///< started, but only the keyring knows the secret
    QSet<QUuid> m_intentionalStops; ///< until the next start
    QHash<QUuid, int> m_restartAttempts; ///< crashes since the last connection
    QHash<QString, Account> m_successors; ///< by slug: to be started once what ends has ended
    std::map<QUuid, std::unique_ptr<Timer>> m_starts; ///< delayed
    std::deque<Account> m_due; ///< whose delay is over
    std::unique_ptr<Timer> m_launch;
    bool m_isQuitting = false;
};

}
