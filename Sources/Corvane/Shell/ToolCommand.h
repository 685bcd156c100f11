#pragma once

#include "Engines/ToolServer.h"

class QTextStream;

namespace corvane {

/// The arguments of `corvane tool`.
struct ToolCall {
    QString name; ///< empty: list the tools
    QByteArray arguments; ///< a JSON object; empty means {}
    int port = toolServerPort();
};

enum class ToolOutcome : int {
    Answered = 0,
    Refused = 1, ///< with the tool's reason
    WrongUse = 2, ///< the arguments are not a JSON object
    NoServer = 3,
};

/// Sends a call to the local tool server with the token from beside the database. The answer is written to `out`,
/// errors to `errors`. It needs no display, and waits for the answer.
ToolOutcome callTool(
    const AppPaths& paths, Scheduler& scheduler, const ToolCall& call, QTextStream& out, QTextStream& errors);

}
