#include "Engines/EngineProcesses.h"

#include "Engines/EngineSpec.h"
#include "Engines/RuntimeStates.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Keychain.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int maxRestartAttempts = 5;
constexpr Milliseconds remainsPeriod { 100 };
constexpr int remainsRounds = 50;

QByteArray acknowledgment(qint64 number)
{
    return compactJson({ { u"cmd"_s, u"ack"_s }, { u"n"_s, number } }) + '\n';
}

}

EngineProcesses::EngineProcesses(const AppPaths& paths, Scheduler& scheduler, ProcessLauncher& launcher,
    Keychain& keychain, RuntimeStates& runtime, Handlers handlers, LineGroup& lines)
    : m_paths(paths)
    , m_scheduler(scheduler)
    , m_launcher(launcher)
    , m_keychain(keychain)
    , m_runtime(runtime)
    , m_handlers(std::move(handlers))
    , m_lines(scheduler, lines)
{
}

void EngineProcesses::start(const Account& account)
{
    const QUuid id = account.id;
    const auto running = isRunning(id) ? child(id) : nullptr;
    if (m_isQuitting || (running && running->isInputOpen()))
        return;
    if (running)
        running->terminate();
    cancelStart(id);
    m_accounts.insert(id, account);
    m_intentionalStops.remove(id);
    m_current.remove(id);
    m_runtime.setStatus(id, WAStatus::Starting);
    if (keepsSecret(account.channel()) && m_keychain.isAwaited(account.slug)) {
        m_awaitingSecret.insert(id, account);
        m_runtime.setLog(id, u"Waits for the desktop's keyring to be unlocked."_s);
        return;
    }
    launchWhenAlone(account);
}

void EngineProcesses::launchWhenAlone(const Account& account)
{
    const bool oneEnds
        = std::ranges::any_of(m_engines, [&](const auto& engine) { return engine->account.slug == account.slug; });
    if (oneEnds)
        m_successors.insert(account.slug, account);
    else
        clearAndLaunch(account, 0);
}

/// Processes left by an earlier run are asked to exit, and killed after five seconds.
void EngineProcesses::clearAndLaunch(const Account& account, int round)
{
    using Marked = ProcessLauncher::Marked;
    const auto fired = std::move(m_starts[account.id]);
    m_starts.erase(account.id);
    const Marked action = round == 0 ? Marked::Ask : round < remainsRounds ? Marked::Count : Marked::Kill;
    if (m_launcher.marked(engineMark(m_paths, account), action) == 0)
        return launch(account);
    m_starts[account.id]
        = m_scheduler.after(remainsPeriod, [this, account, round] { clearAndLaunch(account, round + 1); });
}

void EngineProcesses::launch(const Account& account)
{
    const QUuid id = account.id;
    const auto engine = std::make_shared<Engine>();
    engine->account = account;
    engine->spec = engineSpec(m_paths, m_keychain, account);
    const std::weak_ptr<Engine> weak = engine;
    engine->stream = m_lines.open({
        .event =
            [this, id, weak](const QJsonObject& event) {
                const auto speaker = weak.lock();
                const bool superseded = m_successors.contains(speaker->account.slug);
                return m_handlers.event(id, superseded ? Speaker::Superseded : Speaker::Current, event);
            },
        // An engine that closed its input is replaced, and gets all commands again.
        .kept =
            [weak](qint64 number) {
                if (const auto alive = weak.lock())
                    (void)alive->child->write(acknowledgment(number));
            },
    });
    const auto child = m_launcher.start(engine->spec, handlersFor(engine));
    if (!child) {
        const QString words = u"Failed to launch engine: %1"_s.arg(child.error().message);
        log(u"EngineProcesses: %1: %2"_s.arg(account.slug, words));
        m_runtime.setStatus(id, WAStatus::Error);
        m_runtime.setLog(id, words);
        return;
    }
    engine->child = *child;
    m_engines.append(engine);
    m_current.insert(id, engine);
    m_runtime.setExit(id, {});
}

ProcessLauncher::Handlers EngineProcesses::handlersFor(const std::shared_ptr<Engine>& engine)
{
    // The launcher outlives this object and its engines: late callbacks do nothing.
    const std::weak_ptr<Engine> weak = engine;
    return {
        .output =
            [weak](const OutputChunk& chunk) {
                if (const auto alive = weak.lock())
                    alive->stream->append(chunk);
            },
        .exited =
            [this, weak](int code) {
                const auto alive = weak.lock();
                if (!alive)
                    return;
                alive->exitCode = code;
                // The remaining output is handled before the exit.
                alive->stream->close([this, weak] { handleExit(weak.lock()); });
            },
    };
}

