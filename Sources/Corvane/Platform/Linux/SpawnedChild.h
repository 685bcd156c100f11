#pragma once

#include "Platform/Linux/Descriptor.h"
#include "Platform/ProcessLauncher.h"

namespace corvane {

/// A child that runs, and this side of what connects it.
struct SpawnedChild {
    qint64 pid = 0;
    std::shared_ptr<const Descriptor> handle; ///< the process itself: readable once it has ended
    Descriptor input; ///< non-blocking; closed without pipes
    Descriptor output; ///< likewise
};

/// Starts the program with no descriptor but the standard three, no signal blocked and SIGPIPE as it is by default.
Result<SpawnedChild> spawnChild(const ProcessSpec& spec);

/// Sends a signal to the very process, never to another that has taken over its number.
void signalChild(const Descriptor& handle, int signal);

/// Takes the status of a child that has ended: the exit status, or minus the signal's number.
int reapChild(const Descriptor& handle);

}
