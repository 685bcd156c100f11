#pragma once

#include "Foundation/Literals.h"
#include "Presentation/Commands.h"

namespace corvane {

class CorvaneApp;

/// The commands that work with and without a window: from the tray, the profile menu, the command line. `app` outlives
/// the commands.
QList<Command> programCommands(CorvaneApp& app);

// Also words of the command line. They do not raise the window.
inline const QString captureCommand = u"capture"_s;
inline const QString recordCommand = u"record"_s;
inline const QString markCommand = u"mark"_s;

}
