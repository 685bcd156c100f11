#pragma once

#include "Presentation/Commands.h"

namespace corvane {

/// The keys of the list of approvals, which answers them itself.
QList<Command> approvalCommands();

}
