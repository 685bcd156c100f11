#pragma once

#include "Presentation/Commands.h"

namespace corvane {

class CorvaneMenuBarView;
class NotificationCentre;
class QuickCapture;

/// `capture` outlives the commands.
QList<Command> captureCommands(QuickCapture& capture);

/// The way to each tab of the section "Today"; both outlive the commands.
QList<Command> todayCommands(CorvaneMenuBarView& today, NotificationCentre& notifications);

}
