#pragma once

#include "Presentation/Commands.h"

namespace corvane {

class CorvaneMenuBarView;
class NotificationCentre;

/// Commands for the tabs of the section "Today"; both references outlive the commands.
QList<Command> todayCommands(CorvaneMenuBarView& today, NotificationCentre& notifications);

}
