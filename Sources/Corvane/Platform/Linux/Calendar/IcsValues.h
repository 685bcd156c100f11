#pragma once

#include "Platform/CalendarSource.h"

#include <libical/ical.h>
#include <memory>
#include <mutex>

namespace corvane::ics {

// What is read from libical's components. Whoever calls holds the lock of the library.

constexpr qsizetype longestTitle = 1000;

struct FreeComponent {
    void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using Component = std::unique_ptr<icalcomponent, FreeComponent>;

std::mutex& library(); ///< libical keeps its zones and much else for the whole process

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

icaltimezone* knownZone(const char* name); ///< of this machine, by any of the names that programs give it

/// Zones that the machine knows are taken out of the calendar, and the rules of the others made safe to follow.
void settleZones(icalcomponent* calendar);

bool isUsable(const icaltimetype& time); ///< there, and of a year that an event may have

icaltimetype timeOf(icalproperty* property, icalcomponent* calendar);
icaltimetype timeOf(icalcomponent* event, icalproperty_kind kind, icalcomponent* calendar);
qint64 msOf(const icaltimetype& time, icaltimezone* local); ///< `local` for a date, and a time without a zone

QString textOf(const char* value, qsizetype limit);
QList<CalendarPerson> peopleOf(icalcomponent* event); ///< the organizer first, who may stand among the attendees, too
QString notesOf(icalcomponent* event); ///< with the address of the call, which some programs keep apart

}
