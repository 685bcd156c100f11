#pragma once

#include "Foundation/Scheduler.h"

#include <QList>

namespace corvane {

inline Milliseconds seconds(qint64 count)
{
    return Milliseconds(count * 1000);
}

/// A clock that only the test advances. Callbacks run inside `advance`, in the order of their due times.
class VirtualScheduler final : public Scheduler {
public:
    explicit VirtualScheduler(qint64 startMs = 1'760'000'000'000);
    ~VirtualScheduler() override;

    qint64 nowMs() const override { return m_nowMs; }
    qint64 monotonicMs() const override { return m_nowMs - m_jumpMs; }
    std::unique_ptr<Timer> after(Milliseconds delay, std::function<void()> callback) override;
    std::unique_ptr<Timer> every(Milliseconds period, std::function<void()> callback) override;

    /// Advances the clock and runs each timer at its due time.
    void advance(Milliseconds duration);

    /// Runs what is due now, such as delays of 0, without advancing the clock.
    void runDue() { advance(Milliseconds(0)); }

    /// Sets the wall clock without running timers. The monotonic clock does not jump.
    void setNowMs(qint64 nowMs)
    {
        m_jumpMs += nowMs - m_nowMs;
        m_nowMs = nowMs;
    }

    qsizetype pendingTimers() const { return m_entries.size(); }

private:
    struct Entry {
        qint64 dueMs = 0;
        qint64 order = 0;
        qint64 periodMs = -1; ///< -1 for a single-shot timer
        std::function<void()> callback;
    };
    class Handle;

    std::unique_ptr<Timer> add(Milliseconds delay, qint64 periodMs, std::function<void()> callback);

    qint64 m_nowMs;
    qint64 m_jumpMs = 0; ///< the sum of all jumps by `setNowMs`
    qint64 m_nextOrder = 0;
    QList<std::shared_ptr<Entry>> m_entries;
};

}
