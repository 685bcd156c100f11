#include "AI/LocalAIAvailability.h"

#include "Foundation/MachineWords.h"

namespace corvane {

namespace {

using Condition = LocalAIStopCondition;

constexpr quint64 neededMemoryBytes = Q_UINT64_C(1) << 33;
constexpr quint64 neededDiskBytes = Q_UINT64_C(1) << 31;

/// The first source that says what it is.
LocalAIPowerSource powerSource(const QStringList& states)
{
    for (const QString& state : states) {
        if (state == QLatin1StringView("Battery Power"))
            return LocalAIPowerSource::Battery;
        if (state == QLatin1StringView("AC Power"))
            return LocalAIPowerSource::AcPower;
    }
    return LocalAIPowerSource::Unknown;
}

std::optional<Condition> firstCondition(const LocalAIAvailabilitySnapshot& snapshot, bool isOldPlatform)
{
    if (snapshot.isTranslated)
        return Condition::TranslatedProcess;
    if (isOldPlatform)
        return Condition::UnsupportedPlatform;
    if (snapshot.lowPowerMode)
        return Condition::LowPowerMode;
    if (snapshot.powerSource == LocalAIPowerSource::Battery)
        return Condition::OnBattery;
    if (snapshot.thermalState >= ThermalState::Serious)
        return Condition::ThermalPressure;
    if (snapshot.physicalMemoryBytes < neededMemoryBytes)
        return Condition::InsufficientMemory;
    // Without its sign, a missing figure is the largest of all.
    if (static_cast<quint64>(snapshot.freeDiskBytes) < neededDiskBytes)
        return Condition::DiskLow;
    return std::nullopt;
}

}

QString rawValue(LocalAIPowerSource source)
{
    switch (source) {
    case LocalAIPowerSource::AcPower:
        return QStringLiteral("acPower");
    case LocalAIPowerSource::Battery:
        return QStringLiteral("battery");
    case LocalAIPowerSource::Unknown:
        break;
    }
    return QStringLiteral("unknown");
}

QString rawValue(LocalAIStopCondition condition)
{
    switch (condition) {
    case Condition::UnsupportedPlatform:
        return QStringLiteral("unsupportedPlatform");
    case Condition::TranslatedProcess:
        return QStringLiteral("translatedProcess");
    case Condition::LowPowerMode:
        return QStringLiteral("lowPowerMode");
    case Condition::OnBattery:
        return QStringLiteral("onBattery");
    case Condition::ThermalPressure:
        return QStringLiteral("thermalPressure");
    case Condition::InsufficientMemory:
        return QStringLiteral("insufficientMemory");
    case Condition::DiskLow:
        break;
    }
    return QStringLiteral("diskLow");
}

QString LocalAIAvailabilitySnapshot::statusText() const
{
    if (!stopCondition)
        return installedDefaultModel ? QStringLiteral("Ready for on-device voice.")
                                     : atStart(machineWords::localSpeech) + QStringLiteral(" is supported.");
    switch (*stopCondition) {
    case Condition::UnsupportedPlatform:
        return atStart(machineWords::localSpeech) + QStringLiteral(" needs a newer system.");
    case Condition::TranslatedProcess:
        return atStart(machineWords::localSpeech)
            + QStringLiteral(" needs the program that was built for this processor, not a translated one.");
    case Condition::LowPowerMode:
        return machineWords::powerSaving + QStringLiteral(" is on. Local AI is paused.");
    case Condition::OnBattery:
        return atStart(machineWords::thisMachine)
            + QStringLiteral(" is on battery. Connect power before running local transcription.");
    case Condition::ThermalPressure:
        return QStringLiteral("Thermal pressure is high. Local AI is paused until the %1 cools down.")
            .arg(machineWords::machine);
    case Condition::InsufficientMemory:
        return atStart(machineWords::thisMachine)
            + QStringLiteral(" does not have enough memory available for local transcription.");
    case Condition::DiskLow:
        break;
    }
    return QStringLiteral("Not enough free disk space for local transcription.");
}

LocalAIAvailabilitySnapshot LocalAIAvailability::snapshot(bool installedDefaultModel, bool) const
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
    snapshot.stopCondition = firstCondition(snapshot, m_machine.version() < m_machine.minimumVersion());
    snapshot.supportsOnDeviceWork = snapshot.stopCondition != Condition::TranslatedProcess
        && snapshot.stopCondition != Condition::UnsupportedPlatform;
    return snapshot;
}

}
