#pragma once

#include "Foundation/Result.h"

#include <QByteArray>
#include <QProcessEnvironment>
#include <QStringList>
#include <functional>
#include <memory>

namespace corvane {

/// What to start. Standard error always goes to the null device.
struct ProcessSpec {
    QString executable; ///< absolute path
    QStringList arguments;
    QString workingDirectory;
    QProcessEnvironment environment; ///< whole, not an addition
    bool pipes = true; ///< false: standard input and output are the null device too
};

/// A child that was started. All calls on the main thread.
class ChildProcess {
public:
    virtual ~ChildProcess() = default;

    virtual qint64 pid() const = 0;
    virtual bool isRunning() const = 0;

    /// Puts the bytes on the way to the child's standard input without ever waiting: what the pipe does not
    /// take yet is kept, in order, up to 4 MiB. Fails where the pipe is closed or more than that is waiting.
    virtual Result<void> write(const QByteArray& bytes) = 0;

    virtual bool isInputOpen() const = 0; ///< false once a write has failed for good

    /// Whether the child has read to their end the bytes of one earlier `write`. What it has not read when it ends it
    /// never reads.
    virtual bool hasRead(const QByteArray& bytes) = 0;

    /// Takes back the bytes of one earlier `write`: true where the child can never read them to their end, because
    /// none of them was on its way yet, or because it ended or closed its input before.
    virtual bool withdraw(const QByteArray& bytes) = 0;

    /// Asks the child to end: standard input is closed and SIGTERM sent, once. One that has not ended after 5 seconds
    /// is killed.
    virtual void terminate() = 0;
};

/// Whole lines that a child printed, each with its newline. The launcher reads no more from that child until the chunk
/// is destroyed, so that a child which floods fills its own pipe and not this process's memory.
struct OutputChunk {
    QByteArray lines;
    std::shared_ptr<void> hold;
};

/// Starts children and brings home what they print, on the main thread.
class ProcessLauncher {
public:
    struct Handlers {
        /// A line past 64 MB is dropped, and so is one that has not ended when the child does.
        std::function<void(OutputChunk)> output;
        /// Exactly once, after the last chunk. The code is the exit status, or minus the signal's number.
        std::function<void(int code)> exited;
    };

    /// Destroying the launcher ends every child that still runs, waiting 5 seconds at most before it kills.
    virtual ~ProcessLauncher() = default;

    /// Never waits for the child. A failure names the reason in the system's words. What is left of the child's
    /// process group is killed when the child ends.
    virtual Result<std::shared_ptr<ChildProcess>> start(const ProcessSpec& spec, Handlers handlers) = 0;

    /// Deals with every process of this user that has the variable, "NAME=value", in its environment. Returns how many
    /// there were; those that end may take a moment to be gone.
    enum class Marked { Count, Ask, Kill };
    virtual int marked(const QString& variable, Marked action) = 0;
};

}
