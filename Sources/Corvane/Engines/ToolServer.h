#pragma once

#include "Foundation/Scheduler.h"

#include <QString>

namespace corvane {

class BackgroundQueue;
class ChildProcess;
class PortHolders;
class ProcessLauncher;
struct AppPaths;

/// 8765, or what NIMB_MCP_PORT says: two profiles that run at once need a port each.
int toolServerPort();

/// The tool server that all channels share: a child process that serves HTTP on loopback. A leftover of an earlier run
/// is removed from the port first; a server that crashes is restarted until someone stops it.
class ToolServer {
public:
    /// Every reference outlives the object. `changed` is called after each change of `isRunning` and `problem`.
    ToolServer(const AppPaths& paths, Scheduler& scheduler, ProcessLauncher& launcher, PortHolders& ports,
        BackgroundQueue& background, std::function<void()> changed);

    void start(int port); ///< does nothing if one is running or starting
    void stop();

    bool isRunning() const { return m_isRunning; }
    const QString& problem() const { return m_problem; } ///< why the last one exited; empty after a while
    QString url() const; ///< "http://127.0.0.1:{port}/mcp"

private:
    void launch();
    void handleExit(int code);
    void setState(bool running, const QString& problem);

    const AppPaths& m_paths;
    Scheduler& m_scheduler;
    ProcessLauncher& m_launcher;
    PortHolders& m_ports;
    BackgroundQueue& m_background;
    std::function<void()> m_changed;

    std::shared_ptr<ChildProcess> m_process;
    std::unique_ptr<Timer> m_timer; ///< waits for a freed port, or for a restart
    std::unique_ptr<Timer> m_proof; ///< waits until a restarted server counts as stable
    QString m_problem;
    int m_port = toolServerPort();
    int m_restartAttempts = 0;
    bool m_isRunning = false;
    bool m_isStarting = false;
    bool m_isStopWanted = false;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true); ///< checked by late callbacks
};

}
