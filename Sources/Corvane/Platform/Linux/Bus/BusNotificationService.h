#pragma once

#include "Platform/NotificationService.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>
#include <optional>

namespace corvane {

/// Banners through org.freedesktop.Notifications. What the daemon can do is asked before the first banner and
/// again after each change of daemon; the ids of a daemon that went mean nothing to the next.
class BusNotificationService final : public QObject, public NotificationService {
    Q_OBJECT
public:
    explicit BusNotificationService(const QDBusConnection& bus);

    bool isAvailable() const override;
    void setResponseHandler(ResponseHandler handler) override;
    void show(const Banner& banner) override;
    void withdraw(const QVariantMap& userInfo) override;

private Q_SLOTS:
    void onActionInvoked(uint id, const QString& action);
    void onActivationToken(uint id, const QString& token);
    void onClosed(uint id, uint reason);

private:
    enum class Daemon { Unknown, Asked, Known };
    struct Shown {
        uint id = 0; ///< 0 until the daemon has given one
        bool sending = false;
        bool withdrawn = false; ///< while it was on its way
        QVariantMap userInfo;
        std::optional<Banner> next; ///< came while an earlier one of its identifier was on its way
    };

    void askDaemon();
    void send(const Banner& banner);
    void close(uint id);
    void onSent(const QString& identifier, const QDBusMessage& reply);
    void forgetDaemon();
    QHash<QString, Shown>::iterator findShown(uint id);
    QVariantList arguments(const Banner& banner, uint replacedId) const;

    QDBusConnection m_bus;
    ResponseHandler m_handler;
    Daemon m_daemon = Daemon::Unknown;
    int m_generation = 0; ///< counts the changes of daemon
    QStringList m_capabilities;
    QList<Banner> m_waiting; ///< for the capabilities
    QHash<QString, Shown> m_shown; ///< by identifier
};

}
