#pragma once

#include <functional>

namespace corvane {

/// Runs the event loop until `condition` holds, for at most ninety seconds, and returns whether it did. For tests that
/// wait for real processes, sockets or buses.
bool await(const std::function<bool()>& condition);

}
