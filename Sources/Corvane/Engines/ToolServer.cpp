#include "Engines/ToolServer.h"

#include "Engines/EngineSpec.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/PortHolders.h"
#include "Platform/ProcessLauncher.h"

#include <algorithm>
#include <limits>

namespace corvane {

namespace {

constexpr int usualPort = 8765;
constexpr Milliseconds portRelease { 300 };
constexpr Milliseconds proofTime { 10'000 };

/// Asks the processes that listen on the port to exit, except this process and other users'. Returns whether there were
/// any.
bool clearPort(PortHolders& ports, int port)
{
    bool asked = false;
    for (const PortHolder& holder : ports.listeningOn(static_cast<quint16>(port))) {
        if (holder.pid == ports.ownProcessId() || holder.userId != ports.ownUserId())
            continue;
        ports.terminate(holder.pid);
        asked = true;
    }
    return asked;
}

}

int toolServerPort()
{
    const int port = qEnvironmentVariableIntValue("NIMB_MCP_PORT");
    return port > 0 && port <= std::numeric_limits<quint16>::max() ? port : usualPort;
}

ToolServer::ToolServer(const AppPaths& paths, Scheduler& scheduler, ProcessLauncher& launcher, PortHolders& ports,
    BackgroundQueue& background, std::function<void()> changed)
    : m_paths(paths)
    , m_scheduler(scheduler)
    , m_launcher(launcher)
    , m_ports(ports)
    , m_background(background)
    , m_changed(std::move(changed))
{
}

void ToolServer::start(int port)
{
    if (m_process)
        return;
    m_isStopWanted = false;
    if (m_isStarting)
        return;
    m_isStarting = true;
    m_port = port;
    m_background.run<bool>([&ports = m_ports, port] { return clearPort(ports, port); },
        [this, alive = std::weak_ptr(m_alive)](bool asked) {
            if (alive.expired())
                return;
            if (asked)
                m_timer = m_scheduler.after(portRelease, [this] { launch(); });
            else
                launch();
        });
}

void ToolServer::launch()
{
    m_isStarting = false;
    if (m_isStopWanted)
        return;
    // A stopped server may still be exiting: its exit must not affect its successor.
    const auto isCurrent = std::make_shared<std::weak_ptr<ChildProcess>>();
    const auto exited = [this, alive = std::weak_ptr(m_alive), isCurrent](int code) {
        if (!alive.expired() && m_process && m_process == isCurrent->lock())
            handleExit(code);
    };
    const auto process = m_launcher.start(toolServerSpec(m_paths, m_port), { .output = {}, .exited = exited });
    if (!process) {
        log(u"unified MCP failed: %1"_s.arg(process.error().message));
        setState(false, process.error().message);
        return;
    }
    *isCurrent = *process;
    m_process = *process;
    m_restartAttempts = 0;
    setState(true, m_problem);
    m_proof = m_scheduler.after(proofTime, [this] { setState(true, QString()); });
}

void ToolServer::handleExit(int code)
{
    m_process.reset();
    m_proof.reset();
    setState(false, exitWords(toolServerSpec(m_paths, m_port), code));
    const int delaySeconds = std::min(1 << std::min(++m_restartAttempts, 5), 30);
    m_timer = m_scheduler.after(Milliseconds(1000 * delaySeconds), [this] { start(m_port); });
}

void ToolServer::stop()
{
    m_isStopWanted = true;
    if (!m_isStarting)
        m_timer.reset();
    if (const auto process = std::exchange(m_process, nullptr))
        process->terminate();
    m_proof.reset();
    setState(false, QString());
}

QString ToolServer::url() const
{
    return u"http://127.0.0.1:%1/mcp"_s.arg(m_port);
}

void ToolServer::setState(bool running, const QString& problem)
{
    if (running == m_isRunning && problem == m_problem)
        return;
    m_isRunning = running;
    m_problem = problem;
    m_changed();
}

}
