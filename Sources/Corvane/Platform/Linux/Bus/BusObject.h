#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <functional>

namespace corvane {

/// An interface of an object of another program on the bus.
struct BusObject {
    QString service;
    QString path;
    QString interface;

    QDBusMessage method(const QString& name, const QVariantList& arguments = {}) const;
};

/// Calls without waiting. `done` is called later on the main thread with the reply or the error; never once
/// `context` is gone, and never on a bus that is not connected.
void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
    std::function<void(const QDBusMessage& reply)> done);

/// The value that a reply carries first, out of whatever variants it is wrapped in; nothing where it is an error.
QVariant firstValue(const QDBusMessage& reply);
QVariant unwrapped(QVariant value);

}
