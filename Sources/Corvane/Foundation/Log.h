#pragma once

#include <QString>

namespace corvane {

/// One plain line for developers, prefixed with the class that logs ("LocalDB: ..."). There are no levels, and the user
/// never sees a line.
void log(const QString& line);

/// Sends the program's log lines, and Qt's, to standard error unchanged, whatever the desktop configures. For the start
/// of the program; tests capture lines in their own way.
void logToStandardError();

}
