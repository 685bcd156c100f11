#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Platform/Linux/Secrets/DesktopKeyring.h"
#include "Platform/RunsApart.h"
#include "Support/Await.h"
#include "Support/Environment.h"
#include "Support/Print.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

#include <QDBusConnectionInterface>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const QString account = "ann@example.org";

/// A real Secret Service on a desktop that cannot prompt the user.
class SecretService {
public:
    enum class State { Unlocked, Locked };
    explicit SecretService(PrivateBus& bus, State state = State::Unlocked)
    {
        m_daemon.setProcessChannelMode(QProcess::MergedChannels);
        QStringList arguments { "--foreground", "--components=secrets" };
        if (state == State::Unlocked)
            arguments.append("--unlock");
        m_daemon.start("gnome-keyring-daemon", arguments);
        m_daemon.write("test");
        m_daemon.closeWriteChannel();
        const QDBusConnection client = bus.connect();
        EXPECT_TRUE(await([&] { return client.interface()->isServiceRegistered("org.freedesktop.secrets").value(); }));
    }
    ~SecretService()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

private:
    QProcess m_daemon;
};

/// A service that accepts every call and never replies.
class Silence : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage&, const QDBusConnection&) override
    {
        ++calls;
        return true;
    }
    int calls = 0;
};

/// The program's keychain over the desktop keyring, as after a start.
struct Start {
    VirtualScheduler clock;
    DesktopKeyring keyring;
    Keychain keychain { keyring, AppPaths::fromEnvironment().secretsFile(), clock };

    QString value(const QString& name) const { return keychain.get(name).value_or("none"); }
    bool inFile(const QByteArray& text) const
    {
        QFile file(AppPaths::fromEnvironment().secretsFile());
        return file.open(QIODevice::ReadOnly) && file.readAll().contains(text);
    }
    void awaitPlace(const QString& beginning)
    {
        EXPECT_TRUE(await([&] { return keychain.description().startsWith(beginning); }))
            << keychain.description().toStdString();
    }
};

}

TEST(DesktopKeyring, withoutABusSecretsAreInTheFileAndTheKeyringGetsThemOnceItIsThere)
{
    if (!runsApart())
        return;
    {
        Start start;
        start.awaitPlace("a private file");
        EXPECT_TRUE(start.keychain.set(" {\"app\":\"ü😀\"}\n", account));
        EXPECT_EQ(start.value(account), "{\"app\":\"ü😀\"}");
        EXPECT_TRUE(start.inFile("ü😀"));
    }
    SessionBus bus;
    std::optional<SecretService> service(std::in_place, bus);
    {
        Start start;
        EXPECT_EQ(start.value(account), "{\"app\":\"ü😀\"}") << "nothing waits for what the file knows";
        EXPECT_TRUE(start.keychain.isAwaited("bob"));
        start.awaitPlace("the desktop's keyring");
        EXPECT_TRUE(await([&] { return !start.inFile("ü😀"); })) << "the keyring has it, and nowhere else";
        start.keychain.set("b", "bob");
        start.keychain.remove("nobody");
        EXPECT_TRUE(await([&] { return start.inFile("\"bob\":true") && !start.inFile("nobody"); }));
        EXPECT_FALSE(start.inFile("\"b\""));

        service.reset();
        service.emplace(bus);
        start.keychain.set("c", "bob");
        EXPECT_TRUE(await([&] { return start.inFile("\"bob\":true"); })) << "a restarted keyring is found";
        service.reset();
        start.keychain.set("d", "bob");
        EXPECT_TRUE(await([&] { return start.inFile("\"bob\":\"d\""); })) << "one that is gone costs nothing";
    }
    service.emplace(bus, SecretService::State::Locked);
    {
        Start start;
        start.awaitPlace("the desktop's keyring, which is locked");
        EXPECT_TRUE(start.keychain.isAwaited(account));
        EXPECT_EQ(start.value("bob"), "d");
        start.keychain.remove(account);
        start.keychain.set("e", "bob");
        EXPECT_FALSE(start.keychain.isAwaited(account));
    }
    service.reset();
    service.emplace(bus);
    Start start;
    start.awaitPlace("the desktop's keyring");
    EXPECT_TRUE(await([&] { return start.inFile("\"bob\":true") && !start.inFile("ann"); }));
    EXPECT_EQ(start.value("bob"), "e");
    EXPECT_EQ(start.value(account), "none") << "a removal lasts, and reaches the keyring";
}

TEST(DesktopKeyring, aServiceThatNeverAnswersHoldsUpNothingNotEvenTheEnd)
{
    if (!runsApart())
        return;
    SessionBus bus;
    Silence silence;
    QDBusConnection client = bus.connect();
    client.registerVirtualObject("/", &silence, QDBusConnection::SubPath);
    ASSERT_TRUE(client.registerService("org.freedesktop.secrets"));
    {
        Start start;
        EXPECT_TRUE(await([&] { return silence.calls > 0; }));
        EXPECT_TRUE(start.keychain.isAwaited(account));
        EXPECT_TRUE(start.keychain.set("new", account));
        EXPECT_TRUE(start.inFile("\"new\""));
        EXPECT_FALSE(start.keychain.isAwaited(account));
    }
    client.unregisterService("org.freedesktop.secrets");
    SecretService service(bus);
    Start start;
    start.awaitPlace("the desktop's keyring");
    EXPECT_TRUE(await([&] { return !start.inFile("\"new\""); }));
    EXPECT_EQ(start.value(account), "new");
}

TEST(DesktopKeyring, itIsAbsentWhereTheFileIsAskedFor)
{
    const Environment environment { { "CORVANE_SECRETS", "file" } };
    const auto keyring = makeKeyring();
    QList<Keyring::Failure> failures;
    keyring->readAll(Keyring::Unlock::Ask, [&](const auto& answer) { failures.append(answer.error()); });
    const auto done = [&](const std::optional<Keyring::Failure>& failure) {
        failures.append(failure.value());
    };
    keyring->write(account, "secret", Keyring::Unlock::Ask, done);
    keyring->erase(account, Keyring::Unlock::Ask, done);
    EXPECT_EQ(failures, QList<Keyring::Failure>(3, Keyring::Failure::Absent));
}
