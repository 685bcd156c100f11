#pragma once

#include "Foundation/Cancellation.h"

#include <QByteArray>
#include <QStringList>
#include <qcoro/qcorotask.h>

namespace corvane {

/// How a tool ended.
struct ToolEnd {
    int status = 0; ///< the exit status, or the number of the signal that ended it
    QByteArray errors; ///< the last 16 KiB of what it wrote to standard error

    bool isSuccess() const { return status == 0; }
};

/// Runs programs that do one thing and end. What a tool prints is read to its end and thrown away. A tool leads
/// a process group of its own, and what is left of the group when the tool has ended is killed, as is whatever has
/// left the group and could still print.
class ToolRunner {
public:
    /// Kills what still runs; who waits for it fails.
    virtual ~ToolRunner() = default;

    /// The environment is inherited, standard input holds `input` and then ends. There is no time limit; cancelling
    /// kills the tool and all that descends from it. A program that does not start fails in the system's words.
    virtual QCoro::Task<Result<ToolEnd>> run(
        QString executable, QStringList arguments, QByteArray input, CancelHandle cancel)
        = 0;
};

}
