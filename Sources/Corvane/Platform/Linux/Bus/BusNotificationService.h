#pragma once

#include "Platform/NotificationService.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>
#include <optional>

namespace corvane {

/// Banners through org.freedesktop.Notifications. The capabilities of the daemon are queried before the first banner
/// and after each change of daemon; banner ids are not valid for the next daemon.
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
        uint id = 0; ///< 0 until the daemon has assigned one
        bool sending = false;
        bool withdrawn = false; ///< while it was being sent
        QVariantMap userInfo;
        std::optional<Banner> next; ///< arrived while an earlier banner with its identifier was being sent
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
    int m_generation = 0; ///< counts daemon changes
    QStringList m_capabilities;
    QList<Banner> m_waiting; ///< for the capabilities
    QHash<QString, Shown> m_shown; ///< by identifier
};

}
