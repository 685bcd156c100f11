#include "Platform/Linux/Tray/StatusNotifierTray.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Services.h"

#include <QCoreApplication>
#include <QDBusServiceWatcher>

namespace corvane {

namespace {

const BusObject watcher { u"org.kde.StatusNotifierWatcher"_s, u"/StatusNotifierWatcher"_s,
    u"org.kde.StatusNotifierWatcher"_s };
const BusObject watcherProperties { watcher.service, watcher.path, u"org.freedesktop.DBus.Properties"_s };

}

StatusNotifierTray::StatusNotifierTray(const QDBusConnection& bus)
    : m_bus(bus)
    , m_serviceName(u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid()))
{
    connect(&m_item, &StatusNotifierItem::activated, this, &Tray::activated);
    connect(&m_menu, &TrayMenu::itemChosen, this, &Tray::itemChosen);
    if (!m_bus.isConnected())
        return;
    registerTrayTypes();
    m_bus.registerObject(StatusNotifierItem::path, &m_item, QDBusConnection::ExportScriptableContents);
    m_bus.registerObject(StatusNotifierItem::menuPath, &m_menu, QDBusConnection::ExportScriptableContents);
    m_bus.registerService(m_serviceName);
    for (const char* signal : { "StatusNotifierHostRegistered", "StatusNotifierHostUnregistered" })
        m_bus.connect(
            watcher.service, watcher.path, watcher.interface, QString::fromLatin1(signal), this, SLOT(askForHost()));
    const auto* names = new QDBusServiceWatcher(watcher.service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(names, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString&, const QString&, const QString& owner) {
            forgetWatcher();
            if (!owner.isEmpty())
                enrol();
        });
    enrol();
}

StatusNotifierTray::~StatusNotifierTray()
{
    if (m_bus.isConnected())
        m_bus.unregisterService(m_serviceName);
}

void StatusNotifierTray::enrol()
{
    const QDBusMessage call = watcher.method(u"RegisterStatusNotifierItem"_s, { m_serviceName });
    callAsync(m_bus, call, this, [this](const QDBusMessage& reply) {
        m_registered = reply.type() == QDBusMessage::ReplyMessage;
        updateShown();
    });
    askForHost();
}

void StatusNotifierTray::askForHost()
{
    const QDBusMessage get
        = watcherProperties.method(u"Get"_s, { watcher.interface, u"IsStatusNotifierHostRegistered"_s });
    callAsync(m_bus, get, this, [this](const QDBusMessage& reply) {
        m_hasHost = firstValue(reply).toBool();
        updateShown();
    });
}

void StatusNotifierTray::forgetWatcher()
{
    m_registered = false;
    m_hasHost = false;
    updateShown();
}

void StatusNotifierTray::updateShown()
{
    const bool shown = m_registered && m_hasHost;
    if (shown == m_shown)
        return;
    m_shown = shown;
    Q_EMIT shownChanged();
}

std::unique_ptr<Tray> makeTray()
{
    return std::make_unique<StatusNotifierTray>(QDBusConnection::sessionBus());
}

}
