#pragma once

#include "Platform/CalendarSource.h"

#include <functional>

namespace corvane {

class CalendarStore;
class UserDefaults;

// Writes to the calendars in the background; the mirror follows. No callback once `context` is destroyed.

/// The writable calendar with that title, else the default; nothing if none is writable.
std::optional<CalendarInfo> writableCalendar(const CalendarStore& store, const QString& title = {});

QString defaultCalendar(const UserDefaults& defaults); ///< the calendar id for new events; empty for none
void setDefaultCalendar(CalendarStore& store, const QString& id);

void addEvent(CalendarStore& store, const QString& calendarId, const NewCalendarEntry& entry, QObject* context,
    const std::function<void(const Result<QString>& eventId)>& done);
void takeBackEvent(CalendarStore& store, const QString& calendarId, const QString& uid, QObject* context,
    const std::function<void(const Result<void>&)>& done);

/// The blocking part of an import into the calendar for new events; returns the result for the user.
Result<QString> importFile(
    CalendarSource& source, const CalendarPlaces& places, const QString& chosen, const QString& path);

/// Into the default calendar; returns the result for the user.
void importEvents(CalendarStore& store, const QString& path, QObject* context,
    const std::function<void(const Result<QString>&)>& done);
void exportEvent(CalendarStore& store, const QString& eventId, const QString& path, QObject* context,
    const std::function<void(const Result<QString>&)>& done);

// Connects calendars: stores the choice and reads them from now on.

Result<void> useFolder(CalendarStore& store, const QString& path); ///< "~/" at the start is the user's home
void useService(CalendarStore& store, bool use); ///< the desktop's calendar service
void makeCalendar(CalendarStore& store, const QString& title);

}
