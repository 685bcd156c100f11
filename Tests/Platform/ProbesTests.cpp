#include "Platform/Probes.h"

#include "Platform/RunsApart.h"
#include "Support/Await.h"
#include "Support/Environment.h"
#include "Support/Print.h"

#include <QDBusContext>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QStandardPaths>
#include <QTcpServer>
#include <QThread>
#include <atomic>

using namespace corvane;

namespace {

/// A fake time service on a private bus.
class TimeService final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.timedate1")
    Q_PROPERTY(bool NTPSynchronized READ isSynchronised)
public:
    explicit TimeService(QDBusConnection bus)
    {
        bus.registerObject("/org/freedesktop/timedate1", this, QDBusConnection::ExportAllProperties);
        bus.registerService("org.freedesktop.timedate1");
    }
    bool isSynchronised() const { return synchronised; }
    bool synchronised = true;
};

/// Runs a call that blocks on another thread, so that this one can answer it.
template <typename Value> Value elsewhere(const std::function<Value()>& call)
{
    Value value {};
    std::atomic<bool> done = false;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        value = call();
        done = true;
    }));
    thread->start();
    EXPECT_TRUE(await([&] { return done.load(); }));
    thread->wait();
    return value;
}

QString told(const AccessFacts& facts)
{
    return QStringList({ facts.exists ? "exists" : "", facts.isOwn ? "own" : "", facts.isPrivate ? "private" : "",
                           facts.isUsable ? "usable" : "" })
        .join(' ')
        .simplified();
}

}

TEST(Probes, theServicesOfTheBusesAreToldOneByOne)
{
    if (!runsApart())
        return;
    SessionBus bus;
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", qPrintable(bus.address()), 1);
    QDBusConnection desktop = bus.connect();
    const auto found = [] {
        const DesktopServices services = desktopServices();
        return QList<bool> { services.bus, services.keyring, services.notifications, services.trayHost,
            services.portal };
    };
    EXPECT_EQ(found(), QList<bool>({ true, false, false, false, false }));
    const QStringList names { "org.freedesktop.secrets", "org.freedesktop.Notifications",
        "org.kde.StatusNotifierWatcher", "org.freedesktop.portal.Desktop" };
    for (qsizetype i = 0; i < names.size(); ++i) {
        ASSERT_TRUE(desktop.registerService(names[i]));
        QList<bool> expected(5, false);
        expected[0] = expected[i + 1] = true;
        EXPECT_EQ(found(), expected) << names[i].toStdString();
        desktop.unregisterService(names[i]);
    }
    const std::function<std::optional<bool>()> clock = clockIsSynchronised;
    EXPECT_EQ(elsewhere(clock), std::nullopt) << "nobody sets it";
    TimeService service(desktop);
    EXPECT_EQ(elsewhere(clock), true);
    service.synchronised = false;
    EXPECT_EQ(elsewhere(clock), false);
}

TEST(Probes, withoutABusThereAreNoServices)
{
    if (!runsApart())
        return;
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    EXPECT_FALSE(desktopServices().bus);
    EXPECT_EQ(clockIsSynchronised(), std::nullopt);
}

TEST(Probes, whatListensAnswers)
{
    const TemporaryHome home;
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    const int port = server.serverPort();
    EXPECT_TRUE(answersAt("127.0.0.1", port));
    server.close();
    EXPECT_FALSE(answersAt("127.0.0.1", port));

    Environment environment { { "XDG_RUNTIME_DIR", home.path("run").toUtf8() }, { "PULSE_SERVER", {} } };
    ASSERT_TRUE(QDir().mkpath(home.path("run/pulse")));
    EXPECT_FALSE(soundServerAnswers());
    QLocalServer usual;
    ASSERT_TRUE(usual.listen(home.path("run/pulse/native")));
    EXPECT_TRUE(soundServerAnswers());
    environment.set("PULSE_SERVER", "unix:" + home.path("named").toUtf8());
    EXPECT_FALSE(soundServerAnswers()) << "the one that is named counts";
    QLocalServer named;
    ASSERT_TRUE(named.listen(home.path("named")));
    EXPECT_TRUE(soundServerAnswers());
}

TEST(Probes, aProgramIsAskedOnlyIfItIsThereAndBelievedOnlyIfItSucceeds)
{
    EXPECT_EQ(programOutput("/bin/sh", { "-c", "cat; echo \"$0\"; echo no >&2", "one" }), "one\n");
    EXPECT_EQ(programOutput("/bin/sh", { "-c", "echo one; exit 1" }), std::nullopt);
    EXPECT_EQ(programOutput("/bin/sh", { "-c", "echo one; kill -KILL $$" }), std::nullopt);
    EXPECT_EQ(programOutput("/nonexistent/program", {}), std::nullopt);
    EXPECT_EQ(firstInstalled({ "no-such-program", "sh", "cat" }), QStandardPaths::findExecutable("sh"));
    EXPECT_EQ(firstInstalled({ "no-such-program" }), "");
}

TEST(Probes, permissionsAreToldAndClosedToOthers)
{
    const TemporaryHome home;
    EXPECT_EQ(told(accessFacts(home.path("gone"))), "");
    EXPECT_FALSE(makePrivate(home.path("gone")));
    home.write("folder/file", "x");
    const auto after = [&](const char* path, mode_t mode) {
        EXPECT_EQ(::chmod(qPrintable(home.path(path)), mode), 0);
        return told(accessFacts(home.path(path)));
    };
    EXPECT_EQ(after("folder/file", 0644), "exists own usable");
    EXPECT_EQ(after("folder/file", 0602), "exists own usable");
    EXPECT_EQ(after("folder/file", 0600), "exists own private usable");
    EXPECT_EQ(after("folder/file", 0400), "exists own private");
    EXPECT_TRUE(makePrivate(home.path("folder/file")));
    EXPECT_EQ(told(accessFacts(home.path("folder/file"))), "exists own private usable");
    EXPECT_EQ(after("folder", 0755), "exists own usable");
    EXPECT_EQ(after("folder", 0600), "exists own private") << "a folder must be entered";
    EXPECT_TRUE(makePrivate(home.path("folder")));
    EXPECT_EQ(told(accessFacts(home.path("folder"))), "exists own private usable");
    EXPECT_EQ(told(accessFacts("/")).contains("own"), ::geteuid() == 0);
}

#include "ProbesTests.moc"
