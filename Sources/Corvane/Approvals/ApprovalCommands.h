#pragma once

#include "Presentation/Commands.h"

namespace corvane {

/// The keys of the approvals list, which handles them itself.
QList<Command> approvalCommands();

}
