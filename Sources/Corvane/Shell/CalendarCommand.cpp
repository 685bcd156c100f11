#include "Shell/CalendarCommand.h"

#include "Calendar/CalendarEdits.h"
#include "Calendar/CalendarStore.h"
#include "Foundation/UserDefaults.h"
#include "Platform/Linux/Services.h"

#include <QTextStream>

namespace corvane {

int importCalendarFile(const AppPaths& paths, const QString& file, QTextStream& out)
{
    const UserDefaults defaults(paths.defaultsFile);
    const auto source = makeCalendarSource(paths);
    const Result<QString> result = importFile(*source, calendarPlaces(defaults), defaultCalendar(defaults), file);
    out << (result ? *result : result.error().message) << '\n';
    return result ? 0 : 1;
}

}
