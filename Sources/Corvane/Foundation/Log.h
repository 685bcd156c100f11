#pragma once

#include <QString>

namespace corvane {

/// One plain line for developers, prefixed by the class that speaks ("LocalDB: ..."). There are no levels,
/// and no line is ever shown to the user.
void log(const QString& line);

}
