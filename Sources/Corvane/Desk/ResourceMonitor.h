#pragma once

#include "Desk/ResourceSnapshot.h"
#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

class BackgroundQueue;
class MachineFacts;

/// Watches the memory and the processes of this machine, every eight seconds. Reads away from the main thread.
class ResourceMonitor : public QObject {
    Q_OBJECT
public:
    /// The references outlive the object. `root`: see `readResources`.
    ResourceMonitor(
        const MachineFacts& machine, BackgroundQueue& background, Scheduler& scheduler, const QString& root = {});

    void start(); ///< a second call leaves one timer
    void refresh(); ///< nothing while a reading runs
    const ResourceSnapshot& snapshot() const { return m_snapshot; }
    const QString& lastError() const { return m_lastError; } ///< why the last reading failed; the snapshot stands

    /// Asks a process to end. False, and nothing happens, for one that is protected, has ended, or whose number
    /// belongs to another by now.
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
