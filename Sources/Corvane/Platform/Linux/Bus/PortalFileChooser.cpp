#include "Platform/Linux/Bus/PortalFileChooser.h"

#include "Foundation/Log.h"
#include "Platform/Linux/Bus/BusObject.h"

#include <QDBusArgument>
#include <QUuid>

namespace corvane {

namespace {

const BusObject portal { QStringLiteral("org.freedesktop.portal.Desktop"),
    QStringLiteral("/org/freedesktop/portal/desktop"), QStringLiteral("org.freedesktop.portal.FileChooser") };
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
constexpr uint accepted = 0;

QString missingText(PortalFileChooser::For what)
{
    if (what == PortalFileChooser::For::Folder)
        return QStringLiteral("This desktop has no window to choose a folder in. Type its path.");
    return QStringLiteral("This desktop has no window to choose files in. Drag them here, or paste them.");
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
    const QString token = QStringLiteral("corvane_") + QUuid::createUuid().toString(QUuid::Id128);
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
    // Before the call: the answer may come first.
    m_bus.connect(
        portal.service, path, requestInterface, QStringLiteral("Response"), this, SLOT(onResponse(QDBusMessage)));
    const bool files = what == For::Files;
    const QVariantMap options { { QStringLiteral("handle_token"), token }, { QStringLiteral("multiple"), files },
        { QStringLiteral("directory"), !files } };
    const QString noParent = QStringLiteral("");
    callAsync(m_bus, portal.method(QStringLiteral("OpenFile"), { noParent, title, options }), this,
        [this](const QDBusMessage& reply) {
            if (reply.type() != QDBusMessage::ErrorMessage)
                return;
            log(QStringLiteral("FileChooser: ") + reply.errorMessage());
            end(failure(missingText(m_what)));
        });
}

void PortalFileChooser::onResponse(const QDBusMessage& response)
{
    QList<QUrl> files;
    if (response.signature() == u"ua{sv}" && response.arguments().at(0).toUInt() == accepted) {
        const auto results = qdbus_cast<QVariantMap>(response.arguments().at(1));
        for (const QString& uri : unwrapped(results.value(QStringLiteral("uris"))).toStringList())
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
