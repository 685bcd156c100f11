#pragma once

#include <QtGlobal>
#include <chrono>
#include <functional>
#include <memory>

namespace corvane {

using Milliseconds = std::chrono::milliseconds;

/// A pending or repeating call. Destroying it cancels it; a callback may destroy its own timer.
class Timer {
public:
    virtual ~Timer() = default;
};

/// The one source of time. The application uses the system's clock and event loop, a test a clock that it moves by
/// hand.
class Scheduler {
public:
    virtual ~Scheduler() = default;
    virtual qint64 nowMs() const = 0; ///< milliseconds since the epoch

    /// Milliseconds that the machine has been awake since some moment; intervals are measured with it. Neither setting
    /// the clock nor sleep affects it.
    virtual qint64 monotonicMs() const = 0;

    /// Calls once, on the main thread, after at least `delay`; 0 means "at the next turn of the loop".
    [[nodiscard]] virtual std::unique_ptr<Timer> after(Milliseconds delay, std::function<void()> callback) = 0;

    /// Calls repeatedly; the first call comes after one `period`.
    [[nodiscard]] virtual std::unique_ptr<Timer> every(Milliseconds period, std::function<void()> callback) = 0;
};

}
