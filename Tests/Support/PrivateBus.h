#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QTemporaryDir>

namespace corvane {

/// A private D-Bus bus: a real daemon without activatable services, which only the test knows.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const QString& address() const { return m_address; }

    /// Another client of the bus, with its own unique name. Closed by `disconnect` or when this object is destroyed.
    QDBusConnection connect();
    void disconnect(const QDBusConnection& client);

    /// Runs the event loop until everything the clients have sent so far, and the replies to it, have arrived.
    void settle();

    /// Kills the daemon, even if clients are connected.
    void stop();

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
    QStringList m_clients;
};

/// The connection that a program gets when there is no bus.
QDBusConnection noBus();

}
