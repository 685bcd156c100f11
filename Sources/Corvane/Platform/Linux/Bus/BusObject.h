#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <functional>

namespace corvane {

/// An interface of a remote object on the bus.
struct BusObject {
    QString service;
    QString path;
    QString interface;

    QDBusMessage method(const QString& name, const QVariantList& arguments = {}) const;
};

/// Calls asynchronously. `done` is called later on the main thread with the reply or the error; never after `context`
/// is destroyed, and never on a bus that is not connected.
void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
    std::function<void(const QDBusMessage& reply)> done);

/// The first value of a reply, unwrapped from its variants; nothing for an error.
QVariant firstValue(const QDBusMessage& reply);
QVariant unwrapped(QVariant value);

}
