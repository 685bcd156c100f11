#pragma once

#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/ProcessLauncher.h"

namespace corvane {

/// A child that runs, and this side of what connects it. The ends of pipes do not block; those of streams that go
/// to the null device are closed.
struct SpawnedChild {
    qint64 pid = 0;
    std::shared_ptr<const Descriptor> handle; ///< the process itself: readable once it has ended
    Descriptor input = {};
    Descriptor output = {};
    Descriptor errors = {};
};

// All start the program as the leader of a process group of its own, with no descriptor but the standard three, no
// signal blocked and SIGPIPE as it is by default.

/// Standard error goes to the null device, and without `ProcessSpec::pipes` the others do too.
Result<SpawnedChild> spawnChild(const ProcessSpec& spec);

/// With pipes for what it prints; `input` is all that it reads from standard input.
Result<SpawnedChild> spawnTool(const ProcessSpec& spec, const QByteArray& input);

/// `input` is one end of a socket whose other end is the child's standard input; its other streams go to the null
/// device.
Result<SpawnedChild> spawnOverSocket(const ProcessSpec& spec);

/// Sends a signal to the very process, never to another that has taken over its number.
void signalChild(const Descriptor& handle, int signal);

/// Takes the status of a child that has ended: the exit status, or minus the signal's number. Kills what is left of
/// its process group before.
int reapChild(const Descriptor& handle);

}
