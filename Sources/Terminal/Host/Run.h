#pragma once

#include "Terminal/Pty/Session.h"

namespace corvane::terminal {

struct RunOptions {
    Size size;
    Config config;
    Command command;
    int timeoutSeconds = 0; ///< 0: none
    std::string dumpFile;
    std::string logFile; ///< receives the child's output
};

/// Runs the command in a terminal without a display. Returns the child's exit code, 128 plus the number of a signal,
/// 124 after the timeout, or 127 if it could not be started.
int runCommand(const RunOptions& options);

}
