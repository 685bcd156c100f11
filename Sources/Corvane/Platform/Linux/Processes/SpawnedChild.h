#pragma once

#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/ProcessLauncher.h"

namespace corvane {

/// A running child and this side of its pipes. The pipe ends are non-blocking; those of streams that go to the null
/// device are closed.
struct SpawnedChild {
    qint64 pid = 0;
    std::shared_ptr<const Descriptor> handle; ///< pidfd of the process: readable once it has exited
    Descriptor input = {};
    Descriptor output = {};
    Descriptor errors = {};
};

// All start the program as the leader of its own process group, with only the three standard descriptors, no blocked
// signals and the default SIGPIPE.

/// Standard error goes to the null device, and without `ProcessSpec::pipes` the other streams do, too.
Result<SpawnedChild> spawnChild(const ProcessSpec& spec);

/// With pipes for its output; `input` is its whole standard input.
Result<SpawnedChild> spawnTool(const ProcessSpec& spec, const QByteArray& input);

/// `input` is one end of a socket whose other end is the child's standard input; its other streams go to the null
/// device.
Result<SpawnedChild> spawnOverSocket(const ProcessSpec& spec);

/// Signals exactly this process, never one that reuses its pid.
void signalChild(const Descriptor& handle, int signal);

/// Reaps a child that has exited: returns the exit status, or minus the signal's number. Kills the rest of its process
/// group first.
int reapChild(const Descriptor& handle);

}
