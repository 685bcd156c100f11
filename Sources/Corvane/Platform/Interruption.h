#pragma once

#include <atomic>

namespace corvane {

/// While it exists, SIGINT and SIGTERM set the flag instead of ending the program. For programs without an event loop;
/// one at a time.
class Interruption {
public:
    explicit Interruption(std::atomic<bool>& flag); ///< outlives this
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
};

}
