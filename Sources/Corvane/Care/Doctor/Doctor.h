#pragma once

#include "Care/Doctor/Finding.h"
#include "Care/Doctor/Patient.h"

#include <atomic>
#include <functional>

namespace corvane {

/// Progress of a check-up; called on its thread.
struct CheckUp {
    std::function<void(const QString& title)> begins = [](const QString&) {
    };
    const std::atomic<bool>* stopped = nullptr; ///< checked between two checks
};

/// Runs all checks and changes nothing. Takes seconds, or minutes for a large database.
QList<Finding> examine(const Patient& patient, const CheckUp& checkUp = {});

/// Fixes those findings that can be fixed, and returns a sentence for each fix.
QStringList mend(const Patient& patient, const QList<Finding>& findings);

Health worst(const QList<Finding>& findings);

}
