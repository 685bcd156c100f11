#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Platform/Linux/Secrets/FileSecretStore.h"
#include "Platform/Linux/Secrets/KeyringSecretStore.h"
#include "Platform/SecretStore.h"
#include "Support/Await.h"
#include "Support/Print.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;

namespace {

const QString service = "a service";
const QString account = "ann@example.org";

void expectToKeepSecrets(SecretStore& store)
{
    const QString value = "{\"app\":\"xapp ü😀\",\n\"bot\":\"\"}\n";
    EXPECT_EQ(store.get(service, account), std::nullopt);
    EXPECT_TRUE(store.set(service, account, "first"));
    EXPECT_TRUE(store.set(service, account, value));
    EXPECT_TRUE(store.set(service, "bob", "other"));
    EXPECT_EQ(store.get(service, account), value);
    EXPECT_EQ(store.get("another service", account), std::nullopt);
    store.remove(service, account);
    store.remove(service, account);
    EXPECT_EQ(store.get(service, account), std::nullopt);
    EXPECT_EQ(store.get(service, "bob"), "other");
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
    home.write("run/made", {});
    ::chmod(qPrintable(home.path("run")), S_IRWXU);
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start("env",
        { "-u", "DBUS_SESSION_BUS_ADDRESS", "-u", "DISPLAY", "-u", "CORVANE_SECRETS", "CORVANE_TEST_RUNS_APART=1",
            "HOME=" + home.paths().home, "XDG_DATA_HOME=" + home.path("share"),
            "XDG_CONFIG_HOME=" + home.path("config"), "XDG_RUNTIME_DIR=" + home.path("run"),
            QCoreApplication::applicationFilePath(),
            QString("--gtest_filter=%1.%2").arg(test->test_suite_name(), test->name()) });
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
        m_daemon.start("gnome-keyring-daemon", { "--foreground", "--unlock", "--components=secrets" });
        m_daemon.write("test");
        m_daemon.closeWriteChannel();
        const QDBusConnection client = bus.connect();
        EXPECT_TRUE(await([&] { return client.interface()->isServiceRegistered("org.freedesktop.secrets").value(); }));
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
    const QString path = home.path("share/Corvane/secrets/secrets.json");
    const mode_t before = ::umask(0);
    FileSecretStore store(path);
    expectToKeepSecrets(store);
    ::umask(before);
    EXPECT_EQ(modeOf(path), 0600U);
    EXPECT_EQ(modeOf(home.path("share/Corvane/secrets")), 0700U);
    EXPECT_TRUE(store.description().contains(path));

    ::chmod(qPrintable(path), 0644);
    EXPECT_EQ(store.get(service, "bob"), "other");
    EXPECT_EQ(modeOf(path), 0600U) << "a restored backup is shut to others again";
}

TEST(FileSecretStore, aFileThatIsNotToBeTrustedIsKeptAsideAndNeverRead)
{
    const TemporaryHome home;
    const QString file = "secrets/secrets.json";
    FileSecretStore store(home.path(file));
    home.write(file, "{\"a service\":{\"bob\":\"torn");
    EXPECT_EQ(store.get(service, "bob"), std::nullopt);
    store.remove(service, "bob");
    EXPECT_EQ(home.read(file), "{\"a service\":{\"bob\":\"torn");
    EXPECT_TRUE(store.set(service, account, "new"));
    EXPECT_EQ(home.read(file + ".damaged"), "{\"a service\":{\"bob\":\"torn");
    EXPECT_EQ(store.get(service, account), "new");

    ::chmod(qPrintable(home.path(file)), 0666);
    EXPECT_EQ(store.get(service, account), std::nullopt) << "anyone could have written it";
    EXPECT_TRUE(store.set(service, "bob", "b"));
    EXPECT_TRUE(home.read(file + ".damaged-2").contains("new"));

    home.write("elsewhere", "{\"a service\":{\"bob\":\"planted\"}}");
    QFile::remove(home.path(file));
    ASSERT_EQ(::symlink(qPrintable(home.path("elsewhere")), qPrintable(home.path(file))), 0);
    EXPECT_EQ(store.get(service, "bob"), std::nullopt);
    EXPECT_TRUE(store.set(service, "bob", "own"));
    EXPECT_EQ(home.read("elsewhere"), "{\"a service\":{\"bob\":\"planted\"}}");
    EXPECT_EQ(store.get(service, "bob"), "own");

    QFile::remove(home.path(file));
    ASSERT_EQ(::mkfifo(qPrintable(home.path(file)), 0600), 0);
    EXPECT_EQ(store.get(service, account), std::nullopt);
    EXPECT_FALSE(store.set(service, account, "x")) << "what cannot be kept is left alone";
}

TEST(SecretStore, withoutASessionBusTheFileIsChosenAtOnce)
{
    if (!runsApart())
        return;
    QElapsedTimer elapsed;
    elapsed.start();
    const auto store = makeSecretStore(AppPaths::fromEnvironment());
    EXPECT_LT(elapsed.elapsed(), 2000);
    EXPECT_TRUE(store->description().startsWith("a private file")) << qPrintable(store->description());
    Keychain keychain(*store);
    EXPECT_TRUE(keychain.set(" token\n", account));
    EXPECT_EQ(keychain.get(account), "token");
    EXPECT_EQ(store->get("com.nimb.corvane", account), " token\n");
    keychain.remove(account);
    EXPECT_EQ(keychain.get(account), std::nullopt);

    ::setenv("CORVANE_SECRETS", "keyring", 1);
    const auto keyring = makeSecretStore(AppPaths::fromEnvironment());
    EXPECT_EQ(keyring->description(), "the desktop's keyring");
    EXPECT_FALSE(keyring->set(service, account, "x"));
    EXPECT_EQ(keyring->get(service, account), std::nullopt);
}

TEST(SecretStore, theDesktopsKeyringComesFirstAndTheFileIsNotForgotten)
{
    if (!runsApart())
        return;
    const AppPaths paths = AppPaths::fromEnvironment();
    FileSecretStore file(paths.applicationSupport + "/secrets/secrets.json");
    ASSERT_TRUE(file.set(service, "old", "from a run without a keyring"));

    SessionBus bus;
    std::optional<Keyring> keyring(std::in_place, bus);
    const auto store = makeSecretStore(paths);
    EXPECT_EQ(store->description(), "the desktop's keyring");
    expectToKeepSecrets(*store);
    EXPECT_EQ(file.get(service, "bob"), std::nullopt) << "what the keyring holds stands nowhere else";

    EXPECT_EQ(store->get(service, "old"), "from a run without a keyring");
    EXPECT_TRUE(store->set(service, "old", "new"));
    EXPECT_EQ(file.get(service, "old"), std::nullopt);

    keyring.reset();
    keyring.emplace(bus);
    EXPECT_EQ(store->get(service, "old"), "new") << "a restarted keyring is found";
    keyring.reset();
    keyring.emplace(bus);
    EXPECT_TRUE(store->set(service, account, "kept"));
    keyring.reset();
    EXPECT_FALSE(store->set(service, account, "lost"));
    EXPECT_EQ(store->get(service, account), std::nullopt);

    ::setenv("CORVANE_SECRETS", "file", 1);
    EXPECT_TRUE(makeSecretStore(paths)->description().startsWith("a private file"));
}

TEST(SecretStore, aKeyringThatNeverAnswersIsGivenUpAndWithoutTheBusAtOnce)
{
    if (!runsApart())
        return;
    SessionBus bus;
    Silence silence;
    QDBusConnection client = bus.connect();
    client.registerVirtualObject("/", &silence, QDBusConnection::SubPath);
    ASSERT_TRUE(client.registerService("org.freedesktop.secrets"));
    KeyringSecretStore store(std::chrono::milliseconds(300));
    for (const bool busIsGone : { false, true }) {
        if (busIsGone)
            bus.stop();
        QElapsedTimer elapsed;
        elapsed.start();
        EXPECT_FALSE(store.answers());
        EXPECT_FALSE(store.set(service, account, "x"));
        EXPECT_EQ(store.get(service, account), std::nullopt);
        EXPECT_EQ(elapsed.elapsed() >= 900, !busIsGone);
        EXPECT_LT(elapsed.elapsed(), 5000);
    }
}
