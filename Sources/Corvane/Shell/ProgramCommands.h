#pragma once

#include "Foundation/Literals.h"
#include "Presentation/Commands.h"

namespace corvane {

class CorvaneApp;

/// What a person can do with the program whether its window shows or not: from the tray, the profile's menu, the
/// command line. It outlives the commands.
QList<Command> programCommands(CorvaneApp& app);

// Those that are also words of the command line. They bring nothing to the front.
inline const QString captureCommand = u"capture"_s;
inline const QString recordCommand = u"record"_s;
inline const QString markCommand = u"mark"_s;

/// The ids of the tray's menu, in its order; the last one stands apart.
QStringList trayMenu();

}
