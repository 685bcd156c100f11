#pragma once

#include "Presentation/Commands.h"

namespace corvane {

/// The keys of the calendar's page, which the page itself answers.
QList<Command> calendarCommands();

}
