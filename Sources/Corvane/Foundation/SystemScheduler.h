#pragma once

#include "Foundation/Scheduler.h"

namespace corvane {

/// The system's clock and the event loop of the calling thread.
class SystemScheduler final : public Scheduler {
public:
    qint64 nowMs() const override;
    qint64 monotonicMs() const override;
    std::unique_ptr<Timer> after(Milliseconds delay, std::function<void()> callback) override;
    std::unique_ptr<Timer> every(Milliseconds period, std::function<void()> callback) override;
};

}
