#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QTemporaryDir>

namespace corvane {

/// A message bus of the test's own: a real daemon that can start nothing and is reachable by nobody else.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const QString& address() const { return m_address; }

    /// Another client of the bus, with a name of its own on it; closed by `disconnect` or with this object.
    QDBusConnection connect();
    void disconnect(const QDBusConnection& client);

    /// Turns the event loop until what the clients have sent so far, and their answers to it, have arrived.
    void settle();

    /// Ends the daemon under all its clients.
    void stop();

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
    QStringList m_clients;
};

/// What a program gets that runs without a bus.
QDBusConnection noBus();

}
