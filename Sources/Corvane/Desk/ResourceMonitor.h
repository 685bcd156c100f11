#pragma once

#include "Desk/ResourceSnapshot.h"
#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

class BackgroundQueue;
class MachineFacts;

/// Samples the memory and processes of this machine every eight seconds, in the background.
class ResourceMonitor : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object. `root`: see `readResources`.
    ResourceMonitor(
        const MachineFacts& machine, BackgroundQueue& background, Scheduler& scheduler, const QString& root = {});

    void start(); ///< a second call has no effect
    void refresh(); ///< does nothing during a reading
    const ResourceSnapshot& snapshot() const { return m_snapshot; }
    const QString& lastError() const { return m_lastError; } ///< why the last reading failed; the snapshot is kept

    /// Asks a process to exit. False, without effect, if it is protected, has exited, or its pid was reused.
    bool terminate(const ResourceProcessRow& row);

Q_SIGNALS:
    void changed();

private:
    void take(const Result<ResourceReading>& reading);

    const MachineFacts& m_machine;
    BackgroundQueue& m_background;
    Scheduler& m_scheduler;
    const QString m_root;
    ResourceSnapshot m_snapshot;
    QList<RunningProcess> m_processes; ///< of the last reading
    QString m_lastError;
    bool m_isRefreshing = false;
    std::unique_ptr<Timer> m_timer;
    std::unique_ptr<Timer> m_afterTermination;
};

}
