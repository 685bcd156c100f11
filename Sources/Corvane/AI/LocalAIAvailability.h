#pragma once

#include "Platform/MachineFacts.h"

#include <QString>
#include <optional>

namespace corvane {

enum class LocalAIPowerSource { AcPower, Battery, Unknown };
QString rawValue(LocalAIPowerSource source);

/// Why heavy local work must not run now.
enum class LocalAIStopCondition {
    UnsupportedPlatform,
    TranslatedProcess,
    LowPowerMode,
    OnBattery,
    ThermalPressure,
    InsufficientMemory,
    DiskLow,
};
QString rawValue(LocalAIStopCondition condition);

enum class BatteryWork { Waits, Allowed };

struct LocalAIAvailabilitySnapshot {
    bool isAppleSilicon = true; ///< the program runs natively on this processor
    bool isTranslated = false;
    SystemVersion osVersion;
    bool supportsOnDeviceWork = true;
    ThermalState thermalState = ThermalState::Nominal;
    bool lowPowerMode = false;
    LocalAIPowerSource powerSource = LocalAIPowerSource::Unknown;
    quint64 physicalMemoryBytes = 0;
    qint64 freeDiskBytes = -1; ///< -1: unknown, which does not block
    bool installedDefaultModel = false;
    std::optional<LocalAIStopCondition> stopCondition; ///< the first that applies

    QString statusText() const;
};

/// Decides whether this machine may run heavy local work now.
class LocalAIAvailability {
public:
    explicit LocalAIAvailability(const MachineFacts& machine)
        : m_machine(machine)
    {
    }

    /// Reads all figures again. `requireDefault` has no effect.
    LocalAIAvailabilitySnapshot snapshot(
        bool installedDefaultModel, bool requireDefault, BatteryWork onBattery = BatteryWork::Waits) const;

private:
    const MachineFacts& m_machine;
};

}
