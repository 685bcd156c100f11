#pragma once

#include "Terminal/Pty/Pty.h"

#include <QString>
#include <optional>
#include <sys/types.h>

namespace corvane {

/// What a new terminal runs: zsh where this machine has it, else the user's login shell, as a login shell both.
/// `umask` is that of the user's own programs.
terminal::Command shellCommand(const QString& directory, std::optional<mode_t> umask);

/// Where a shell starts: `wanted` with "~" expanded, where there is such a folder; else "nimb" in the home
/// folder where there is one, else the home folder.
QString resolvedDirectory(const QString& wanted, const QString& home);

}
