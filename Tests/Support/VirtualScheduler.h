#pragma once

#include "Foundation/Scheduler.h"

#include <QList>

namespace corvane {

inline Milliseconds seconds(qint64 count)
{
    return Milliseconds(count * 1000);
}

/// A clock that a test moves by hand. Callbacks run inside `advance`, in the order of their times.
class VirtualScheduler final : public Scheduler {
public:
    explicit VirtualScheduler(qint64 startMs = 1'760'000'000'000);
    ~VirtualScheduler() override;

    qint64 nowMs() const override { return m_nowMs; }
    qint64 monotonicMs() const override { return m_nowMs - m_jumpMs; }
    std::unique_ptr<Timer> after(Milliseconds delay, std::function<void()> callback) override;
    std::unique_ptr<Timer> every(Milliseconds period, std::function<void()> callback) override;

    /// Moves the clock, stopping at each timer that falls due on the way.
    void advance(Milliseconds duration);

    /// Runs what is due now (delays of 0), without moving the clock.
    void runDue() { advance(Milliseconds(0)); }

    /// Sets the clock without running anything.
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
        qint64 periodMs = -1; ///< -1 for a call that happens once
        std::function<void()> callback;
    };
    class Handle;

    std::unique_ptr<Timer> add(Milliseconds delay, qint64 periodMs, std::function<void()> callback);

    qint64 m_nowMs;
    qint64 m_jumpMs = 0; ///< how far the clock was set
    qint64 m_nextOrder = 0;
    QList<std::shared_ptr<Entry>> m_entries;
};

}
