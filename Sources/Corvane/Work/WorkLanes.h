#pragma once

#include "Work/WorkConsoleConfig.h"

namespace corvane {

/// The lanes of a board. The first holds open items, the second those in progress, the finished lane all finished
/// statuses, any other lane the status with its name; the rest is in an additional lane, "Other".
struct WorkLanes {
    QStringList names;
    int finished = 3; ///< the lane of "done", "closed" and "rejected"
    bool foldsFinished = false;

    int other() const { return int(names.size()); }
    int laneOf(const QString& status) const; ///< `other()` for an unknown status
    QString statusOf(int lane) const; ///< the status after a drop
    QString name(int lane) const;
};

/// Of a context, or of a module.
WorkLanes lanesOf(const WorkConsoleConfig& config, const WorkContext& context);

}
