#pragma once

#include "Platform/MachineFacts.h"

#include <QString>
#include <optional>

namespace corvane {

enum class LocalAIPowerSource { AcPower, Battery, Unknown };
QString rawValue(LocalAIPowerSource source);

/// Why no heavy work may run on this machine now.
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

struct LocalAIAvailabilitySnapshot {
    bool isAppleSilicon = true; ///< the program is built for the processor that it runs on
    bool isTranslated = false;
    SystemVersion osVersion;
    bool supportsOnDeviceWork = true;
    ThermalState thermalState = ThermalState::Nominal;
    bool lowPowerMode = false;
    LocalAIPowerSource powerSource = LocalAIPowerSource::Unknown;
    quint64 physicalMemoryBytes = 0;
    qint64 freeDiskBytes = -1; ///< -1: the platform gave no figure, which stops nothing
    bool installedDefaultModel = false;
    std::optional<LocalAIStopCondition> stopCondition; ///< the first that holds

    QString statusText() const;
};

/// The gate that says whether this machine may run heavy local work.
class LocalAIAvailability {
public:
    explicit LocalAIAvailability(const MachineFacts& machine)
        : m_machine(machine)
    {
    }

    /// Every figure is read afresh. `requireDefault` changes nothing.
    LocalAIAvailabilitySnapshot snapshot(bool installedDefaultModel, bool requireDefault) const;

private:
    const MachineFacts& m_machine;
};

}
