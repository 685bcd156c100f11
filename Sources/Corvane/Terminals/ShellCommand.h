#pragma once

#include "Terminal/Pty/Pty.h"

#include <QString>
#include <optional>
#include <sys/types.h>

namespace corvane {

/// What a new terminal runs: zsh if it is installed, else the user's login shell, as a login shell in both cases.
/// `umask` is that of the user's own programs.
terminal::Command shellCommand(const QString& directory, std::optional<mode_t> umask);

/// Whether a program of this name waits for commands, so that it may be ended while it does.
bool isShell(const QString& program);

/// Where a shell starts: `wanted` with "~" expanded, if that folder exists; else "nimb" in the home folder if it
/// exists, else the home folder.
QString resolvedDirectory(const QString& wanted, const QString& home);

}
