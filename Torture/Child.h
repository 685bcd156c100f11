#pragma once

#include <QStringList>

namespace corvane::torture {

/// What a child runs if it has no program of its own; returns the exit code.
using Host = int (*)(const QStringList& arguments);

/// Forks the process that starts all children. Must be called first, while this process has no threads and no open
/// files. Forking that process is faster than loading a program again.
void openNursery(Host host);

struct ChildOrder {
    QString program; ///< a path; empty runs the host
    QStringList arguments;
    QStringList environment; ///< the complete environment, as "NAME=value"
    QString log; ///< the file for its standard error
};

/// A child process, killed when this object is destroyed or this process ends.
class Child {
public:
    Child() = default;
    ~Child() { kill(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void start(const ChildOrder& order); ///< must not be running already
    bool isRunning() const;
    int processId() const { return m_pid; }
    bool waitForEnd(int milliseconds); ///< false if it is still running; true if there is none
    void terminate(); ///< sends SIGTERM
    void kill(); ///< sends SIGKILL
    int exitCode() const { return m_exitCode; } ///< of the last run, once it has ended; -1 after a signal

private:
    int m_pid = 0;
    int m_handle = -1;
    int m_exitCode = -1;
};

}
