#pragma once

#include "Presentation/Commands.h"

namespace corvane {

class QuickCapture;

/// `capture` outlives the commands.
QList<Command> captureCommands(QuickCapture& capture);

}
