#pragma once

#include <QStringList>

namespace corvane::torture {

/// What a child runs when it is not another program; its result is the exit code.
using Host = int (*)(const QStringList& arguments);

/// Forks the process that starts all children. To be called first of all, while this one has no threads and no open
/// files: a fork of it is a program that was loaded already.
void openNursery(Host host);

struct ChildOrder {
    QString program; ///< a path; empty for the host
    QStringList arguments;
    QStringList environment; ///< all of it, as "NAME=value"
    QString log; ///< gets its standard error
};

/// A process that dies with this one.
class Child {
public:
    Child() = default;
    ~Child() { kill(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void start(const ChildOrder& order); ///< not while it runs
    bool isRunning() const;
    int processId() const { return m_pid; }
    bool waitForEnd(int milliseconds); ///< false if it still runs; true if there is none
    void terminate(); ///< asks it to end
    void kill(); ///< at once
    int exitCode() const { return m_exitCode; } ///< of the last one, after its end; -1 after a signal

private:
    int m_pid = 0;
    int m_handle = -1;
    int m_exitCode = -1;
};

}
