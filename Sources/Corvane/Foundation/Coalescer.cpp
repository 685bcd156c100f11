#include "Foundation/Coalescer.h"

#include <algorithm>

namespace corvane {

Coalescer::Coalescer(Scheduler& scheduler, Milliseconds period, std::function<void()> call)
    : m_scheduler(scheduler)
    , m_period(period)
    , m_call(std::move(call))
    , m_lastMs(scheduler.nowMs() - period.count())
{
}

void Coalescer::request()
{
    if (m_pending)
        return;
    // A clock that was set back must not hold a call for longer than one period.
    const qint64 elapsed = m_scheduler.nowMs() - m_lastMs;
    const qint64 wait = elapsed < 0 ? m_period.count() : std::max<qint64>(0, m_period.count() - elapsed);
    m_pending = m_scheduler.after(Milliseconds(wait), [this] { fire(); });
}

void Coalescer::fire()
{
    const auto fired = std::move(m_pending);
    m_lastMs = m_scheduler.nowMs();
    m_call();
}

}
