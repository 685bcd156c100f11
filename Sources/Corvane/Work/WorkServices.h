#pragma once

#include <QString>
#include <functional>

namespace corvane {

class LocalDB;
class LumoAI;
class NotificationCentre;
class Scheduler;

/// What the screens of this room use; all references outlive them.
struct WorkServices {
    LocalDB& db;
    Scheduler& scheduler;
    LumoAI& ai;
    NotificationCentre& notifications;
    /// Opens a terminal with that name, which shows the text and executes nothing.
    std::function<void(const QString& name, const QString& text)> openShell;
    std::function<void()> showShells; ///< brings the terminals to the front
};

}
