#include "Calendar/CalendarKeys.h"

namespace corvane {

using namespace Qt::StringLiterals;

QList<Command> calendarCommands()
{
    const CommandPlace place { u"In Calendar"_s, 1 };
    return {
        { u"nextEvent"_s, u"Next, previous event"_s, u"J K or ↓ ↑"_s, {}, place },
        { u"nextPage"_s, u"Next, previous week or day"_s, u"→ ←"_s, {}, place },
        { u"calendarToday"_s, u"Today"_s, u"T"_s, {}, place },
        { u"calendarMode"_s, u"Week, day"_s, u"W D"_s, {}, place },
        { u"newEvent"_s, u"New event"_s, u"N"_s, {}, place },
        { u"joinMeeting"_s, u"Join the meeting"_s, u"Return"_s, {}, place },
        { u"prepareMeeting"_s, u"Prepare for the meeting"_s, u"P"_s, {}, place },
    };
}

}
