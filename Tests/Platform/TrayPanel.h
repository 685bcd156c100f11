#pragma once

#include "Platform/Linux/Tray/TrayTypes.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

namespace corvane {

/// A fake desktop panel on a private bus with which tray icons register.
class TrayPanel final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
public:
    explicit TrayPanel(const QDBusConnection& bus, bool drawsIcons = true)
        : m_bus(bus)
        , m_hasHost(drawsIcons)
    {
        registerTrayTypes();
        m_bus.registerObject("/StatusNotifierWatcher", this, QDBusConnection::ExportScriptableContents);
        m_bus.registerService("org.kde.StatusNotifierWatcher");
    }
    ~TrayPanel() override { m_bus.unregisterService("org.kde.StatusNotifierWatcher"); }

    bool hasHost() const { return m_hasHost; }
    void setHasHost(bool hasHost)
    {
        m_hasHost = hasHost;
        if (hasHost)
            Q_EMIT StatusNotifierHostRegistered();
        else
            Q_EMIT StatusNotifierHostUnregistered();
    }

    /// Records a signal of the icon or its menu in `heard`.
    void watch(const QString& path, const QString& interface, const QString& name)
    {
        m_bus.connect(item, path, interface, name, this, SLOT(onSignal(QDBusMessage)));
    }

    QString item; ///< the service that registered last
    QStringList heard;

public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service) { item = service; }
    void onSignal(const QDBusMessage& message) { heard.append(message.member()); }

Q_SIGNALS:
    Q_SCRIPTABLE void StatusNotifierHostRegistered();
    Q_SCRIPTABLE void StatusNotifierHostUnregistered();

private:
    QDBusConnection m_bus;
    bool m_hasHost;
};

}
