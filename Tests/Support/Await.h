#pragma once

#include <functional>

namespace corvane {

/// Turns the event loop until `condition` holds, at most thirty seconds; returns whether it held. For tests that
/// wait on real processes, sockets or buses.
bool await(const std::function<bool()>& condition);

}
