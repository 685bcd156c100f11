#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace corvane {

/// A fake notification daemon on a private bus. The test emits its signals.
class NotificationDaemon final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    struct Received {
        uint id = 0;
        uint replaces = 0;
        QString application;
        QString icon;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
        int timeout = 0;
    };

    explicit NotificationDaemon(const QDBusConnection& bus, const QStringList& offered = { "body", "actions" })
        : capabilities(offered)
        , m_bus(bus)
    {
        m_bus.registerObject("/org/freedesktop/Notifications", this,
            QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportScriptableSignals);
        m_bus.registerService("org.freedesktop.Notifications");
    }
    ~NotificationDaemon() override { m_bus.unregisterService("org.freedesktop.Notifications"); }

    QList<Received> received;
    QList<uint> closed;
    QStringList capabilities;
    bool refuses = false; ///< shows no banner

public Q_SLOTS:
    Q_SCRIPTABLE QStringList GetCapabilities() { return capabilities; }
    Q_SCRIPTABLE uint Notify(const QString& application, uint replaces, const QString& icon, const QString& summary,
        const QString& body, const QStringList& actions, const QVariantMap& hints, int timeout)
    {
        const uint id = replaces != 0 ? replaces : ++m_lastId;
        received.append({ id, replaces, application, icon, summary, body, actions, hints, timeout });
        return refuses ? 0 : id;
    }
    Q_SCRIPTABLE void CloseNotification(uint id)
    {
        closed.append(id);
        Q_EMIT NotificationClosed(id, 3);
    }

Q_SIGNALS:
    Q_SCRIPTABLE void ActionInvoked(uint id, const QString& action);
    Q_SCRIPTABLE void ActivationToken(uint id, const QString& token);
    Q_SCRIPTABLE void NotificationClosed(uint id, uint reason);

private:
    QDBusConnection m_bus;
    uint m_lastId = 0;
};

}
