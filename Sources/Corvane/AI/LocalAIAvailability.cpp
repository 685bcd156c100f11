#include "AI/LocalAIAvailability.h"

#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"

namespace corvane {

namespace {

using Condition = LocalAIStopCondition;

constexpr quint64 neededMemoryBytes = Q_UINT64_C(1) << 33;
constexpr quint64 neededDiskBytes = Q_UINT64_C(1) << 31;

/// The first source with a known kind.
LocalAIPowerSource powerSource(const QStringList& states)
{
    for (const QString& state : states) {
        if (state == "Battery Power"_L1)
            return LocalAIPowerSource::Battery;
        if (state == "AC Power"_L1)
            return LocalAIPowerSource::AcPower;
    }
    return LocalAIPowerSource::Unknown;
}

std::optional<Condition> firstCondition(
    const LocalAIAvailabilitySnapshot& snapshot, bool isOldPlatform, BatteryWork onBattery)
{
    if (snapshot.isTranslated)
        return Condition::TranslatedProcess;
    if (isOldPlatform)
        return Condition::UnsupportedPlatform;
    if (snapshot.lowPowerMode)
        return Condition::LowPowerMode;
    if (snapshot.powerSource == LocalAIPowerSource::Battery && onBattery == BatteryWork::Waits)
        return Condition::OnBattery;
    if (snapshot.thermalState >= ThermalState::Serious)
        return Condition::ThermalPressure;
    if (snapshot.physicalMemoryBytes < neededMemoryBytes)
        return Condition::InsufficientMemory;
    // Unsigned: an unknown figure (-1) counts as the largest.
    if (static_cast<quint64>(snapshot.freeDiskBytes) < neededDiskBytes)
        return Condition::DiskLow;
    return std::nullopt;
}

}

QString rawValue(LocalAIPowerSource source)
{
    switch (source) {
    case LocalAIPowerSource::AcPower:
        return u"acPower"_s;
    case LocalAIPowerSource::Battery:
        return u"battery"_s;
    case LocalAIPowerSource::Unknown:
        break;
    }
    return u"unknown"_s;
}

QString rawValue(LocalAIStopCondition condition)
{
    switch (condition) {
    case Condition::UnsupportedPlatform:
        return u"unsupportedPlatform"_s;
    case Condition::TranslatedProcess:
        return u"translatedProcess"_s;
    case Condition::LowPowerMode:
        return u"lowPowerMode"_s;
    case Condition::OnBattery:
        return u"onBattery"_s;
    case Condition::ThermalPressure:
        return u"thermalPressure"_s;
    case Condition::InsufficientMemory:
        return u"insufficientMemory"_s;
    case Condition::DiskLow:
        break;
    }
    return u"diskLow"_s;
}

QString LocalAIAvailabilitySnapshot::statusText() const
{
    if (!stopCondition)
        return installedDefaultModel ? u"Ready for on-device voice."_s
                                     : atStart(machineWords::localSpeech) + u" is supported."_s;
    switch (*stopCondition) {
    case Condition::UnsupportedPlatform:
        return atStart(machineWords::localSpeech) + u" needs a newer system."_s;
    case Condition::TranslatedProcess:
        return atStart(machineWords::localSpeech)
            + u" needs the program that was built for this processor, not a translated one."_s;
    case Condition::LowPowerMode:
        return machineWords::powerSaving + u" is on. Local AI is paused."_s;
    case Condition::OnBattery:
        return atStart(machineWords::thisMachine)
            + u" is on battery. Connect power before running local transcription."_s;
    case Condition::ThermalPressure:
        return u"Thermal pressure is high. Local AI is paused until the %1 cools down."_s.arg(machineWords::machine);
    case Condition::InsufficientMemory:
        return atStart(machineWords::thisMachine)
            + u" does not have enough memory available for local transcription."_s;
    case Condition::DiskLow:
        break;
    }
    return u"Not enough free disk space for local transcription."_s;
}

LocalAIAvailabilitySnapshot LocalAIAvailability::snapshot(bool installedDefaultModel, bool, BatteryWork onBattery) const
{
    const MachineState state = m_machine.state();
    LocalAIAvailabilitySnapshot snapshot;
    snapshot.isTranslated = state.isTranslated;
    snapshot.osVersion = m_machine.version();
    snapshot.thermalState = state.thermal;
    snapshot.lowPowerMode = state.lowPowerMode;
    snapshot.powerSource = powerSource(state.powerSourceStates);
    snapshot.physicalMemoryBytes = state.physicalMemoryBytes;
    snapshot.freeDiskBytes = state.freeDiskBytes;
    snapshot.installedDefaultModel = installedDefaultModel;
    snapshot.stopCondition = firstCondition(snapshot, m_machine.version() < m_machine.minimumVersion(), onBattery);
    snapshot.supportsOnDeviceWork = snapshot.stopCondition != Condition::TranslatedProcess
        && snapshot.stopCondition != Condition::UnsupportedPlatform;
    return snapshot;
}

}
