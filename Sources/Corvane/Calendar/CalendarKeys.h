#pragma once

#include "Presentation/Commands.h"

namespace corvane {

/// The keys of the calendar page, which handles them itself.
QList<Command> calendarCommands();

}
