#pragma once

#include "Presentation/Commands.h"

namespace corvane {

/// The keys of the terminal screen, whose page handles them.
QList<Command> terminalCommands();

}
