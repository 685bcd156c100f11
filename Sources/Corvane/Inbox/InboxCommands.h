#pragma once

#include "Presentation/Commands.h"

namespace corvane {

class InboxView;

/// What can be done in the inbox by a key or from the palette. The view outlives the commands.
QList<Command> inboxCommands(InboxView& inbox);

}
