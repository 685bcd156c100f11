#include "Platform/Linux/Bus/BusSingleInstance.h"

#include "Platform/Linux/Bus/BusObject.h"
#include "Support/Await.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"

#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace corvane;

namespace {

class SingleInstanceTest : public testing::Test {
protected:
    struct Running {
        Running(const QString& folder, const QDBusConnection& bus)
            : instance(folder, bus)
        {
            QObject::connect(&instance, &SingleInstance::activated,
                [this](const QStringList& arguments) { received.append('[' + arguments.join('|') + ']'); });
        }
        BusSingleInstance instance;
        QString received;
    };

    /// Starts another instance on a second thread while this thread runs the event loop. Returns what `claim` returned.
    bool claimElsewhere(
        const QDBusConnection& startBus, const QStringList& arguments, StartFor purpose = StartFor::Window)
    {
        std::atomic<int> result = -1;
        const std::unique_ptr<QThread> start(
            QThread::create([&] { result = BusSingleInstance(folder, startBus, purpose).claim(arguments) ? 1 : 0; }));
        start->start();
        EXPECT_TRUE(await([&] { return result != -1; }));
        start->wait();
        return result == 1;
    }

    TemporaryHome home;
    const QString folder = home.paths().applicationSupport;
    const QString socketPath = folder + "/instance.socket";
    PrivateBus privateBus;
    QDBusConnection bus = privateBus.connect();
    QDBusConnection otherBus = privateBus.connect();
};

}

TEST_F(SingleInstanceTest, aLaterStartHandsOverItsArgumentsWithAndWithoutABus)
{
    const QList<std::pair<QDBusConnection, QDBusConnection>> ways { { bus, otherBus }, { noBus(), noBus() },
        { bus, noBus() }, { noBus(), otherBus } };
    for (const auto& [first, second] : ways) {
        Running running(folder, first);
        ASSERT_TRUE(running.instance.claim({}));
        EXPECT_TRUE(running.instance.claim({})) << "claiming again changes nothing";
        qputenv("XDG_ACTIVATION_TOKEN", "from the launcher");
        EXPECT_FALSE(claimElsewhere(second, { "nimb-companion://auth?code=a b&c=\xC3\xA9", "--x" }));
        EXPECT_FALSE(claimElsewhere(second, {}));
        ASSERT_TRUE(await([&] { return running.received.endsWith("[]"); }));
        EXPECT_EQ(running.received, "[nimb-companion://auth?code=a b&c=\xC3\xA9|--x][]");
        EXPECT_EQ(qEnvironmentVariable("XDG_ACTIVATION_TOKEN"), "from the launcher");
        qunsetenv("XDG_ACTIVATION_TOKEN");
    }
    EXPECT_TRUE(claimElsewhere(otherBus, {})) << "the earlier ones are gone";
}

TEST_F(SingleInstanceTest, eachDataFolderHasAProgramOfItsOwn)
{
    BusSingleInstance first(folder, bus);
    BusSingleInstance second(home.path("demo/Corvane"), otherBus);
    LogCapture log;
    EXPECT_TRUE(first.claim({}));
    EXPECT_TRUE(second.claim({}));
    EXPECT_TRUE(log.lines().isEmpty()) << qPrintable(log.lines().join('\n'));
    for (const StartFor purpose : { StartFor::Headless, StartFor::Window }) {
        BusSingleInstance third(home.path("third"), bus, purpose);
        ASSERT_TRUE(third.claim({}));
        EXPECT_TRUE(bus.interface()->isServiceRegistered(instanceName(home.path("third"))));
        EXPECT_EQ(home.read("third/instance.lock"), purpose == StartFor::Headless ? "headless\n" : "");
    }
    EXPECT_FALSE(bus.interface()->isServiceRegistered(instanceName(home.path("third"))));

    const QString usual = QFile::decodeName(getpwuid(getuid())->pw_dir) + "/.local/share/Corvane";
    EXPECT_EQ(instanceName(usual), "com.nimb.corvane");
    EXPECT_TRUE(instanceName(folder).startsWith("com.nimb.corvane.at"));
    EXPECT_NE(instanceName(folder), instanceName(home.path("demo/Corvane")));
}

TEST_F(SingleInstanceTest, whatADeadProgramLeftIsTakenOver)
{
    home.write("share/Corvane/instance.lock", "");
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, QFile::encodeName(socketPath).constData(), sizeof(address.sun_path));
    const int dead = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(dead, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    close(dead);

    Running running(folder, noBus());
    EXPECT_TRUE(running.instance.claim({}));
    EXPECT_FALSE(claimElsewhere(noBus(), { "a" }));
    EXPECT_TRUE(await([&] { return running.received == "[a]"; }));
}

TEST_F(SingleInstanceTest, aBusyProgramGetsTheArgumentsWhenItComesRound)
{
    for (const auto& [first, second] : { std::pair(bus, otherBus), std::pair(noBus(), noBus()) }) {
        Running running(folder, first);
        ASSERT_TRUE(running.instance.claim({}));
        LogCapture log;
        QElapsedTimer timer;
        timer.start();
        EXPECT_FALSE(BusSingleInstance(folder, second).claim({ "later" }));
        EXPECT_LT(timer.elapsed(), 8000);
        EXPECT_TRUE(log.contains("does not answer"));
        EXPECT_TRUE(await([&] { return running.received == "[later]"; }));
    }
}

