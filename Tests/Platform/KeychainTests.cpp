#include "Platform/Keychain.h"
#include "Support/FakeKeyring.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace corvane;

namespace {

using Failure = Keyring::Failure;
using Where = SecretPlace::Where;

const QString file = "share/Corvane/secrets/secrets.json";

mode_t modeOf(const QString& path)
{
    struct stat status {};
    ::stat(qPrintable(path), &status);
    return status.st_mode & 07777;
}

class KeychainTest : public testing::Test {
protected:
    KeychainTest() { open(); }
    void open()
    {
        keychain.reset();
        keychain = std::make_unique<Keychain>(keyring, home.path(file), clock);
    }
    QString value() const { return keychain->get("ann").value_or("none"); }
    SecretPlaces places() const { return SecretFile(home.path(file)).read(); }

    TemporaryHome home;
    VirtualScheduler clock;
    FakeKeyring keyring;
    std::unique_ptr<Keychain> keychain;
};

}

TEST_F(KeychainTest, whatChangesWhileTheKeyringIsAwayCountsAndReachesItLater)
{
    keychain->set("first", "ann");
    keychain->set("other", "bob");
    EXPECT_EQ(keyring.values, (Keyring::Secrets { { "ann", "first" }, { "bob", "other" } }));
    for (const Failure failure : { Failure::Absent, Failure::Locked, Failure::Failed }) {
        keyring.failure = failure;
        open();
        EXPECT_TRUE(keychain->isAwaited("ann")) << "it is known to be in the keyring";
        EXPECT_EQ(keychain->isAwaited("unknown"), failure != Failure::Absent);
        EXPECT_EQ(keychain->isLocked(), failure == Failure::Locked);
        keychain->set("second", "ann");
        keychain->remove("bob");
        EXPECT_FALSE(keychain->isAwaited("ann"));
        open();
        EXPECT_EQ(value(), "second") << "also at the next start";
        EXPECT_FALSE(keychain->isAwaited("bob")) << "it is removed, whatever the keyring holds";

        int changes = 0;
        QObject::connect(keychain.get(), &Keychain::changed, keychain.get(), [&] { ++changes; });
        keyring.failure.reset();
        const int asked = keyring.asked;
        clock.advance(seconds(60));
        EXPECT_EQ(keyring.values, (Keyring::Secrets { { "ann", "second" } }));
        EXPECT_EQ(keyring.asked, asked) << "the user is not asked by the clock";
        EXPECT_GE(changes, 1);
        EXPECT_EQ(clock.pendingTimers(), 0) << "there is nothing left to ask for";
        EXPECT_EQ(places(), (SecretPlaces { { "ann", { Where::Keyring, {} } } }));
        keychain->set("first", "ann");
        keychain->set("other", "bob");
    }
}

TEST_F(KeychainTest, aValueThatTheKeyringTakesTooLongForIsInTheFileUntilThen)
{
    keyring.silent = true;
    EXPECT_TRUE(keychain->set("old", "ann"));
    EXPECT_TRUE(keychain->set("new", "ann"));
    EXPECT_EQ(value(), "new");
    EXPECT_TRUE(places().isEmpty()) << "the keyring has a moment";
    clock.advance(seconds(2));
    EXPECT_EQ(places().value("ann"), (SecretPlace { Where::File, "new" }));
    keyring.speak();
    EXPECT_EQ(keyring.values.value("ann"), "new");
    EXPECT_EQ(places().value("ann").where, Where::Keyring);

    keyring.silent = true;
    keychain->set("typed just before the end", "ann");
    keychain.reset();
    EXPECT_EQ(places().value("ann").value, "typed just before the end");
    keyring.speak();
}

TEST_F(KeychainTest, aKeyringThatLockedItselfAsksOnceForAllThatChangesMeanwhile)
{
    keyring.silent = true;
    keyring.failure = Failure::Locked;
    const int asked = keyring.asked;
    keychain->set("token", "ann");
    keychain->set("device", "bob");
    keychain->remove("carl");
    keyring.speak();
    EXPECT_EQ(keyring.asked, asked + 1);
    EXPECT_TRUE(keychain->isLocked());
    EXPECT_EQ(places().value("bob"), (SecretPlace { Where::File, "device" }));
}

TEST_F(KeychainTest, aSecretThatSomebodyTookOutOfTheKeyringIsMissedRatherThanAwaited)
{
    keychain->set("first", "ann");
    keyring.values.clear();
    open();
    EXPECT_EQ(value(), "none");
    EXPECT_FALSE(keychain->isAwaited("ann"));
    EXPECT_TRUE(places().isEmpty());
}

