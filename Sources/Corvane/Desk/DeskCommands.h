#pragma once

#include "Presentation/Commands.h"

namespace corvane {

class CorvaneMenuBarView;
class NotificationCentre;

/// The way to each tab of the section "Today"; both outlive the commands.
QList<Command> todayCommands(CorvaneMenuBarView& today, NotificationCentre& notifications);

}
