#include "Support/VirtualScheduler.h"

#include <algorithm>

namespace corvane {

class VirtualScheduler::Handle final : public Timer {
public:
    Handle(VirtualScheduler& scheduler, std::shared_ptr<Entry> entry)
        : m_scheduler(scheduler)
        , m_entry(std::move(entry))
    {
    }
    ~Handle() override { m_scheduler.m_entries.removeOne(m_entry); }

private:
    VirtualScheduler& m_scheduler;
    std::shared_ptr<Entry> m_entry;
};

VirtualScheduler::VirtualScheduler(qint64 startMs)
    : m_nowMs(startMs)
{
}

VirtualScheduler::~VirtualScheduler() = default;

std::unique_ptr<Timer> VirtualScheduler::after(Milliseconds delay, std::function<void()> callback)
{
    return add(delay, -1, std::move(callback));
}

std::unique_ptr<Timer> VirtualScheduler::every(Milliseconds period, std::function<void()> callback)
{
    return add(period, period.count(), std::move(callback));
}

std::unique_ptr<Timer> VirtualScheduler::add(Milliseconds delay, qint64 periodMs, std::function<void()> callback)
{
    auto entry
        = std::make_shared<Entry>(Entry { m_nowMs + delay.count(), m_nextOrder++, periodMs, std::move(callback) });
    m_entries.append(entry);
    return std::make_unique<Handle>(*this, std::move(entry));
}

void VirtualScheduler::advance(Milliseconds duration)
{
    const qint64 end = m_nowMs + duration.count();
    const auto earlier = [](const auto& left, const auto& right) {
        return std::pair(left->dueMs, left->order) < std::pair(right->dueMs, right->order);
    };
    // With a duration of 0, timers that a callback adds wait for the next call, as they would for the next iteration of
    // an event loop.
    const qint64 orderLimit = duration.count() == 0 ? m_nextOrder : std::numeric_limits<qint64>::max();
    for (;;) {
        QList<std::shared_ptr<Entry>> candidates;
        for (const auto& entry : m_entries) {
            if (entry->dueMs <= end && entry->order < orderLimit)
                candidates.append(entry);
        }
        const auto next = std::min_element(candidates.cbegin(), candidates.cend(), earlier);
        if (next == candidates.cend())
            break;
        const std::shared_ptr<Entry> entry = *next;
        m_nowMs = std::max(m_nowMs, entry->dueMs);
        if (entry->periodMs < 0) {
            m_entries.removeOne(entry);
        } else {
            entry->dueMs = m_nowMs + std::max<qint64>(1, entry->periodMs);
            entry->order = m_nextOrder++;
        }
        entry->callback();
    }
    m_nowMs = end;
}

}
