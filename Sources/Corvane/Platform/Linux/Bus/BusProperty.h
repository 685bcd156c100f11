#pragma once

#include "Platform/Linux/Bus/BusObject.h"

#include <QObject>
#include <QVariant>

namespace corvane {

/// A property of another program's object, kept as the bus announces it. The program is never started for it.
class BusProperty final : public QObject {
    Q_OBJECT
public:
    BusProperty(const QDBusConnection& bus, const BusObject& object, const QString& name);

    const QVariant& value() const { return m_value; } ///< invalid while the program is not there

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
