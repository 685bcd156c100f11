#pragma once

#include "Foundation/Arrival.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Cancellation.h"
#include "Foundation/Scheduler.h"

#include <qcoro/qcorotask.h>

namespace corvane {

/// The result of `work` on another thread; nothing if the handle is cancelled first. The queue is used only before the
/// first suspension.
template <typename Value>
QCoro::Task<std::optional<Value>> away(BackgroundQueue* queue, CancelHandle cancel, std::function<Value()> work)
{
    const Arrival<std::optional<Value>> arrival;
    const auto arrive = [arrival](std::optional<Value> value) {
        if (!arrival.hasArrived())
            arrival.arrive(std::move(value));
    };
    if (cancel.isCancelled())
        co_return std::nullopt;
    const auto watch = cancel.onCancel([arrive] { arrive(std::nullopt); });
    queue->run<Value>(std::move(work), [arrive](Value value) { arrive(std::move(value)); });
    co_return co_await arrival;
}

/// Completes after that time, or when the handle is cancelled.
inline QCoro::Task<> pause(Scheduler* scheduler, CancelHandle cancel, Milliseconds duration)
{
    const Arrival<bool> arrival;
    const auto arrive = [arrival] {
        if (!arrival.hasArrived())
            arrival.arrive(true);
    };
    if (cancel.isCancelled())
        co_return;
    const auto watch = cancel.onCancel(arrive);
    const std::unique_ptr<Timer> timer = scheduler->after(duration, arrive);
    co_await arrival;
}

}
