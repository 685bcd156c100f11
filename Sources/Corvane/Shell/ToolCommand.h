#pragma once

#include "Engines/ToolServer.h"

class QTextStream;

namespace corvane {

/// What `corvane tool` was asked for.
struct ToolCall {
    QString name; ///< empty for the list of tools
    QByteArray arguments; ///< a JSON object; empty means one without members
    int port = toolServerPort;
};

enum class ToolOutcome : int {
    Answered = 0,
    Refused = 1, ///< the tool says why
    WrongUse = 2, ///< the arguments are no JSON object
    NoServer = 3,
};

/// Hands a call to the local tool server with the token that lies beside the database. The answer goes to `out`, the
/// reason of a failure to `errors`. It needs no display, and waits for the answer.
ToolOutcome callTool(
    const AppPaths& paths, Scheduler& scheduler, const ToolCall& call, QTextStream& out, QTextStream& errors);

}
