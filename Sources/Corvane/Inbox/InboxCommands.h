#pragma once

#include "Presentation/Commands.h"

namespace corvane {

class InboxView;

/// The keys and palette actions of the inbox. The view outlives the commands.
QList<Command> inboxCommands(InboxView& inbox);

}
