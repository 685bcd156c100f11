#pragma once

#include "Foundation/Scheduler.h"

#include <QString>

namespace corvane {

/// Offers to undo the last action for ten seconds.
class UndoOffer {
public:
    UndoOffer(Scheduler& scheduler, std::function<void()> changed);

    const QString& text() const { return m_text; } ///< the action; empty if there is nothing to undo

    void offer(const QString& text, std::function<void()> undo); ///< replaces the previous one
    void take(); ///< undoes it
    void dismiss();

private:
    Scheduler& m_scheduler;
    std::function<void()> m_changed;
    QString m_text;
    std::function<void()> m_undo;
    std::unique_ptr<Timer> m_end;
};

}
