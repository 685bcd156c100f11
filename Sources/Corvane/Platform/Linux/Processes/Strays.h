#pragma once

#include "Platform/Linux/Files/Descriptor.h"

#include <QByteArray>
#include <array>
#include <sys/types.h>

namespace corvane {

/// Kills processes that left a tool's process group: every descendant of `root`, and every process that still holds the
/// write end of one of the pipes (closed ones are ignored). Reads all of /proc, which takes some milliseconds; any
/// thread may call it.
void killStrays(pid_t root, const std::array<const Descriptor*, 2>& pipes);

/// Sends the signal, or none if it is 0, to every other process of this user that has the variable ("NAME=value") in
/// its environment. Returns their number. Reads all of /proc.
int signalMarked(const QByteArray& variable, int signal);

}
