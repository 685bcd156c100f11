#pragma once

#include <QStringList>
#include <compare>

namespace corvane {

struct SystemVersion {
    int major = 0;
    int minor = 0;
    int patch = 0;

    auto operator<=>(const SystemVersion&) const = default;
};

enum class ThermalState { Nominal, Fair, Serious, Critical };

/// How the machine is at this moment.
struct MachineState {
    bool isTranslated = false; ///< the process runs on another processor than it was built for
    ThermalState thermal = ThermalState::Nominal;
    bool lowPowerMode = false;
    /// One a power source, in the system's order: "AC Power", "Battery Power", or anything else.
    QStringList powerSourceStates;
    quint64 physicalMemoryBytes = 0;
    qint64 freeDiskBytes = -1; ///< where the program keeps its data; -1: no figure
};

/// What the machine says of itself.
class MachineFacts {
public:
    virtual ~MachineFacts() = default;

    virtual SystemVersion version() const = 0;
    virtual SystemVersion minimumVersion() const = 0; ///< the oldest on which local models run
    virtual MachineState state() const = 0; ///< read afresh, without waiting
};

}