TEST_F(KeychainTest, aKeyringThatFailsIsAskedAgainLessAndLessOften)
{
    const QString until = "; new ones in a private file (" + home.path(file) + ") until then";
    const std::pair<Failure, QString> failures[] { { Failure::Failed,
                                                       "the desktop's keyring, which does not answer" + until },
        { Failure::Locked, "the desktop's keyring, which is locked" + until } };
    keychain->set(" first\n", "ann");
    EXPECT_EQ(value(), "first");
    EXPECT_EQ(keychain->description(), "the desktop's keyring");
    for (const auto& [failure, description] : failures) {
        keyring.failure = failure;
        open();
        EXPECT_EQ(keychain->description(), description);
        QList<int> moments;
        int second = 0;
        QObject::connect(keychain.get(), &Keychain::changed, keychain.get(), [&] { moments.append(second); });
        const auto pass = [&](int seconds_) {
            moments.clear();
            for (second = 1; second <= seconds_; ++second)
                clock.advance(seconds(1));
        };
        pass(200);
        EXPECT_EQ(moments, QList<int>({ 5, 15, 35, 75, 135, 195 }));
        keychain->unlock();
        pass(16);
        EXPECT_EQ(moments, QList<int>({ 5, 15 })) << "what the user asks for begins anew";

        keyring.silent = true;
        const int asked = keyring.asked;
        keychain->unlock();
        keychain->unlock();
        EXPECT_EQ(keyring.asked, asked + 1) << "one question at a time";
        EXPECT_EQ(keychain->description(), "the desktop's keyring, which has not answered yet");
        EXPECT_EQ(clock.pendingTimers(), 0);
        keyring.failure.reset();
        keyring.speak();
        EXPECT_EQ(value(), "first");
    }
    keyring.silent = true;
    keychain->remove("ann");
    EXPECT_EQ(value(), "none") << "before the keyring has answered";
    keyring.speak();
    EXPECT_EQ(keyring.values, Keyring::Secrets());
    EXPECT_TRUE(places().isEmpty());
    keyring.failure = Failure::Absent;
    open();
    EXPECT_EQ(keychain->description(), "a private file (" + home.path(file) + ')');
    EXPECT_EQ(clock.pendingTimers(), 0) << "there is nothing to hand over";
}

TEST(SecretFile, isReadByItsOwnerAloneAndNeverWhereItIsNotToBeTrusted)
{
    const TemporaryHome home;
    const SecretFile secrets(home.path(file));
    const SecretPlaces places { { "ann", { Where::File, "{\"x\":\"ü\"}\n" } }, { "bob", { Where::Keyring, {} } },
        { "gone", {} } };
    const mode_t before = ::umask(0);
    EXPECT_TRUE(secrets.write(places));
    ::umask(before);
    EXPECT_EQ(secrets.read(), places);
    EXPECT_EQ(home.read(file), R"({"com.nimb.corvane":{"ann":"{\"x\":\"ü\"}\n","bob":true,"gone":null}})");
    EXPECT_EQ(modeOf(home.path(file)), 0600U);
    EXPECT_EQ(modeOf(home.path("share/Corvane/secrets")), 0700U);
    ::chmod(qPrintable(home.path(file)), 0644);
    EXPECT_EQ(secrets.read(), places);
    EXPECT_EQ(modeOf(home.path(file)), 0600U) << "a restored backup is shut to others again";

    home.write(file, "{\"com.nimb.corvane\":{\"bob\":\"torn");
    EXPECT_TRUE(secrets.read().isEmpty());
    EXPECT_TRUE(secrets.write(places));
    EXPECT_EQ(home.read(file + ".damaged"), "{\"com.nimb.corvane\":{\"bob\":\"torn");
    ::chmod(qPrintable(home.path(file)), 0666);
    EXPECT_TRUE(secrets.read().isEmpty()) << "anyone could have written it";

    home.write("elsewhere", R"({"com.nimb.corvane":{"bob":"planted"}})");
    QFile::remove(home.path(file));
    ASSERT_EQ(::symlink(qPrintable(home.path("elsewhere")), qPrintable(home.path(file))), 0);
    EXPECT_TRUE(secrets.read().isEmpty());
    EXPECT_TRUE(secrets.write(places));
    EXPECT_EQ(home.read("elsewhere"), R"({"com.nimb.corvane":{"bob":"planted"}})");

    QFile::remove(home.path(file));
    ASSERT_EQ(::mkfifo(qPrintable(home.path(file)), 0600), 0);
    EXPECT_TRUE(secrets.read().isEmpty());
    LogCapture log;
    EXPECT_FALSE(secrets.write(places)) << "what cannot be kept is left alone";
    home.write("aside/x", {});
    ASSERT_EQ(::symlink(qPrintable(home.path("aside")), qPrintable(home.path("link"))), 0);
    EXPECT_FALSE(SecretFile(home.path("link/secrets.json")).write(places)) << "the folder is somewhere else";
    EXPECT_FALSE(QFile::exists(home.path("aside/secrets.json")));
    for (const QString& path : { home.path(file), home.path("link/secrets.json") })
        EXPECT_TRUE(log.lines().contains("SecretFile: " + path + " cannot be written"));
}
