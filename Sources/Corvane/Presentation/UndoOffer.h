#pragma once

#include "Foundation/Scheduler.h"

#include <QString>

namespace corvane {

/// The way back from the last thing that was done, open for ten seconds.
class UndoOffer {
public:
    UndoOffer(Scheduler& scheduler, std::function<void()> changed);

    const QString& text() const { return m_text; } ///< what was done; empty where there is no way back

    void offer(const QString& text, std::function<void()> undo); ///< in place of the one before
    void take(); ///< goes back
    void dismiss();

private:
    Scheduler& m_scheduler;
    std::function<void()> m_changed;
    QString m_text;
    std::function<void()> m_undo;
    std::unique_ptr<Timer> m_end;
};

}
