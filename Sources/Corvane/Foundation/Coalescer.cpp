#include "Foundation/Coalescer.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

constexpr Milliseconds longestPause { 10'000 }; // a machine that slept during a call must not wait nine times as long

}

Coalescer::Coalescer(Scheduler& scheduler, Milliseconds shortestPause, std::function<void()> call)
    : m_scheduler(scheduler)
    , m_shortestPause(shortestPause)
    , m_call(std::move(call))
    , m_endMs(scheduler.nowMs())
{
}

void Coalescer::request()
{
    if (m_calling)
        m_again = true;
    if (m_calling || m_pending)
        return;
    // If the clock was set back, a call is delayed by at most one pause.
    const Milliseconds elapsed { m_scheduler.nowMs() - m_endMs };
    const Milliseconds wait = elapsed.count() < 0 ? m_pause : std::max(Milliseconds(0), m_pause - elapsed);
    m_pending = m_scheduler.after(wait, [this] { fire(); });
}

void Coalescer::fire()
{
    const auto fired = std::move(m_pending);
    const qint64 startMs = m_scheduler.nowMs();
    m_calling = true;
    m_call();
    m_calling = false;
    m_endMs = m_scheduler.nowMs();
    const Milliseconds cost { std::max<qint64>(0, m_endMs - startMs) };
    m_pause = std::max(m_shortestPause, std::min(9 * cost, longestPause));
    if (std::exchange(m_again, false))
        request();
}

}
