#pragma once

#include "Platform/CalendarSource.h"

#include <libical/ical.h>
#include <memory>
#include <mutex>

namespace corvane::ics {

// Values read from libical's components. The caller holds the library's lock.

constexpr qsizetype longestTitle = 1000;

struct FreeComponent {
    void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using Component = std::unique_ptr<icalcomponent, FreeComponent>;

std::mutex& library(); ///< libical keeps its time zones and other state per process

template <typename Visit> void forEachProperty(icalcomponent* component, icalproperty_kind kind, Visit visit)
{
    for (icalproperty* property = icalcomponent_get_first_property(component, kind); property;
        property = icalcomponent_get_next_property(component, kind))
        visit(property);
}

template <typename Visit> void forEachComponent(icalcomponent* parent, icalcomponent_kind kind, Visit visit)
{
    for (icalcomponent* component = icalcomponent_get_first_component(parent, kind); component;
        component = icalcomponent_get_next_component(parent, kind))
        visit(component);
}

/// A built-in zone, by any of the names that programs use for it. `library()` must be locked.
icaltimezone* knownZone(const char* name);

/// Removes time zones that the machine knows from the calendar, and makes the rules of the others safe to expand.
void settleZones(icalcomponent* calendar);

bool isUsable(const icaltimetype& time); ///< set, and of a plausible year

icaltimetype timeOf(icalproperty* property, icalcomponent* calendar);
icaltimetype timeOf(icalcomponent* event, icalproperty_kind kind, icalcomponent* calendar);
qint64 msOf(const icaltimetype& time, icaltimezone* local); ///< `local` for a date or a floating time

QString textOf(const char* value, qsizetype limit);
QList<CalendarPerson> peopleOf(icalcomponent* event); ///< the organizer first, who may be among the attendees, too
QString notesOf(icalcomponent* event); ///< with the address of the call, which some programs store separately

}
