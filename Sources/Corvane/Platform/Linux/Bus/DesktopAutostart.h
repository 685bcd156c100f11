#pragma once

#include "Platform/Autostart.h"

#include <QDBusConnection>
#include <QString>

namespace corvane {

/// An entry in the user's autostart folder. In a sandbox, which has no way to that folder, the background portal makes
/// the entry, and the one in the sandbox's own folder says that it did.
class DesktopAutostart final : public Autostart {
public:
    enum class Sandbox { No, Yes };

    /// `configuration` is the folder of all programs' settings, `program` the path of this one.
    DesktopAutostart(const QDBusConnection& bus, const QString& configuration, const QString& program, Sandbox sandbox);

    bool isOn() const override;
    void set(bool on, QObject* context, std::function<void(const Result<void>&)> done) override;

private:
    Result<void> write(bool on) const;

    QDBusConnection m_bus;
    const QString m_entry;
    const QString m_program;
    const Sandbox m_sandbox;
};

}
