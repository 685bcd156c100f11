#include "Desk/ResourceMonitor.h"

#include "Foundation/BackgroundQueue.h"
#include "Platform/MachineFacts.h"

#include <QCoreApplication>
#include <QPointer>

namespace corvane {

namespace {

constexpr Milliseconds period { 8000 };
constexpr Milliseconds timeToEnd { 800 };

}

ResourceMonitor::ResourceMonitor(
    const MachineFacts& machine, BackgroundQueue& background, Scheduler& scheduler, const QString& root)
    : m_machine(machine)
    , m_background(background)
    , m_scheduler(scheduler)
    , m_root(root)
{
}

void ResourceMonitor::start()
{
    refresh();
    m_timer = m_scheduler.every(period, [this] { refresh(); });
}

void ResourceMonitor::refresh()
{
    if (std::exchange(m_isRefreshing, true))
        return;
    m_background.run<Result<ResourceReading>>(
        [root = m_root, before = m_processes] { return readResources(root, before); },
        [self = QPointer(this)](const Result<ResourceReading>& reading) {
            if (self)
                self->take(reading);
        });
}

void ResourceMonitor::take(const Result<ResourceReading>& reading)
{
    m_isRefreshing = false;
    m_lastError = reading ? QString() : reading.error().message;
    if (reading) {
        const quint64 known = m_snapshot.physicalMemoryBytes;
        m_processes = reading->processes;
        m_snapshot = snapshotOf(*reading, QCoreApplication::applicationPid());
        m_snapshot.physicalMemoryBytes = known > 0 ? known : m_machine.state().physicalMemoryBytes;
        m_snapshot.updatedAtMs = m_scheduler.nowMs();
    }
    Q_EMIT changed();
}

bool ResourceMonitor::terminate(const ResourceProcessRow& row)
{
    if (row.isProtected || !askToEnd(row.pid, row.startTime))
        return false;
    m_afterTermination = m_scheduler.after(timeToEnd, [this] { refresh(); });
    return true;
}

}
