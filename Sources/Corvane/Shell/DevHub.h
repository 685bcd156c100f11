#pragma once

#include "Browser/BrowserView.h"
#include "Dev/DevDesk.h"
#include "Presentation/Commands.h"

namespace corvane {

class CorvaneApp;
class Screens;

/// What a workspace uses; the screens outlive it.
DevDesk devDesk(CorvaneApp& app, Screens& screens, const WorkConsoleContext& console);

/// What the browser of the workspace uses; the screens outlive it.
BrowserView::Surroundings devBrowser(CorvaneApp& app, Screens& screens);

QList<Command> devCommands(Screens& screens);

/// Shows an item on the workspace's board, or the board of that context.
void showDevWork(Screens& screens, const QString& contextId, const QString& itemId);

/// Opens the address in the workspace's browser; false if this machine has none.
bool showInBrowser(Screens& screens, const QString& address);

void showTerminals(Screens& screens); ///< the Dev hub with its terminals in front

}
