#pragma once

#include <atomic>

namespace corvane {

/// While it lives, SIGINT and SIGTERM set the flag in place of ending a program that has no event loop. One at a time.
class Interruption {
public:
    explicit Interruption(std::atomic<bool>& flag); ///< outlives this
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
};

}
