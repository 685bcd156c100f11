#include "Calendar/CalendarKeys.h"

#include "Foundation/Literals.h"

namespace corvane {

QList<Command> calendarCommands()
{
    return at({ u"In Calendar"_s, 1 },
        {
            { u"nextEvent"_s, u"Next, previous event"_s, u"J K or ↓ ↑"_s },
            { u"nextPage"_s, u"Next, previous week or day"_s, u"→ ←"_s },
            { u"calendarToday"_s, u"Today"_s, u"T"_s },
            { u"calendarMode"_s, u"Week, day"_s, u"W D"_s },
            { u"newEvent"_s, u"New event"_s, u"N"_s },
            { u"joinMeeting"_s, u"Join the meeting"_s, u"Return"_s },
            { u"prepareMeeting"_s, u"Prepare for the meeting"_s, u"P"_s },
        });
}

}
