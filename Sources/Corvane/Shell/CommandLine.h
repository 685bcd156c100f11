#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// Runs commands that need no display and may run beside the program, such as `corvane verify`. Returns the exit code,
/// 2 for wrong usage; nothing if the program itself must be started or notified.
std::optional<int> runCommand(int argc, char** argv);

/// The commands in `corvane --help`, including those of the running program.
QString commandHelp();

}
