#pragma once

#include "Calendar/CalendarSettings.h"
#include "Calendar/CalendarView.h"
#include "Calendar/UpcomingMeetings.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct CalendarConnectionType {
    Q_GADGET
    QML_FOREIGN(corvane::CalendarConnection)
    QML_NAMED_ELEMENT(CalendarConnection)
    QML_UNCREATABLE("The program makes it.")
};

struct CalendarTilesType {
    Q_GADGET
    QML_FOREIGN(corvane::CalendarTiles)
    QML_NAMED_ELEMENT(CalendarTiles)
    QML_UNCREATABLE("The program makes it.")
};

struct CalendarViewType {
    Q_GADGET
    QML_FOREIGN(corvane::CalendarView)
    QML_NAMED_ELEMENT(CalendarView)
    QML_UNCREATABLE("The program makes it.")
};

struct NewEventFormType {
    Q_GADGET
    QML_FOREIGN(corvane::NewEventForm)
    QML_NAMED_ELEMENT(NewEventForm)
    QML_UNCREATABLE("The program makes it.")
};

struct CalendarSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::CalendarSettings)
    QML_NAMED_ELEMENT(CalendarSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct UpcomingMeetingsType {
    Q_GADGET
    QML_FOREIGN(corvane::UpcomingMeetings)
    QML_NAMED_ELEMENT(UpcomingMeetings)
    QML_UNCREATABLE("The program makes it.")
};

struct MeetingPrepType {
    Q_GADGET
    QML_FOREIGN(corvane::MeetingPrep)
    QML_NAMED_ELEMENT(MeetingPrep)
    QML_UNCREATABLE("The program makes it.")
};

struct DayHeadType {
    Q_GADGET
    QML_FOREIGN(corvane::DayHead)
    QML_VALUE_TYPE(dayHead)
};

struct EventBlockType {
    Q_GADGET
    QML_FOREIGN(corvane::EventBlock)
    QML_VALUE_TYPE(eventBlock)
};

struct FreeGapType {
    Q_GADGET
    QML_FOREIGN(corvane::FreeGap)
    QML_VALUE_TYPE(freeGap)
};

struct EventPersonType {
    Q_GADGET
    QML_FOREIGN(corvane::EventPerson)
    QML_VALUE_TYPE(eventPerson)
};

struct EventCardType {
    Q_GADGET
    QML_FOREIGN(corvane::EventCard)
    QML_VALUE_TYPE(eventCard)
};

struct CalendarLineType {
    Q_GADGET
    QML_FOREIGN(corvane::CalendarLine)
    QML_VALUE_TYPE(calendarLine)
};

struct MeetingLineType {
    Q_GADGET
    QML_FOREIGN(corvane::MeetingLine)
    QML_VALUE_TYPE(meetingLine)
};

}
