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

/// Whose event it is: the account's engine of now, or one that a later start has taken the place of.
enum class Speaker { Current, Superseded };

/// The engines' child processes, one per account, and when a dead one starts again: after 2, 4, 8, 16 and 30
/// seconds, then no more until it is started by hand; a connection gives the whole budget back.
class EngineProcesses {
public:
    using EventHandler = std::function<void(const QUuid& accountId, Speaker speaker, const QString& event)>;

    /// Every reference outlives the object. Events stay with their engines while `mustWait` says so.
    EngineProcesses(const AppPaths& paths, Scheduler& scheduler, ProcessLauncher& launcher, Keychain& keychain,
        RuntimeStates& runtime, EventHandler handleEvent, std::function<bool()> mustWait);

    void start(const Account& account); ///< nothing where the account's engine runs
    void stop(const Account& account); ///< a restart that is pending stays so
    void stopAll(); ///< at quit; nothing starts again by itself
    void connectionOpened(const QUuid& accountId);

    ChildProcess* child(const QUuid& accountId) const; ///< null where none was started or it was stopped
    bool isRunning(const QUuid& accountId) const;

    /// The account as it was at its last start since launch.
    std::optional<Account> account(const QUuid& accountId) const;
    std::optional<Account> accountBySlug(const QString& slug) const;

private:
    struct Engine {
        Account account;
        std::shared_ptr<ChildProcess> child;
        std::shared_ptr<EngineStream> stream;
    };

    ProcessLauncher::Handlers handlersFor(const std::shared_ptr<Engine>& engine);
    void handleExit(const std::shared_ptr<Engine>& engine, const QString& rest);
    void restartLater(const Account& account);
    void launchNext();

    const AppPaths& m_paths;
    Scheduler& m_scheduler;
    ProcessLauncher& m_launcher;
    Keychain& m_keychain;
    RuntimeStates& m_runtime;
    EventHandler m_handleEvent;

    EngineLines m_lines;
    QList<std::shared_ptr<Engine>> m_engines; ///< all whose exit has not been handled
    QHash<QUuid, std::shared_ptr<Engine>> m_current;
    QHash<QUuid, QString> m_rests; ///< what a dead engine left unterminated
    QHash<QUuid, Account> m_accounts;
    QSet<QUuid> m_intentionalStops; ///< until the next start
    QHash<QUuid, int> m_restartAttempts; ///< crashes since the last connection
    std::map<QUuid, std::unique_ptr<Timer>> m_restarts;
    std::deque<Account> m_due; ///< whose delay is over
    std::unique_ptr<Timer> m_launch;
};

}
