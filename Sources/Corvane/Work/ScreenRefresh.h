#pragma once

#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

class LocalDB;

/// Reads a screen again while it is visible: when it appears, once an hour, and within three seconds after work records
/// were written.
class ScreenRefresh : public QObject {
    Q_OBJECT
public:
    /// `age` is called every minute between reads, for words such as "3 minutes ago". The references outlive it.
    ScreenRefresh(
        LocalDB& db, Scheduler& scheduler, std::function<void()> read, std::function<void()> age, QObject* parent);

    bool shown() const { return m_timer != nullptr; }
    void setShown(bool shown);
    void setStale() { m_stale = true; } ///< read again at the next tick
    void now(); ///< reads, even if it is hidden

private:
    void tick();

    Scheduler& m_scheduler;
    const std::function<void()> m_read;
    const std::function<void()> m_age;
    bool m_stale = true;
    int m_ticks = 0; ///< since the last read
    std::unique_ptr<Timer> m_timer;
};

}
