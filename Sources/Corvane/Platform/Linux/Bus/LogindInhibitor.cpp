#include "Platform/Linux/Bus/LogindInhibitor.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Services.h"

#include <QDBusUnixFileDescriptor>

namespace corvane {

namespace {

const BusObject logind { u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s,
    u"org.freedesktop.login1.Manager"_s };

/// The lock lasts as long as its descriptor is open.
class Lock final : public QObject, public SleepInhibitor::Hold {
public:
    Lock(const QDBusConnection& bus, const QString& reason)
    {
        take(bus, u"sleep:idle"_s, reason, [this, bus, reason] {
            // Blocking a requested suspend needs a permission that not every session has.
            take(bus, u"idle"_s, reason, [] { log(u"SleepInhibitor: no lock"_s); });
        });
    }

private:
    void take(const QDBusConnection& bus, const QString& what, const QString& reason, std::function<void()> otherwise)
    {
        callAsync(bus, logind.method(u"Inhibit"_s, { what, u"Corvane"_s, reason, u"block"_s }), this,
            [this, otherwise = std::move(otherwise)](const QDBusMessage& reply) {
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
