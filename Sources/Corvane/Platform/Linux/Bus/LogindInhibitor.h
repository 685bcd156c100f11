#pragma once

#include "Platform/SleepInhibitor.h"

#include <QDBusConnection>

namespace corvane {

/// The inhibitor locks of systemd-logind or elogind.
class LogindInhibitor final : public SleepInhibitor {
public:
    explicit LogindInhibitor(const QDBusConnection& systemBus)
        : m_bus(systemBus)
    {
    }

    std::unique_ptr<Hold> hold(const QString& reason) override;

private:
    QDBusConnection m_bus;
};

}
