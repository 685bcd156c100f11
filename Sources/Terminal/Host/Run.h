#pragma once

#include "Terminal/Pty/Session.h"

namespace corvane::terminal {

struct RunOptions {
    Size size;
    Config config;
    Command command;
    int timeoutSeconds = 0; ///< 0: as long as it takes
    std::string dumpFile;
    std::string logFile; ///< gets what the child writes
};

/// Runs the command to its end, in a terminal without a display. Answers the child's exit code, 128 and the signal's
/// number, 124 after the timeout, 127 where it could not be started.
int runCommand(const RunOptions& options);

}
