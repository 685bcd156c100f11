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
    QProcessEnvironment environment; ///< the whole environment, not an addition
    bool pipes = true; ///< false: standard input and output are the null device too
    // Other descriptors than the standard ones, which are the null device then.
    int inputNumber = 0; ///< where the child reads
    int outputNumber = 1; ///< where it writes
    char lineEnd = '\n'; ///< what ends a line of its output
};

/// A running child. All calls on the main thread.
class ChildProcess {
public:
    virtual ~ChildProcess() = default;

    virtual qint64 pid() const = 0;
    virtual bool isRunning() const = 0;

    /// Queues bytes for the child's standard input without blocking: what the pipe does not take is buffered, in order,
    /// up to 4 MiB. Fails if the pipe is closed or the buffer is full.
    virtual Result<void> write(const QByteArray& bytes) = 0;

    virtual bool isInputOpen() const = 0; ///< false once a write has failed permanently

    /// Whether the child has read all bytes of an earlier `write`. What it has not read when it exits counts as unread.
    virtual bool hasRead(const QByteArray& bytes) = 0;

    /// Withdraws the bytes of an earlier `write`: true if the child can never read all of them, because none was
    /// written yet, or because it exited or closed its input.
    virtual bool withdraw(const QByteArray& bytes) = 0;

    /// Asks the child to exit: closes its standard input and sends SIGTERM, once. It is killed after 5 seconds.
    virtual void terminate() = 0;
};

/// Whole lines that a child printed, each with its end. The launcher reads no more from that child until the chunk
/// is destroyed, so that a child that floods fills its pipe and not this process's memory.
struct OutputChunk {
    QByteArray lines;
    std::shared_ptr<void> hold;
};

/// Starts children and delivers their output on the main thread.
class ProcessLauncher {
public:
    struct Handlers {
        /// Lines over 64 MB are dropped, and so is an unfinished last line.
        std::function<void(OutputChunk)> output;
        /// Exactly once, after the last chunk. The code is the exit status, or minus the signal's number.
        std::function<void(int code)> exited;
    };

    /// Destroying the launcher ends all running children; it waits at most 5 seconds before it kills them.
    virtual ~ProcessLauncher() = default;

    /// Does not wait for the child. A failure carries the system's error text. The rest of the child's process group is
    /// killed when the child exits.
    virtual Result<std::shared_ptr<ChildProcess>> start(const ProcessSpec& spec, Handlers handlers) = 0;

    /// Finds every process of this user that has the variable "NAME=value" in its environment, and ends them if
    /// `action` says so. Returns their number; they may take a moment to exit.
    enum class Marked { Count, Ask, Kill };
    virtual int marked(const QString& variable, Marked action) = 0;
};

}
