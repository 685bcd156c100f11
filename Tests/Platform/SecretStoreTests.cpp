#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Platform/Linux/FileSecretStore.h"
#include "Platform/Linux/KeyringSecretStore.h"
#include "Platform/SecretStore.h"
#include "Support/Await.h"
#include "Support/Print.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"

#include <QDBusConnectionInterface>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;

namespace {

const QString service = QStringLiteral("a service");
const QString account = QStringLiteral("ann@example.org");

void expectToKeepSecrets(SecretStore& store)
{
    const QString value = QStringLiteral("{\"app\":\"xapp ü😀\",\n\"bot\":\"\"}\n");
    EXPECT_EQ(store.get(service, account), std::nullopt);
    EXPECT_TRUE(store.set(service, account, QStringLiteral("first")));
    EXPECT_TRUE(store.set(service, account, value));
    EXPECT_TRUE(store.set(service, QStringLiteral("bob"), QStringLiteral("other")));
    EXPECT_EQ(store.get(service, account), value);
    EXPECT_EQ(store.get(QStringLiteral("another service"), account), std::nullopt);
    store.remove(service, account);
    store.remove(service, account);
    EXPECT_EQ(store.get(service, account), std::nullopt);
    EXPECT_EQ(store.get(service, QStringLiteral("bob")), QStringLiteral("other"));
}

mode_t modeOf(const QString& path)
{
    struct stat status {};
    ::stat(qPrintable(path), &status);
    return status.st_mode & 07777;
}

/// The keyring's library keeps what it learned of its surroundings until the process ends. So such a test
/// starts this program once more, for itself alone and in a home of its own, and does its work there: true there.
bool runsApart()
{
    if (qEnvironmentVariableIsSet("CORVANE_TEST_RUNS_APART"))
        return true;
    const TemporaryHome home;
    home.write(QStringLiteral("run/made"), {});
    ::chmod(qPrintable(home.path(QStringLiteral("run"))), S_IRWXU);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("CORVANE_TEST_RUNS_APART"), QStringLiteral("1"));
    environment.insert(QStringLiteral("HOME"), home.paths().home);
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home.path(QStringLiteral("share")));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path(QStringLiteral("run")));
    for (const char* name : { "DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "CORVANE_SECRETS" })
        environment.remove(QString::fromLatin1(name));

    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QStringLiteral("/proc/self/exe"),
        { QStringLiteral("--gtest_filter=%1.%2")
                .arg(QString::fromLatin1(test->test_suite_name()), QString::fromLatin1(test->name())) });
    EXPECT_TRUE(program.waitForFinished());
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0) << program.readAll().toStdString();
    return false;
}

/// A bus of the test's own that the keyring's library finds.
class SessionBus : public PrivateBus {
public:
    SessionBus() { ::setenv("DBUS_SESSION_BUS_ADDRESS", qPrintable(address()), 1); }
};

/// The Secret Service of a desktop, unlocked.
class Keyring {
public:
    explicit Keyring(PrivateBus& bus)
    {
        m_daemon.setProcessChannelMode(QProcess::MergedChannels);
        m_daemon.start(QStringLiteral("gnome-keyring-daemon"),
            { QStringLiteral("--foreground"), QStringLiteral("--unlock"), QStringLiteral("--components=secrets") });
        m_daemon.write("test");
        m_daemon.closeWriteChannel();
        const QDBusConnection client = bus.connect();
        EXPECT_TRUE(await([&] {
            return client.interface()->isServiceRegistered(QStringLiteral("org.freedesktop.secrets")).value();
        }));
    }
    ~Keyring()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

private:
    QProcess m_daemon;
};

/// A service that takes every call and never answers.
class Silence : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage&, const QDBusConnection&) override { return true; }
};

}

TEST(FileSecretStore, keepsSecretsThatOnlyTheirOwnerReads)
{
    const TemporaryHome home;
    const QString path = home.path(QStringLiteral("share/Corvane/secrets/secrets.json"));
    const mode_t before = ::umask(0);
    FileSecretStore store(path);
    expectToKeepSecrets(store);
    ::umask(before);
    EXPECT_EQ(modeOf(path), 0600U);
    EXPECT_EQ(modeOf(home.path(QStringLiteral("share/Corvane/secrets"))), 0700U);
    EXPECT_TRUE(store.description().contains(path));

    ::chmod(qPrintable(path), 0644);
    EXPECT_EQ(store.get(service, QStringLiteral("bob")), QStringLiteral("other"));
    EXPECT_EQ(modeOf(path), 0600U) << "a restored backup is shut to others again";
}

