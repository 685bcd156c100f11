#pragma once

#include "Calendar/CalendarCommands.h"
#include "Calendar/CalendarStore.h"
#include "Calendar/MeetingPrep.h"
#include "Calendar/MeetingReminder.h"

namespace corvane {

/// The calendar, built once and wired.
struct CalendarServices {
    CalendarServices(const CalendarStore::Surroundings& at, AIServices& ai)
        : store(at)
        , commands(store)
        , prep({ at.db, ai })
        , reminder(store, prep)
    {
    }

    CalendarStore store;
    CalendarCommands commands;
    MeetingPrep prep;
    MeetingReminder reminder;
};

}
