#include "Engines/EngineProcesses.h"

#include "Engines/EngineSpec.h"
#include "Engines/RuntimeStates.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int maxRestartAttempts = 5;

}

EngineProcesses::EngineProcesses(const AppPaths& paths, Scheduler& scheduler, ProcessLauncher& launcher,
    Keychain& keychain, RuntimeStates& runtime, EventHandler handleEvent, std::function<bool()> mustWait)
    : m_paths(paths)
    , m_scheduler(scheduler)
    , m_launcher(launcher)
    , m_keychain(keychain)
    , m_runtime(runtime)
    , m_handleEvent(std::move(handleEvent))
    , m_lines(scheduler, std::move(mustWait))
{
}

void EngineProcesses::start(const Account& account)
{
    const QUuid id = account.id;
    if (isRunning(id))
        return;
    m_accounts.insert(id, account);
    m_intentionalStops.remove(id);
    m_current.remove(id); // one that died without its exit being handled yet is superseded
    m_runtime.setStatus(id, WAStatus::Starting);

    const auto engine = std::make_shared<Engine>();
    engine->account = account;
    engine->stream = m_lines.open(m_rests.value(id), [this, id, weak = std::weak_ptr(engine)](const QString& event) {
        const bool superseded = m_current.contains(id) && m_current.value(id) != weak.lock();
        m_handleEvent(id, superseded ? Speaker::Superseded : Speaker::Current, event);
    });
    const auto child = m_launcher.start(engineSpec(m_paths, m_keychain, account), handlersFor(engine));
    if (!child) {
        m_runtime.setStatus(id, WAStatus::Error);
        m_runtime.setLog(id, QStringLiteral("Failed to launch engine: %1").arg(child.error().message));
        return;
    }
    engine->child = *child;
    m_engines.append(engine);
    m_current.insert(id, engine);
    m_rests.remove(id);
}

ProcessLauncher::Handlers EngineProcesses::handlersFor(const std::shared_ptr<Engine>& engine)
{
    // The launcher outlives this object, which owns the engines: an engine that is gone asks for nothing.
    const std::weak_ptr<Engine> weak = engine;
    return {
        .output =
            [weak](const OutputChunk& chunk) {
                if (const auto alive = weak.lock())
                    alive->stream->append(chunk);
            },
        .exited =
            [this, weak](int) {
                const auto alive = weak.lock();
                if (!alive)
                    return;
                // What the engine printed last counts before its exit does.
                alive->stream->close([this, weak](const QString& rest) { handleExit(weak.lock(), rest); });
            },
    };
}

void EngineProcesses::handleExit(const std::shared_ptr<Engine>& engine, const QString& rest)
{
    m_engines.removeOne(engine);
    const QUuid id = engine->account.id;
    const auto current = m_current.value(id);
    if (current && current != engine)
        return;
    m_current.remove(id);
    m_rests.insert(id, rest);

    if (m_runtime.get(id).status == WAStatus::LoggedOut)
        return;
    if (m_intentionalStops.contains(id)) {
        m_runtime.setStatus(id, WAStatus::Stopped);
        return;
    }
    if (current)
        restartLater(engine->account);
}

void EngineProcesses::restartLater(const Account& account)
{
    const QUuid id = account.id;
    const int attempts = ++m_restartAttempts[id];
    if (attempts > maxRestartAttempts) {
        m_runtime.setStatus(id, WAStatus::Error);
        m_runtime.setLog(
            id, QStringLiteral("Engine kept crashing — auto-restart gave up after %1 tries.").arg(maxRestartAttempts));
        return;
    }
    m_runtime.setStatus(id, WAStatus::Connecting);
    const int delaySeconds = std::min(1 << attempts, 30);
    m_restarts[id] = m_scheduler.after(Milliseconds(1000 * delaySeconds), [this, account] {
        const auto fired = std::move(m_restarts[account.id]);
        m_due.push_back(account);
        if (!m_launch)
            m_launch = m_scheduler.after(Milliseconds(0), [this] { launchNext(); });
    });
}

/// One launch at each turn of the loop: engines that died together do not hold up the window together.
void EngineProcesses::launchNext()
{
    const auto fired = std::move(m_launch);
    const Account account = m_due.front();
    m_due.pop_front();
    if (!m_due.empty())
        m_launch = m_scheduler.after(Milliseconds(0), [this] { launchNext(); });
    start(account);
}

void EngineProcesses::stop(const Account& account)
{
    m_intentionalStops.insert(account.id);
    if (const auto engine = m_current.take(account.id))
        engine->child->terminate();
    m_runtime.setStatus(account.id, WAStatus::Stopped);
}

void EngineProcesses::stopAll()
{
    m_restarts.clear();
    m_due.clear();
    m_launch.reset();
    const auto engines = std::exchange(m_current, {});
    for (const auto& engine : engines)
        engine->child->terminate();
}

void EngineProcesses::connectionOpened(const QUuid& accountId)
{
    m_restartAttempts.remove(accountId);
}

ChildProcess* EngineProcesses::child(const QUuid& accountId) const
{
    const auto engine = m_current.value(accountId);
    return engine ? engine->child.get() : nullptr;
}

bool EngineProcesses::isRunning(const QUuid& accountId) const
{
    const ChildProcess* running = child(accountId);
    return running && running->isRunning();
}

std::optional<Account> EngineProcesses::account(const QUuid& accountId) const
{
    const auto found = m_accounts.constFind(accountId);
    return found == m_accounts.cend() ? std::nullopt : std::optional(*found);
}

std::optional<Account> EngineProcesses::accountBySlug(const QString& slug) const
{
    const auto found = std::ranges::find(m_accounts, slug, &Account::slug);
    return found == m_accounts.cend() ? std::nullopt : std::optional(*found);
}

}