TEST(FileSecretStore, aFileThatIsNotToBeTrustedIsKeptAsideAndNeverRead)
{
    const TemporaryHome home;
    const QString file = QStringLiteral("secrets/secrets.json");
    FileSecretStore store(home.path(file));
    home.write(file, "{\"a service\":{\"bob\":\"torn");
    EXPECT_EQ(store.get(service, QStringLiteral("bob")), std::nullopt);
    store.remove(service, QStringLiteral("bob"));
    EXPECT_EQ(home.read(file), "{\"a service\":{\"bob\":\"torn");
    EXPECT_TRUE(store.set(service, account, QStringLiteral("new")));
    EXPECT_EQ(home.read(file + QStringLiteral(".damaged")), "{\"a service\":{\"bob\":\"torn");
    EXPECT_EQ(store.get(service, account), QStringLiteral("new"));

    ::chmod(qPrintable(home.path(file)), 0666);
    EXPECT_EQ(store.get(service, account), std::nullopt) << "anyone could have written it";
    EXPECT_TRUE(store.set(service, QStringLiteral("bob"), QStringLiteral("b")));
    EXPECT_TRUE(home.read(file + QStringLiteral(".damaged-2")).contains("new"));

    home.write(QStringLiteral("elsewhere"), "{\"a service\":{\"bob\":\"planted\"}}");
    QFile::remove(home.path(file));
    ASSERT_EQ(::symlink(qPrintable(home.path(QStringLiteral("elsewhere"))), qPrintable(home.path(file))), 0);
    EXPECT_EQ(store.get(service, QStringLiteral("bob")), std::nullopt);
    EXPECT_TRUE(store.set(service, QStringLiteral("bob"), QStringLiteral("own")));
    EXPECT_EQ(home.read(QStringLiteral("elsewhere")), "{\"a service\":{\"bob\":\"planted\"}}");
    EXPECT_EQ(store.get(service, QStringLiteral("bob")), QStringLiteral("own"));

    QFile::remove(home.path(file));
    ASSERT_EQ(::mkfifo(qPrintable(home.path(file)), 0600), 0);
    EXPECT_EQ(store.get(service, account), std::nullopt);
    EXPECT_FALSE(store.set(service, account, QStringLiteral("x"))) << "what cannot be kept is left alone";
}

TEST(SecretStore, withoutASessionBusTheFileIsChosenAtOnce)
{
    if (!runsApart())
        return;
    QElapsedTimer elapsed;
    elapsed.start();
    const auto store = makeSecretStore(AppPaths::fromEnvironment());
    EXPECT_LT(elapsed.elapsed(), 2000);
    EXPECT_TRUE(store->description().startsWith(QStringLiteral("a private file"))) << qPrintable(store->description());
    Keychain keychain(*store);
    EXPECT_TRUE(keychain.set(QStringLiteral(" token\n"), account));
    EXPECT_EQ(keychain.get(account), QStringLiteral("token"));
    EXPECT_EQ(store->get(QStringLiteral("com.nimb.corvane"), account), QStringLiteral(" token\n"));
    keychain.remove(account);
    EXPECT_EQ(keychain.get(account), std::nullopt);

    ::setenv("CORVANE_SECRETS", "keyring", 1);
    const auto keyring = makeSecretStore(AppPaths::fromEnvironment());
    EXPECT_EQ(keyring->description(), QStringLiteral("the desktop's keyring"));
    EXPECT_FALSE(keyring->set(service, account, QStringLiteral("x")));
    EXPECT_EQ(keyring->get(service, account), std::nullopt);
}

TEST(SecretStore, theDesktopsKeyringComesFirstAndTheFileIsNotForgotten)
{
    if (!runsApart())
        return;
    const AppPaths paths = AppPaths::fromEnvironment();
    FileSecretStore file(paths.applicationSupport + QStringLiteral("/secrets/secrets.json"));
    ASSERT_TRUE(file.set(service, QStringLiteral("old"), QStringLiteral("from a run without a keyring")));

    SessionBus bus;
    std::optional<Keyring> keyring(std::in_place, bus);
    const auto store = makeSecretStore(paths);
    EXPECT_EQ(store->description(), QStringLiteral("the desktop's keyring"));
    expectToKeepSecrets(*store);
    EXPECT_EQ(file.get(service, QStringLiteral("bob")), std::nullopt) << "what the keyring holds stands nowhere else";

    EXPECT_EQ(store->get(service, QStringLiteral("old")), QStringLiteral("from a run without a keyring"));
    EXPECT_TRUE(store->set(service, QStringLiteral("old"), QStringLiteral("new")));
    EXPECT_EQ(file.get(service, QStringLiteral("old")), std::nullopt);

    keyring.reset();
    keyring.emplace(bus);
    EXPECT_EQ(store->get(service, QStringLiteral("old")), QStringLiteral("new")) << "a restarted keyring is found";
    keyring.reset();
    keyring.emplace(bus);
    EXPECT_TRUE(store->set(service, account, QStringLiteral("kept")));
    keyring.reset();
    EXPECT_FALSE(store->set(service, account, QStringLiteral("lost")));
    EXPECT_EQ(store->get(service, account), std::nullopt);

    ::setenv("CORVANE_SECRETS", "file", 1);
    EXPECT_TRUE(makeSecretStore(paths)->description().startsWith(QStringLiteral("a private file")));
}

TEST(SecretStore, aKeyringThatNeverAnswersIsGivenUp)
{
    if (!runsApart())
        return;
    SessionBus bus;
    Silence silence;
    QDBusConnection client = bus.connect();
    client.registerVirtualObject(QStringLiteral("/"), &silence, QDBusConnection::SubPath);
    ASSERT_TRUE(client.registerService(QStringLiteral("org.freedesktop.secrets")));
    KeyringSecretStore store(std::chrono::milliseconds(300));
    QElapsedTimer elapsed;
    elapsed.start();
    EXPECT_FALSE(store.answers());
    EXPECT_FALSE(store.set(service, account, QStringLiteral("x")));
    EXPECT_EQ(store.get(service, account), std::nullopt);
    EXPECT_GE(elapsed.elapsed(), 900);
    EXPECT_LT(elapsed.elapsed(), 5000);
}

TEST(SecretStore, afterTheEndOfTheBusCallsFailAtOnceAndTheProgramGoesOn)
{
    if (!runsApart())
        return;
    SessionBus bus;
    std::optional<Keyring> keyring(std::in_place, bus);
    KeyringSecretStore store;
    EXPECT_TRUE(store.answers());
    keyring.reset();
    bus.stop();
    QElapsedTimer elapsed;
    elapsed.start();
    EXPECT_FALSE(store.answers());
    EXPECT_EQ(store.get(service, account), std::nullopt);
    EXPECT_LT(elapsed.elapsed(), 2000);
}
