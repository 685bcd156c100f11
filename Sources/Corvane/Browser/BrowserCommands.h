#pragma once

#include "Presentation/Commands.h"

namespace corvane {

/// The keys of the browser's pane, which handles them itself.
QList<Command> browserCommands();

}
