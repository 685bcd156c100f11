#pragma once

#include "Foundation/Scheduler.h"

namespace corvane {

/// Merges a burst of requests into few calls: the first request calls at the next turn of the event loop, later ones
/// are merged into one call after a pause. The pause is counted from the end of a call and grows with its cost, so that
/// calls take at most a tenth of the time. The last request is never lost. A call must not destroy the object.
class Coalescer {
public:
    Coalescer(Scheduler& scheduler, Milliseconds shortestPause, std::function<void()> call);

    void request();

private:
    void fire();

    Scheduler& m_scheduler;
    Milliseconds m_shortestPause;
    Milliseconds m_pause { 0 };
    std::function<void()> m_call;
    std::unique_ptr<Timer> m_pending;
    qint64 m_endMs; ///< when the last call ended
    bool m_calling = false;
    bool m_again = false; ///< requested while the call ran
};

}
