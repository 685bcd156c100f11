#pragma once

#include <QString>
#include <functional>

namespace corvane {

class LocalDB;
class LumoAI;
class NotificationCentre;
class Scheduler;

/// What the screens of this room stand on; all of it outlives them.
struct WorkServices {
    LocalDB& db;
    Scheduler& scheduler;
    LumoAI& ai;
    NotificationCentre& notifications;
    /// A terminal of that name, which shows the text and runs nothing of it.
    std::function<void(const QString& name, const QString& text)> openShell;
    std::function<void()> showShells; ///< brings the terminals to the front
};

}
