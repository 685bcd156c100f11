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
    bool isTranslated = false; ///< the process runs under emulation of another processor
    ThermalState thermal = ThermalState::Nominal;
    bool lowPowerMode = false;
    /// One per power supply, in the system's order: "AC Power", "Battery Power", or anything else.
    QStringList powerSourceStates;
    quint64 physicalMemoryBytes = 0;
    qint64 freeDiskBytes = -1; ///< on the disk with the program's data; -1: unknown
};

/// Facts about this machine.
class MachineFacts {
public:
    virtual ~MachineFacts() = default;

    virtual SystemVersion version() const = 0;
    virtual SystemVersion minimumVersion() const = 0; ///< the oldest that supports local models
    virtual MachineState state() const = 0; ///< current, without waiting
};

}
