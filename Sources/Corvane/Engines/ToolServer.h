#pragma once

#include "Foundation/Scheduler.h"

#include <QString>

namespace corvane {

class BackgroundQueue;
class ChildProcess;
class PortHolders;
class ProcessLauncher;
struct AppPaths;

inline constexpr int toolServerPort = 8765;

/// The tool server that all channels share: a child that answers HTTP on loopback. An orphan of an earlier run is
/// cleared off the port first; a server that dies comes back for as long as nobody stops it.
class ToolServer {
public:
    /// Every reference outlives the object. `changed` is called after each change of `isRunning` and `problem`.
    ToolServer(const AppPaths& paths, Scheduler& scheduler, ProcessLauncher& launcher, PortHolders& ports,
        BackgroundQueue& background, std::function<void()> changed);

    void start(int port); ///< nothing while one runs or is on its way
    void stop();

    bool isRunning() const { return m_isRunning; }
    const QString& problem() const { return m_problem; } ///< why the last one ended; empty once one runs for a while
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
    std::unique_ptr<Timer> m_timer; ///< the wait for a freed port, or for a restart
    std::unique_ptr<Timer> m_proof; ///< the wait for a server that is to be trusted again
    QString m_problem;
    int m_port = toolServerPort;
    int m_restartAttempts = 0;
    bool m_isRunning = false;
    bool m_isStarting = false;
    bool m_isStopWanted = false;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true); ///< what comes home late asks for it
};

}
