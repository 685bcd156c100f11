#pragma once

#include "Platform/AppPaths.h"

class QTextStream;

namespace corvane {

/// `corvane calendar import FILE`: puts the events of a calendar file into the calendar that new events go to. It may
/// run beside the program, which notices. Returns the exit code: 0 where the file was read.
int importCalendarFile(const AppPaths& paths, const QString& file, QTextStream& out);

}
