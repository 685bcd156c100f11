#pragma once

#include "Platform/Linux/Files/Descriptor.h"

#include <QByteArray>
#include <array>
#include <sys/types.h>

namespace corvane {

/// Kills what has left a tool's process group for a group or a session of its own: every process that descends from
/// `root`, and every one that still holds the writing end of one of the pipes (those that are not open count for
/// nothing). Reads all of /proc, so it takes some milliseconds, and any thread may do it.
void killStrays(pid_t root, const std::array<const Descriptor*, 2>& pipes);

/// Sends the signal, or none where it is 0, to every process of this user but this one that has the variable
/// ("NAME=value") in its environment. Returns how many. It reads all of /proc.
int signalMarked(const QByteArray& variable, int signal);

}
