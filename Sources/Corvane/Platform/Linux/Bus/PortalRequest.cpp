#include "Platform/Linux/Bus/PortalRequest.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Bus/BusObject.h"

#include <QDBusArgument>
#include <QUuid>

namespace corvane {

namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString requestInterface = u"org.freedesktop.portal.Request"_s;
constexpr uint accepted = 0;

}

PortalRequest::PortalRequest(const QDBusConnection& bus, const Call& call, Done done, QObject* context)
    : QObject(context)
    , m_bus(bus)
    , m_done(std::move(done))
{
    if (!m_bus.isConnected()) {
        end(failure(u"There is no session bus."_s));
        return;
    }
    const QString token = u"corvane_"_s + QUuid::createUuid().toString(QUuid::Id128);
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    const QString path = u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(sender, token);
    // Before the call: the answer may come first.
    m_bus.connect(service, path, requestInterface, u"Response"_s, this, SLOT(onResponse(QDBusMessage)));
    QVariantMap options = call.options;
    options.insert(u"handle_token"_s, token);
    const BusObject portal { service, u"/org/freedesktop/portal/desktop"_s, call.interface };
    callAsync(m_bus, portal.method(call.method, call.arguments + QVariantList { options }), this,
        [this, method = call.method](const QDBusMessage& reply) {
            if (reply.type() != QDBusMessage::ErrorMessage)
                return;
            log(u"PortalRequest: %1: %2"_s.arg(method, reply.errorMessage()));
            end(failure(reply.errorMessage()));
        });
}

void PortalRequest::onResponse(const QDBusMessage& response)
{
    QVariantMap results;
    if (response.signature() == u"ua{sv}" && response.arguments().at(0).toUInt() == accepted)
        results = qdbus_cast<QVariantMap>(response.arguments().at(1));
    end(results);
}

void PortalRequest::end(const Result<QVariantMap>& results)
{
    deleteLater();
    if (const Done done = std::exchange(m_done, nullptr))
        done(results);
}

}
