#pragma once

#include "Work/WorkConsoleConfig.h"

namespace corvane {

/// The lanes of a board. The first holds what is open, the second what is in progress, the one of what is finished all
/// finished words, each other the word that is its name; what fits none stands in a further lane, "Other".
struct WorkLanes {
    QStringList names;
    int finished = 3; ///< the lane of "done", "closed" and "rejected"
    bool foldsFinished = false;

    int other() const { return int(names.size()); }
    int laneOf(const QString& status) const; ///< `other()` for a word that is not ours
    QString statusOf(int lane) const; ///< what a drop there writes
    QString name(int lane) const;
};

/// Of a context, or of a module.
WorkLanes lanesOf(const WorkConsoleConfig& config, const WorkContext& context);

}
