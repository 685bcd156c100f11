#pragma once

#include "Terminals/TerminalsView.h"

namespace corvane {

class LocalDB;
class LumoAI;
class NotificationCentre;

/// What the screens of this room use; all references outlive them.
struct WorkServices {
    LocalDB& db;
    Scheduler& scheduler;
    LumoAI& ai;
    NotificationCentre& notifications;
    TerminalsView::Surroundings shells; ///< for the terminals that a workspace opens
};

}
