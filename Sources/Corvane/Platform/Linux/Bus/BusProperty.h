#pragma once

#include "Platform/Linux/Bus/BusObject.h"

#include <QObject>
#include <QVariant>

namespace corvane {

/// A property of a remote object, updated by the bus's change signals. It does not start the program.
class BusProperty final : public QObject {
    Q_OBJECT
public:
    BusProperty(const QDBusConnection& bus, const BusObject& object, const QString& name);

    const QVariant& value() const { return m_value; } ///< invalid while the program is not running

private Q_SLOTS:
    void onPropertiesChanged(const QDBusMessage& signal);

private:
    void read();

    QDBusConnection m_bus;
    const BusObject m_object;
    const QString m_name;
    QVariant m_value;
};

}
