#pragma once

#include <QString>

namespace corvane {

/// One plain line for developers, prefixed by the class that speaks ("LocalDB: ..."). There are no levels,
/// and no line is ever shown to the user.
void log(const QString& line);

/// Sends the program's lines, and Qt's own, to standard error as they are, whatever else the desktop would do
/// with them. For the program's start; tests collect lines in their own way.
void logToStandardError();

}
