#pragma once

#include "Foundation/Literals.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QVariantMap>

namespace corvane {

/// Sends the portal's Response signal for a request and returns the request's object path.
inline QDBusObjectPath respond(const QDBusConnection& bus, const QDBusMessage& request, const QVariantMap& options,
    uint answer, const QVariantMap& results)
{
    const QString path = u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(
        request.service().mid(1).replace('.', '_'), options["handle_token"].toString());
    auto response = QDBusMessage::createSignal(path, "org.freedesktop.portal.Request", "Response");
    bus.send(response << answer << results);
    return QDBusObjectPath(path);
}

}