void EngineProcesses::handleExit(const std::shared_ptr<Engine>& engine)
{
    m_engines.removeOne(engine);
    const QUuid id = engine->account.id;
    if (m_current.value(id) == engine)
        m_current.remove(id);
    m_launcher.marked(engineMark(m_paths, engine->account), ProcessLauncher::Marked::Kill);
    tellExit(*engine);
    m_handlers.ended(engine->child);

    if (m_isQuitting) {
        if (m_engines.isEmpty())
            m_handlers.allEnded();
    } else if (const Account successor = m_successors.take(engine->account.slug); !successor.id.isNull()) {
        clearAndLaunch(successor, 0);
    } else if (!m_accounts.contains(id) || m_runtime.get(id).status == WAStatus::LoggedOut) {
        return;
    } else if (m_intentionalStops.contains(id)) {
        m_runtime.setStatus(id, WAStatus::Stopped);
    } else {
        restartLater(engine->account);
    }
}

void EngineProcesses::tellExit(const Engine& engine)
{
    const QString words = exitWords(engine.spec, engine.exitCode);
    log(u"EngineProcesses: %1: %2"_s.arg(engine.account.slug, words));
    if (m_accounts.contains(engine.account.id))
        m_runtime.setExit(engine.account.id, words);
}

void EngineProcesses::restartLater(const Account& account)
{
    const QUuid id = account.id;
    const int attempts = ++m_restartAttempts[id];
    if (attempts > maxRestartAttempts) {
        const QString words = u"Engine kept crashing — auto-restart gave up after %1 tries."_s.arg(maxRestartAttempts);
        log(u"EngineProcesses: %1: %2"_s.arg(account.slug, words));
        m_runtime.setStatus(id, WAStatus::Error);
        m_runtime.setLog(id, words);
        return;
    }
    m_runtime.setStatus(id, WAStatus::Connecting);
    const int delaySeconds = std::min(1 << attempts, 30);
    m_starts[id] = m_scheduler.after(Milliseconds(1000 * delaySeconds), [this, account] {
        const auto fired = std::move(m_starts[account.id]);
        m_starts.erase(account.id);
        m_due.push_back(account);
        if (!m_launch)
            m_launch = m_scheduler.after(Milliseconds(0), [this] { launchNext(); });
    });
}

/// One launch per turn of the event loop: engines that crashed together do not block the window.
void EngineProcesses::launchNext()
{
    const auto fired = std::move(m_launch);
    if (m_due.empty())
        return;
    const Account account = m_due.front();
    m_due.pop_front();
    if (!m_due.empty())
        m_launch = m_scheduler.after(Milliseconds(0), [this] { launchNext(); });
    start(account);
}

void EngineProcesses::secretsArrived()
{
    const auto waiting = std::exchange(m_awaitingSecret, {});
    for (const Account& account : waiting)
        start(account);
}

void EngineProcesses::cancelStart(const QUuid& accountId)
{
    m_starts.erase(accountId);
    m_successors.removeIf([&](const auto& entry) { return entry.value().id == accountId; });
    std::erase_if(m_due, [&](const Account& account) { return account.id == accountId; });
    m_awaitingSecret.remove(accountId);
}

void EngineProcesses::stop(const Account& account)
{
    cancelStart(account.id);
    m_restartAttempts.remove(account.id);
    m_intentionalStops.insert(account.id);
    if (const auto engine = m_current.take(account.id))
        engine->child->terminate();
    m_runtime.setStatus(account.id, WAStatus::Stopped);
}

void EngineProcesses::forget(const Account& account)
{
    stop(account);
    m_accounts.remove(account.id);
    m_intentionalStops.remove(account.id);
}

void EngineProcesses::stopAll()
{
    if (std::exchange(m_isQuitting, true))
        return;
    m_starts.clear();
    m_successors.clear();
    m_due.clear();
    m_launch.reset();
    m_awaitingSecret.clear();
    m_current.clear();
    const auto engines = m_engines; // a copy: an exit removes its engine from the list
    for (const auto& engine : engines)
        engine->child->terminate();
    if (engines.isEmpty())
        m_handlers.allEnded();
}

void EngineProcesses::connectionOpened(const QUuid& accountId)
{
    m_restartAttempts.remove(accountId);
}

std::shared_ptr<ChildProcess> EngineProcesses::child(const QUuid& accountId) const
{
    const auto engine = m_current.value(accountId);
    return engine ? engine->child : nullptr;
}

bool EngineProcesses::isRunning(const QUuid& accountId) const
{
    const auto running = child(accountId);
    return running && running->isRunning();
}

bool EngineProcesses::isStarting(const QUuid& accountId) const
{
    const auto isIt = [&](const Account& account) {
        return account.id == accountId;
    };
    return m_starts.contains(accountId) || std::ranges::any_of(m_due, isIt) || std::ranges::any_of(m_successors, isIt);
}

std::optional<Account> EngineProcesses::account(const QUuid& accountId) const
{
    if (const auto found = m_accounts.constFind(accountId); found != m_accounts.cend())
        return *found;
    // A removed account's engine may still report until it exits.
    const auto ending = std::ranges::find(m_engines, accountId, [](const auto& engine) { return engine->account.id; });
    return ending == m_engines.cend() ? std::nullopt : std::optional((*ending)->account);
}

std::optional<Account> EngineProcesses::accountBySlug(const QString& slug) const
{
    const auto found = std::ranges::find(m_accounts, slug, &Account::slug);
    return found == m_accounts.cend() ? std::nullopt : std::optional(*found);
}

}
