#include "Platform/Linux/Bus/BusObject.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace corvane {

QDBusMessage BusObject::method(const QString& name, const QVariantList& arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, name);
    message.setArguments(arguments);
    return message;
}

void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
    std::function<void(const QDBusMessage& reply)> done)
{
    // On a disconnected bus a call never finishes, and its watcher would leak.
    if (!bus.isConnected())
        return;
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
        [done = std::move(done)](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            done(finished->reply());
        });
}

QVariant firstValue(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return unwrapped(reply.arguments().constFirst());
}

QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

}
