#pragma once

#include "Care/Doctor/CheckedProfile.h"
#include "Care/Doctor/Finding.h"

#include <atomic>
#include <functional>

namespace corvane {

/// Progress of the checks; called on its thread.
struct CheckProgress {
    std::function<void(const QString& title)> begins = [](const QString&) {
    };
    const std::atomic<bool>* stopped = nullptr; ///< checked between two checks
};

/// Runs all checks and changes nothing. Takes seconds, or minutes for a large database.
QList<Finding> runChecks(const CheckedProfile& profile, const CheckProgress& progress = {});

/// Fixes those findings that can be fixed, and returns a sentence for each fix.
QStringList fixFindings(const CheckedProfile& profile, const QList<Finding>& findings);

Health worst(const QList<Finding>& findings);

}
