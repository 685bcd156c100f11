#include "Platform/Linux/Bus/LogindInhibitor.h"

#include "Foundation/Log.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Services.h"

#include <QDBusUnixFileDescriptor>

namespace corvane {

namespace {

const BusObject logind { QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
    QStringLiteral("org.freedesktop.login1.Manager") };

/// The lock lasts as long as its descriptor is open.
class Lock final : public QObject, public SleepInhibitor::Hold {
public:
    Lock(const QDBusConnection& bus, const QString& reason)
    {
        take(bus, QStringLiteral("sleep:idle"), reason, [this, bus, reason] {
            // Holding back a sleep that was asked for takes a right that not every session has.
            take(bus, QStringLiteral("idle"), reason, [] { log(QStringLiteral("SleepInhibitor: no lock")); });
        });
    }

private:
    void take(const QDBusConnection& bus, const QString& what, const QString& reason, std::function<void()> otherwise)
    {
        callAsync(bus,
            logind.method(
                QStringLiteral("Inhibit"), { what, QStringLiteral("Corvane"), reason, QStringLiteral("block") }),
            this, [this, otherwise = std::move(otherwise)](const QDBusMessage& reply) {
                m_descriptor = firstValue(reply).value<QDBusUnixFileDescriptor>();
                if (!m_descriptor.isValid())
                    otherwise();
            });
    }

    QDBusUnixFileDescriptor m_descriptor;
};

}

std::unique_ptr<SleepInhibitor::Hold> LogindInhibitor::hold(const QString& reason)
{
    return std::make_unique<Lock>(m_bus, reason);
}

std::unique_ptr<SleepInhibitor> makeSleepInhibitor()
{
    return std::make_unique<LogindInhibitor>(QDBusConnection::systemBus());
}

}
