#pragma once

#include "Platform/AppPaths.h"

class QTextStream;

namespace corvane {

/// `corvane calendar import FILE`: imports a calendar file into the calendar for new events. It may run beside the
/// program, which notices the change. Returns the exit code: 0 if the file was read.
int importCalendarFile(const AppPaths& paths, const QString& file, QTextStream& out);

}
