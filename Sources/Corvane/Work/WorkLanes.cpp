#include "Work/WorkLanes.h"

#include "Foundation/Literals.h"
#include "Store/Work/WorkBoardQueries.h"

namespace corvane {

int WorkLanes::laneOf(const QString& status) const
{
    if (isFinishedStatus(status))
        return finished;
    const QString word = status.toLower();
    if (word == "open"_L1)
        return 0;
    if (word == "in_progress"_L1)
        return 1;
    for (int lane = 0; lane < other(); ++lane) {
        if (names.at(lane).toLower() == word)
            return lane;
    }
    return other();
}

QString WorkLanes::statusOf(int lane) const
{
    if (lane == 0)
        return u"open"_s;
    return lane == finished ? u"done"_s : name(lane).toLower();
}

QString WorkLanes::name(int lane) const
{
    return names.value(lane, u"Other"_s);
}

WorkLanes lanesOf(const WorkConsoleConfig& config, const WorkContext& context)
{
    if (config.module == "ops"_L1 && context && isHiringContext(*context))
        return { { u"Sourcing"_s, u"Screen"_s, u"Review"_s, u"Hold"_s, u"Closed"_s }, 4, true };
    if (config.module == "ops"_L1 && context && isFinanceContext(*context))
        return { { u"Queued"_s, u"Check"_s, u"Approval"_s, u"Done"_s } };
    return { { u"Open"_s, u"Review"_s, u"Waiting"_s, u"Done"_s } };
}

}