TEST_F(SingleInstanceTest, aProgramThatCannotBeReachedIsNotRunTwice)
{
    BusSingleInstance running(folder, noBus());
    ASSERT_TRUE(running.claim({}));
    ASSERT_TRUE(QFile::remove(socketPath));
    EXPECT_FALSE(BusSingleInstance(folder, noBus()).claim({}));
}

TEST_F(SingleInstanceTest, theSocketIsTheUsersOwnAndOutlivesNonsense)
{
    Running running(folder, noBus());
    ASSERT_TRUE(running.instance.claim({}));
    for (const QString& name : { "instance.socket", "instance.lock" }) {
        struct stat status {};
        ASSERT_EQ(stat(QFile::encodeName(folder + '/' + name).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0077, 0U) << qPrintable(name);
    }
    const QList<QByteArray> nonsense { "\n", "[1]\n", "\xFF{\n", QByteArray(65'536, 'x'), QByteArray(1'000'000, 'x') };
    for (const QByteArray& text : nonsense) {
        QLocalSocket socket;
        socket.connectToServer(socketPath);
        ASSERT_TRUE(socket.waitForConnected());
        socket.write(text);
        EXPECT_TRUE(await([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
        EXPECT_TRUE(socket.readAll().isEmpty());
    }
    QLocalSocket silent;
    silent.connectToServer(socketPath);
    EXPECT_FALSE(claimElsewhere(noBus(), { "fine" }));
    EXPECT_TRUE(await([&] { return running.received == "[fine]"; }));
}

TEST_F(SingleInstanceTest, aFolderThatCannotBeWrittenStopsNoStart)
{
    home.write("share", "a file where the folder should be");
    Running running(folder, bus);
    EXPECT_TRUE(running.instance.claim({}));
    EXPECT_FALSE(claimElsewhere(otherBus, { "over the bus" }));
    EXPECT_TRUE(await([&] { return running.received == "[over the bus]"; }));
}

TEST_F(SingleInstanceTest, aStartWithAWindowTakesThePlaceOfAHeadlessProgram)
{
    for (const auto& [first, second] : { std::pair(bus, otherBus), std::pair(noBus(), noBus()) }) {
        auto headless = std::make_unique<BusSingleInstance>(folder, first, StartFor::Headless);
        QString received;
        QObject::connect(headless.get(), &SingleInstance::activated,
            [&](const QStringList& arguments) { received = arguments.join('|'); });
        QObject::connect(headless.get(), &SingleInstance::replaced, [&] { headless.release()->deleteLater(); });
        ASSERT_TRUE(headless->claim({}));
        EXPECT_FALSE(claimElsewhere(second, { "record" }, StartFor::Command));
        EXPECT_FALSE(claimElsewhere(second, { "again" }, StartFor::Headless));
        EXPECT_TRUE(await([&] { return received == "again"; }));
        EXPECT_TRUE(claimElsewhere(second, {}));
        EXPECT_FALSE(headless);
        Running running(folder, first);
        ASSERT_TRUE(running.instance.claim({}));
        EXPECT_FALSE(claimElsewhere(second, {})) << "one with a window stays";
    }
}

TEST_F(SingleInstanceTest, desktopsReachItAsAnApplication)
{
    Running running(folder, bus);
    ASSERT_TRUE(running.instance.claim({}));
    const BusObject application { instanceName(folder), "/com/nimb/corvane", "org.freedesktop.Application" };
    otherBus.send(application.method("Activate", { QVariantMap() }));
    otherBus.send(application.method("Open", { QStringList("nimb-companion://auth"), QVariantMap() }));
    otherBus.send(application.method("ActivateAction", { "capture", QVariantList(), QVariantMap() }));
    EXPECT_TRUE(await([&] { return running.received == "[][nimb-companion://auth][capture]"; }));
}

TEST_F(SingleInstanceTest, theRunningProgramAnswersWhatIsAskedOverTheBus)
{
    const auto ask = [this](const QString& question) {
        std::optional<Result<QString>> answer;
        std::atomic<bool> done = false;
        const std::unique_ptr<QThread> other(QThread::create([&] {
            answer = askRunningProgram(home.paths(), otherBus, question);
            done = true;
        }));
        other->start();
        EXPECT_TRUE(await([&] { return done.load(); }));
        other->wait();
        return !answer ? "nobody" : *answer ? **answer : "! " + answer->error().message;
    };
    EXPECT_EQ(ask("Who?"), "nobody");
    Running running(folder, bus);
    ASSERT_TRUE(running.instance.claim({}));
    EXPECT_EQ(ask("Who?"), "! Corvane is starting. Try again.");
    running.instance.setAnswerer([](const QString& question, const auto& reply) {
        reply(question == "Who?" ? Result<QString>("Ana.") : failure("No idea."));
    });
    EXPECT_EQ(ask("Who?"), "Ana.");
    EXPECT_EQ(ask("Why?"), "! No idea.");
    EXPECT_EQ(ask(QString(65'536, 'x')), "! No idea.");
    EXPECT_EQ(ask(QString(65'537, 'x')), "! The question is too long.");
    EXPECT_FALSE(askRunningProgram(home.paths(), noBus(), "Who?"));
}
