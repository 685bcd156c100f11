#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// Runs what the arguments ask for where it needs no display and may run beside the program, such as `corvane verify`.
/// The exit code, 2 for wrong use; nothing where the program itself is to start, or to be told.
std::optional<int> runCommand(int argc, char** argv);

/// What `corvane --help` says of each command, those of the running program included.
QString commandHelp();

}
