#include "Platform/Linux/Bus/BusProperty.h"

#include "Foundation/Literals.h"

#include <QDBusArgument>
#include <QDBusServiceWatcher>

namespace corvane {

namespace {

const QString propertiesInterface = u"org.freedesktop.DBus.Properties"_s;

}

BusProperty::BusProperty(const QDBusConnection& bus, const BusObject& object, const QString& name)
    : m_bus(bus)
    , m_object(object)
    , m_name(name)
{
    if (!m_bus.isConnected())
        return;
    m_bus.connect(m_object.service, m_object.path, propertiesInterface, u"PropertiesChanged"_s, this,
        SLOT(onPropertiesChanged(QDBusMessage)));
    const auto* watcher
        = new QDBusServiceWatcher(m_object.service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString&, const QString&, const QString& owner) {
            m_value = {};
            if (!owner.isEmpty())
                read();
        });
    read();
}

void BusProperty::read()
{
    QDBusMessage call = BusObject { m_object.service, m_object.path, propertiesInterface }.method(
        u"Get"_s, { m_object.interface, m_name });
    call.setAutoStartService(false);
    callAsync(m_bus, call, this, [this](const QDBusMessage& reply) { m_value = firstValue(reply); });
}

void BusProperty::onPropertiesChanged(const QDBusMessage& signal)
{
    if (signal.signature() != u"sa{sv}as"_s || signal.arguments().at(0).toString() != m_object.interface)
        return;
    const auto changed = qdbus_cast<QVariantMap>(signal.arguments().at(1));
    if (changed.contains(m_name))
        m_value = unwrapped(changed.value(m_name));
    else if (signal.arguments().at(2).toStringList().contains(m_name))
        read();
}

}
