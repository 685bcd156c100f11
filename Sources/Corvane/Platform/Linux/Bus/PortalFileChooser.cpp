#include "Platform/Linux/Bus/PortalFileChooser.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Bus/BusObject.h"

#include <QDBusArgument>
#include <QUuid>

namespace corvane {

namespace {

const BusObject portal { u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
    u"org.freedesktop.portal.FileChooser"_s };
const QString requestInterface = u"org.freedesktop.portal.Request"_s;
constexpr uint accepted = 0;

QString missingText(PortalFileChooser::For what)
{
    if (what == PortalFileChooser::For::Folder)
        return u"This desktop has no window to choose a folder in. Type its path."_s;
    return u"This desktop has no window to choose files in. Drag them here, or paste them."_s;
}

}

PortalFileChooser::PortalFileChooser(
    const QDBusConnection& bus, For what, const QString& title, Done done, QObject* context)
    : QObject(context)
    , m_bus(bus)
    , m_what(what)
    , m_done(std::move(done))
{
    if (!m_bus.isConnected()) {
        end(failure(missingText(what)));
        return;
    }
    const QString token = u"corvane_"_s + QUuid::createUuid().toString(QUuid::Id128);
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    const QString path = u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(sender, token);
    // Before the call: the answer may come first.
    m_bus.connect(portal.service, path, requestInterface, u"Response"_s, this, SLOT(onResponse(QDBusMessage)));
    const bool files = what == For::Files;
    const QVariantMap options { { u"handle_token"_s, token }, { u"multiple"_s, files }, { u"directory"_s, !files } };
    const QString noParent = u""_s;
    callAsync(
        m_bus, portal.method(u"OpenFile"_s, { noParent, title, options }), this, [this](const QDBusMessage& reply) {
            if (reply.type() != QDBusMessage::ErrorMessage)
                return;
            log(u"FileChooser: "_s + reply.errorMessage());
            end(failure(missingText(m_what)));
        });
}

void PortalFileChooser::onResponse(const QDBusMessage& response)
{
    QList<QUrl> files;
    if (response.signature() == u"ua{sv}" && response.arguments().at(0).toUInt() == accepted) {
        const auto results = qdbus_cast<QVariantMap>(response.arguments().at(1));
        for (const QString& uri : unwrapped(results.value(u"uris"_s)).toStringList())
            files.append(QUrl(uri, QUrl::StrictMode));
    }
    end(files);
}

void PortalFileChooser::end(const Result<QList<QUrl>>& files)
{
    deleteLater();
    if (const Done done = std::exchange(m_done, nullptr))
        done(files);
}

}
