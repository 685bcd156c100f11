#pragma once

#include "Foundation/Scheduler.h"

#include <QObject>

namespace corvane {

class LocalDB;

/// Reads a screen anew while somebody looks at it: when it comes up, then at most every three seconds where rows of the
/// work were written, and now and then for the ages that it tells in words.
class ScreenRefresh : public QObject {
    Q_OBJECT
public:
    /// The references outlive it.
    ScreenRefresh(LocalDB& db, Scheduler& scheduler, const std::function<void()>& read, QObject* parent);

    bool shown() const { return m_timer != nullptr; }
    void setShown(bool shown);
    void now(); ///< whether somebody looks or not

private:
    void tick();

    Scheduler& m_scheduler;
    const std::function<void()> m_read;
    bool m_stale = true; ///< something was written since the last look
    int m_ticks = 0;
    std::unique_ptr<Timer> m_timer;
};

}
