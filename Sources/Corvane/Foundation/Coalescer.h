#pragma once

#include "Foundation/Scheduler.h"

namespace corvane {

/// Turns a burst of requests into few calls: the first request calls at the next turn of the loop, later
/// ones are gathered into one call at the end of each `period`. The last request is never lost.
class Coalescer {
public:
    Coalescer(Scheduler& scheduler, Milliseconds period, std::function<void()> call);

    void request();

private:
    void fire();

    Scheduler& m_scheduler;
    Milliseconds m_period;
    std::function<void()> m_call;
    std::unique_ptr<Timer> m_pending;
    qint64 m_lastMs;
};

}
