#pragma once

#include "Foundation/Cancellation.h"

#include <QByteArray>
#include <QStringList>
#include <qcoro/qcorotask.h>

namespace corvane {

/// How a tool exited.
struct ToolEnd {
    int status = 0; ///< the exit status, or the number of the signal that ended it
    QByteArray errors; ///< the last 16 KiB of what it wrote to standard error

    bool isSuccess() const { return status == 0; }
};

/// Runs programs that do one thing and exit. Their output is read and discarded. A tool leads its own process group;
/// the rest of the group is killed when the tool exits, and so are processes that left the group and could still print.
class ToolRunner {
public:
    /// Kills running tools; their callers get a failure.
    virtual ~ToolRunner() = default;

    /// The environment is inherited; standard input gets `input` and then ends. There is no time limit; cancelling
    /// kills the tool and its descendants. If the program does not start, the error is the system's.
    virtual QCoro::Task<Result<ToolEnd>> run(
        QString executable, QStringList arguments, QByteArray input, CancelHandle cancel)
        = 0;
};

}
