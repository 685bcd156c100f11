#include "Platform/Probes.h"

#include "Foundation/Literals.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QFile>
#include <QLocalSocket>
#include <QNetworkProxy>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpSocket>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr int answerMs = 2000;
constexpr int programMs = 5000;

QStringList namesOf(const QDBusConnection& bus, const QString& method)
{
    const QString daemon = u"org.freedesktop.DBus"_s;
    const QDBusReply<QStringList> reply = bus.call(
        QDBusMessage::createMethodCall(daemon, u"/org/freedesktop/DBus"_s, daemon, method), QDBus::Block, answerMs);
    return reply.value();
}

}

DesktopServices desktopServices()
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return {};
    const QStringList names = namesOf(bus, u"ListNames"_s) + namesOf(bus, u"ListActivatableNames"_s);
    return { true, names.contains(u"org.freedesktop.secrets"_s), names.contains(u"org.freedesktop.Notifications"_s),
        names.contains(u"org.kde.StatusNotifierWatcher"_s), names.contains(u"org.freedesktop.portal.Desktop"_s) };
}

bool soundServerAnswers()
{
    const QString named = qEnvironmentVariable("PULSE_SERVER");
    const QString usual = qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/pulse/native"_s;
    QLocalSocket socket;
    socket.connectToServer(named.startsWith("unix:"_L1) ? named.sliced(5) : usual);
    return socket.waitForConnected(answerMs);
}

bool answersAt(const QString& host, int port, Milliseconds limit)
{
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.connectToHost(host, quint16(port));
    return socket.waitForConnected(int(limit.count()));
}

std::optional<QByteArray> programOutput(const QString& executable, const QStringList& arguments)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(executable, arguments);
    if (process.waitForFinished(programMs))
        return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0
            ? std::optional(process.readAllStandardOutput())
            : std::nullopt;
    process.kill();
    process.waitForFinished(programMs);
    return std::nullopt;
}

QString firstInstalled(const QStringList& programs)
{
    for (const QString& program : programs) {
        if (const QString path = QStandardPaths::findExecutable(program); !path.isEmpty())
            return path;
    }
    return {};
}

std::optional<bool> clockIsSynchronised()
{
    QDBusMessage question = QDBusMessage::createMethodCall(u"org.freedesktop.timedate1"_s,
        u"/org/freedesktop/timedate1"_s, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question.setArguments({ u"org.freedesktop.timedate1"_s, u"NTPSynchronized"_s });
    const QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return std::nullopt;
    const QDBusReply<QVariant> reply = bus.call(question, QDBus::Block, answerMs);
    return reply.isValid() ? std::optional(reply.value().toBool()) : std::nullopt;
}

AccessFacts accessFacts(const QString& path)
{
    struct stat status {};
    const QByteArray name = QFile::encodeName(path);
    if (::stat(name.constData(), &status) != 0)
        return {};
    const mode_t needed = S_ISDIR(status.st_mode) ? S_IRWXU : S_IRUSR | S_IWUSR;
    return { true, status.st_uid == ::geteuid(), (status.st_mode & (S_IRWXG | S_IRWXO)) == 0,
        (status.st_mode & needed) == needed };
}

bool makePrivate(const QString& path)
{
    struct stat status {};
    const QByteArray name = QFile::encodeName(path);
    return ::stat(name.constData(), &status) == 0
        && ::chmod(name.constData(), S_ISDIR(status.st_mode) ? S_IRWXU : S_IRUSR | S_IWUSR) == 0;
}

}
