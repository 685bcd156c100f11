#pragma once

#include "Platform/Linux/Bus/BusProperty.h"
#include "Platform/MachineFacts.h"

namespace corvane {

/// Reads /proc and /sys, and UPower and power-profiles-daemon if they run.
class ProcMachineFacts final : public MachineFacts {
public:
    /// `root` is prepended to every system path; empty: this machine.
    ProcMachineFacts(const QString& root, const QString& dataFolder, const QDBusConnection& systemBus);

    SystemVersion version() const override { return m_version; }
    SystemVersion minimumVersion() const override { return { 5, 10, 0 }; }
    MachineState state() const override;

private:
    QStringList powerSourceStates() const;
    bool lowPowerMode() const;

    const QString m_root;
    const QString m_dataFolder;
    const SystemVersion m_version;
    const BusProperty m_onBattery;
    const BusProperty m_profile;
    const BusProperty m_profileByOldName;
};

}
