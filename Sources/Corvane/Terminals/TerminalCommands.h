#pragma once

#include "Presentation/Commands.h"

namespace corvane {

/// The keys of the terminal screen, whose page knows the terminal that they mean.
QList<Command> terminalCommands();

}
