#pragma once

#include "Presentation/Commands.h"

namespace corvane {

class AppShell;
class InboxView;

// All of it outlives the commands.

QList<Command> shellCommands(AppShell& shell, InboxView& inbox, Commands& commands); ///< what works everywhere
QList<Command> placeCommands(AppShell& shell); ///< to each hub, and to what covers them

}
