#pragma once

#include "Presentation/Commands.h"

namespace corvane {

class AppShell;
class InboxView;

// All references outlive the commands.

QList<Command> shellCommands(AppShell& shell, InboxView& inbox, Commands& commands); ///< available everywhere
QList<Command> placeCommands(AppShell& shell); ///< to each hub, and to the pages that cover them

}
