#pragma once

#include "Care/Doctor/Finding.h"
#include "Care/Doctor/Patient.h"

#include <atomic>
#include <functional>

namespace corvane {

/// What a check-up does on its way, told on its thread.
struct CheckUp {
    std::function<void(const QString& title)> begins = [](const QString&) {
    };
    const std::atomic<bool>* stopped = nullptr; ///< looked at between two checks
};

/// Every check, in the order in which a person reads them. Nothing is changed. Takes seconds, with a large database
/// minutes.
QList<Finding> examine(const Patient& patient, const CheckUp& checkUp = {});

/// Puts right what the program can put right among the findings, and says what it did, a sentence each.
QStringList mend(const Patient& patient, const QList<Finding>& findings);

Health worst(const QList<Finding>& findings);

}
