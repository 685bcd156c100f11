#include "Support/PrivateBus.h"

#include "Foundation/Literals.h"
#include "Support/Await.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QUuid>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace corvane {

PrivateBus::PrivateBus()
{
    QFile configuration(m_folder.filePath(u"bus.conf"_s));
    if (!configuration.open(QIODevice::WriteOnly))
        return;
    configuration.write(u"<busconfig><type>session</type><listen>unix:dir=%1</listen>"
                        "<policy context=\"default\"><allow send_destination=\"*\" "
                        "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/>"
                        "</policy></busconfig>"_s.arg(m_folder.path())
                            .toUtf8());
    configuration.close();
    m_daemon.setStandardErrorFile(QProcess::nullDevice());
    // So that a crashing test leaves no daemon behind.
    m_daemon.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_daemon.start(
        u"dbus-daemon"_s, { u"--nofork"_s, u"--print-address"_s, u"--config-file"_s, configuration.fileName() });
    while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead(10'000)) { }
    m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
    EXPECT_FALSE(m_address.isEmpty()) << "dbus-daemon did not come up";
}

PrivateBus::~PrivateBus()
{
    for (const QString& client : std::as_const(m_clients))
        QDBusConnection::disconnectFromBus(client);
    stop();
}

QDBusConnection PrivateBus::connect()
{
    m_clients.append(QUuid::createUuid().toString());
    return QDBusConnection::connectToBus(m_address, m_clients.constLast());
}

void PrivateBus::disconnect(const QDBusConnection& client)
{
    m_clients.removeOne(client.name());
    QDBusConnection::disconnectFromBus(client.name());
}

void PrivateBus::settle()
{
    // The bus delivers messages in order, so its reply to a ping arrives after everything that was sent before.
    const auto ping
        = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
    for (int round = 0; round < 3; ++round) {
        for (const QString& client : std::as_const(m_clients)) {
            const QDBusPendingCallWatcher answer(QDBusConnection(client).asyncCall(ping));
            ASSERT_TRUE(await([&] { return answer.isFinished(); }));
        }
        QCoreApplication::processEvents();
    }
}

void PrivateBus::stop()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
}

QDBusConnection noBus()
{
    return QDBusConnection(u"no bus"_s);
}

}
