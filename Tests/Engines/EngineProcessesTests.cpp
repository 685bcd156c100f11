#include "EngineTest.h"
#include "Engines/AccountStore.h"
#include "Foundation/Literals.h"

#include <QDir>
#include <QFile>

using namespace corvane;

namespace {

class Supervisor : public EngineTest {
protected:
    qsizetype launches() const { return world.launcher.children.size(); }
    void advance(qint64 milliseconds) { world.clock.advance(Milliseconds(milliseconds)); }
};

}

TEST_F(Supervisor, startingTwiceLeavesOneChild)
{
    QList<WAStatus> seen;
    QObject::connect(&world.engines, &EngineManager::runtimeChanged, &world.engines,
        [&](const QUuid& id) { seen.append(world.engines.runtime(id).status); });
    EXPECT_EQ(status(), WAStatus::Stopped);
    startShop();
    world.engines.start(shop);

    EXPECT_EQ(launches(), 1);
    EXPECT_EQ(seen, QList { WAStatus::Starting });
    EXPECT_TRUE(world.engines.isRunning(shop));
    EXPECT_EQ(world.engines.processId(shop), world.launcher.last().pid());
    EXPECT_EQ(world.engines.runningAccount(u"shop"_s), shop);
    EXPECT_FALSE(world.engines.runningAccount(u"other"_s));
}

TEST_F(Supervisor, anEngineThatKeepsCrashingRestartsLaterAndLaterAndThenNoMore)
{
    world.launcher.expect(FakeLauncher::crashes(), 6);
    world.engines.start(shop);
    qsizetype started = 1;
    for (const int delay : { 2, 4, 8, 16, 30 }) {
        advance(0);
        advance(0);
        EXPECT_EQ(status(), WAStatus::Connecting);
        advance(1000 * delay - 1);
        EXPECT_EQ(launches(), started) << delay;
        advance(1);
        EXPECT_EQ(launches(), ++started) << delay;
    }
    advance(3'600'000);
    EXPECT_EQ(launches(), 6);
    EXPECT_EQ(status(), WAStatus::Error);
    EXPECT_EQ(runtime().lastLog, u"Engine kept crashing — auto-restart gave up after 5 tries."_s);
    EXPECT_FALSE(world.engines.isRunning(shop));
}

TEST_F(Supervisor, aConnectionGivesTheWholeBudgetBack)
{
    world.launcher.expect(FakeLauncher::stays(), 13);
    world.engines.start(shop);
    for (int i = 0; i < 12; ++i) {
        report({ { u"type"_s, u"status"_s }, { u"state"_s, u"open"_s } });
        EXPECT_EQ(status(), WAStatus::Connected);
        world.launcher.last().exit(1);
        advance(2000);
    }
    EXPECT_EQ(launches(), 13);
    EXPECT_EQ(status(), WAStatus::Starting);
}

TEST_F(Supervisor, whatAnEnginePrintsLastCountsBeforeItsExit)
{
    startShop();
    world.launcher.last().printEvent({ { u"body"_s, u"an event without a type"_s } });
    for (int i = 0; i < 20; ++i)
        world.launcher.last().printEvent({ { u"type"_s, u"log"_s }, { u"msg"_s, QString::number(i) } });
    world.launcher.last().printEvent({ { u"type"_s, u"status"_s }, { u"state"_s, u"logged_out"_s } });
    world.launcher.last().exit(0);
    advance(3'600'000);
    EXPECT_EQ(launches(), 1) << "dead credentials restart nothing";
    EXPECT_EQ(status(), WAStatus::LoggedOut);
    EXPECT_EQ(runtime().lastLog, u"19"_s);
}

TEST_F(Supervisor, aStoppedEngineStaysDown)
{
    world.engines.stop(shop);
    EXPECT_EQ(status(), WAStatus::Stopped) << "also where none ran";

    startShop();
    world.engines.stop(shop);
    EXPECT_TRUE(world.launcher.last().terminated);
    EXPECT_EQ(status(), WAStatus::Stopped);
    EXPECT_FALSE(world.engines.isRunning(shop));
    report({ { u"type"_s, u"status"_s }, { u"state"_s, u"close"_s } });
    EXPECT_EQ(status(), WAStatus::Connecting) << "it speaks as long as it lives";
    world.launcher.last().exit(0);
    advance(3'600'000);
    EXPECT_EQ(status(), WAStatus::Stopped);
    EXPECT_EQ(launches(), 1);
}

TEST_F(Supervisor, theExitOfASupersededEngineDoesNotTouchItsSuccessor)
{
    startShop();
    FakeChild& old = world.launcher.last();
    world.engines.stop(shop);
    world.engines.start(shop);
    EXPECT_EQ(status(), WAStatus::Starting);
    EXPECT_EQ(launches(), 1) << "one engine an account: the first is still ending";
    EXPECT_TRUE(world.engines.isStarting(shop));
    EXPECT_FALSE(world.engines.isStarting(accountNamed(u"other"_s)));
    old.printEvent({ { u"type"_s, u"status"_s }, { u"state"_s, u"logged_out"_s } });
    old.printEvent({ { u"type"_s, u"message"_s }, { u"convExternalId"_s, u"c"_s }, { u"body"_s, u"late"_s },
        { u"providerMsgId"_s, u"m"_s } });
    world.launcher.expect(FakeLauncher::stays());
    old.exit(0);
    world.settle();
    EXPECT_EQ(status(), WAStatus::Starting) << "what it says of its connection is about another";
    report({ { u"type"_s, u"status"_s }, { u"state"_s, u"open"_s }, { u"user"_s, u"Ana"_s } });
    EXPECT_EQ(status(), WAStatus::Connected);
    EXPECT_EQ(cell(u"SELECT body FROM unified_message WHERE id='wa:msg:m';"_s), u"late"_s) << "its messages count";
    EXPECT_TRUE(world.engines.isRunning(shop));
    EXPECT_EQ(launches(), 2);

    world.launcher.expect(FakeLauncher::stays());
    world.launcher.last().exit(1);
    advance(2000);
    EXPECT_EQ(launches(), 3) << "the successor is watched as any other";
}

TEST_F(Supervisor, aStopOrARemovalForgetsEveryStartThatWaits)
{
    startShop();
    world.launcher.last().exit(1);
    world.settle();
    EXPECT_TRUE(world.engines.isStarting(shop));
    world.engines.stop(shop);
    advance(3'600'000);
    EXPECT_EQ(status(), WAStatus::Stopped);

    startShop();
    FakeChild& ending = world.launcher.last();
    world.engines.stop(shop);
    world.engines.start(shop);
    world.engines.forget(shop);
    ending.printEvent({ { u"type"_s, u"message"_s }, { u"convExternalId"_s, u"c"_s }, { u"body"_s, u"late"_s },
        { u"providerMsgId"_s, u"m"_s } });
    ending.exit(0);
    advance(3'600'000);
    EXPECT_EQ(launches(), 2);
    EXPECT_EQ(cell(u"SELECT id FROM unified_conversation;"_s), u"wa:shop:c"_s) << "its last words are still its own";
    EXPECT_FALSE(world.engines.runningAccount(u"shop"_s));
}

TEST_F(Supervisor, anEngineThatClosedItsInputShowsItAndIsStartedAfresh)
{
    startShop();
    FakeChild& deaf = world.launcher.last();
    deaf.writeFailure = u"standard input is closed"_s;
    EXPECT_FALSE(world.engines.sendText(shop, u"c"_s, { u"hello"_s }));
    EXPECT_EQ(status(), WAStatus::Error);
    EXPECT_EQ(runtime().lastLog, u"The engine takes no commands: it closed its input. Start it again."_s);
    world.engines.start(shop);
    EXPECT_TRUE(deaf.terminated);
    world.launcher.expect(FakeLauncher::stays());
    deaf.exit(0);
    advance(1);
    EXPECT_EQ(status(), WAStatus::Starting);
    EXPECT_TRUE(world.engines.isRunning(shop));
}

TEST_F(Supervisor, howAnEngineEndedStandsBesideItsAccount)
{
    startShop();
    world.launcher.last().exit(-9);
    world.settle();
    EXPECT_EQ(runtime().lastExit, u"Ended by signal 9 (Killed)"_s);
    EXPECT_TRUE(logs.contains(u"EngineProcesses: shop: Ended by signal 9 (Killed)"_s));
    world.launcher.expect(FakeLauncher::stays());
    advance(2000);
    EXPECT_EQ(runtime().lastExit, QString());
    world.launcher.last().exit(9);
    world.settle();
    EXPECT_TRUE(runtime().lastExit.endsWith(u" is too old. Engines need Node 22.6 or newer."_s));
    world.launcher.expect(FakeLauncher::stays());
    advance(4000);
    world.launcher.last().exit(1);
    world.settle();
    EXPECT_TRUE(runtime().lastExit.startsWith(u"The engine's program is missing: /"_s));
}

TEST_F(Supervisor, aResumeTakesThePauseOfTheAccountAway)
{
    AccountStore accounts(world.home.paths().applicationSupport);
    world.engines.setAccounts(&accounts);
    world.launcher.expect(FakeLauncher::stays(), 2);
    Account paused = accounts.add(u"Paused"_s, Channel::WhatsApp);
    paused.paused = true;
    accounts.update(paused);
    const Account never = accounts.add(u"Never"_s, Channel::WhatsApp);
    int changes = 0;
    QObject::connect(&accounts, &AccountStore::accountsChanged, &accounts, [&] { ++changes; });
    world.engines.resume(never);
    EXPECT_EQ(changes, 0);
    world.engines.resume(paused);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(accounts.find(paused.id)->paused, false);
    EXPECT_EQ(launches(), 2);
    world.engines.setAccounts(nullptr);
}

TEST_F(Supervisor, whatAnEarlierRunLeftIsAskedToEndAndKilledAfterFiveSeconds)
{
    using Marked = ProcessLauncher::Marked;
    const auto& asked = world.launcher.markedAs;
    world.launcher.remains = 1;
    world.engines.start(shop);
    EXPECT_TRUE(world.engines.isStarting(shop));
    EXPECT_EQ(asked, QList { Marked::Ask });
    advance(99);
    EXPECT_EQ(asked.size(), 1);
    advance(1);
    EXPECT_EQ(asked, QList({ Marked::Ask, Marked::Count }));
    advance(4899);
    EXPECT_EQ(asked.size(), 50);
    EXPECT_FALSE(asked.contains(Marked::Kill));
    advance(1);
    EXPECT_EQ(asked.last(), Marked::Kill);
    EXPECT_EQ(launches(), 0);
    world.launcher.remains = 0;
    world.launcher.expect(FakeLauncher::stays());
    advance(100);
    EXPECT_EQ(launches(), 1);
    EXPECT_FALSE(world.engines.isStarting(shop));

    const Account other = accountNamed(u"other"_s);
    world.launcher.remains = 1;
    world.engines.start(other);
    world.engines.stop(other);
    EXPECT_FALSE(world.engines.isStarting(other));
    world.launcher.remains = 0;
    advance(3'600'000);
    EXPECT_EQ(launches(), 1);
}

TEST_F(Supervisor, enginesThatCrashedTogetherStartOneAfterTheOther)
{
    const Account other = accountNamed(u"other"_s);
    const auto crashBoth = [&] {
        world.launcher.expect(FakeLauncher::stays(), 2);
        for (const Account& account : { shop, other }) {
            world.engines.stop(account);
            world.engines.start(account);
        }
        for (const auto& child : world.launcher.children.last(2))
            child->exit(1);
        world.settle();
    };
    crashBoth();
    QStringList seen;
    bool stopsOther = false;
    QObject::connect(&world.engines, &EngineManager::runtimeChanged, &world.engines, [&](const QUuid& id) {
        const RuntimeState state = world.engines.runtime(id);
        if (state.status != WAStatus::Starting || !state.lastExit.isEmpty())
            return;
        seen.append(id == shop.id ? u"shop"_s : u"other"_s);
        if (stopsOther && id == shop.id)
            world.engines.stop(other);
        else if (id == shop.id)
            EXPECT_TRUE(world.engines.isStarting(other)) << "it is next";
    });
    world.launcher.expect(FakeLauncher::stays(), 2);
    advance(2000);
    EXPECT_EQ(seen, QStringList({ u"shop"_s, u"other"_s }));
    EXPECT_EQ(launches(), 4);
    EXPECT_FALSE(world.engines.isStarting(other));

    for (const auto& child : world.launcher.children.last(2))
        child->exit(1);
    world.settle();
    stopsOther = true;
    world.launcher.expect(FakeLauncher::stays());
    advance(4000);
    EXPECT_EQ(launches(), 5);
    EXPECT_EQ(world.engines.runtime(other.id).status, WAStatus::Stopped);
}

TEST_F(Supervisor, aFailedLaunchIsToldAndNotRetried)
{
    world.launcher.expect(FakeLauncher::fails(u"no such file"_s));
    world.engines.start(shop);
    EXPECT_EQ(status(), WAStatus::Error);
    EXPECT_EQ(runtime().lastLog, u"Failed to launch engine: no such file"_s);
    advance(3'600'000);
    EXPECT_EQ(launches(), 0);
    EXPECT_EQ(world.engines.runningAccount(u"shop"_s), shop) << "it was started, if in vain";
}

TEST_F(Supervisor, quittingEndsEveryEngineForGood)
{
    const Account other = accountNamed(u"other"_s);
    const Account crashed = accountNamed(u"crashed"_s);
    world.launcher.expect(FakeLauncher::stays(), 3);
    world.engines.start(crashed);
    world.launcher.last().exit(1);
    world.settle();
    world.engines.start(shop);
    world.engines.start(other);
    int ended = 0;
    QObject::connect(&world.engines, &EngineManager::allEnded, &world.engines, [&] { ++ended; });
    world.engines.stopAll();
    world.engines.start(crashed);
    for (const auto& child : world.launcher.children.sliced(1)) {
        EXPECT_EQ(ended, 0);
        EXPECT_TRUE(child->terminated);
        child->printEvent({ { u"type"_s, u"log"_s }, { u"msg"_s, u"bye"_s } });
        child->exit(-15);
        world.settle();
    }
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(runtime().lastLog, u"bye"_s);
    advance(3'600'000);
    EXPECT_EQ(launches(), 3);
}

TEST_F(Supervisor, aResetStopsTheEngineAndDeletesItsStateFolder)
{
    const QString state = u".whatsapp-baileys/shop/creds.json"_s;
    world.home.write(state, "{}");
    world.home.write(u".whatsapp-baileys/other/creds.json"_s, "{}");
    world.home.write(u"share/Corvane/engines/shop/state.sqlite"_s, "x");
    startShop();
    report({ { u"type"_s, u"log"_s }, { u"msg"_s, u"kept"_s } });
    report({ { u"type"_s, u"mcp"_s }, { u"state"_s, u"listening"_s }, { u"url"_s, u"http://x"_s } });
    report({ { u"type"_s, u"qr"_s }, { u"qr"_s, u"code"_s } });
    world.engines.resetAuth(shop);
    EXPECT_TRUE(world.launcher.last().terminated);
    EXPECT_EQ(runtime(), (RuntimeState { WAStatus::Stopped, {}, {}, u"http://x"_s, u"kept"_s }));
    EXPECT_FALSE(QFile::exists(world.home.path(u".whatsapp-baileys/shop"_s)));
    EXPECT_FALSE(QFile::exists(world.home.path(u"share/Corvane/engines/shop"_s)));
    EXPECT_TRUE(QFile::exists(world.home.path(u".whatsapp-baileys/other/creds.json"_s)));

    for (const QString& slug : { QString(), u".."_s, u"../.whatsapp-baileys/other"_s, u"."_s })
        world.engines.resetAuth(accountNamed(slug));
    EXPECT_TRUE(QFile::exists(world.home.path(u".whatsapp-baileys/other/creds.json"_s)))
        << "a slug that is no plain name leads nowhere";

    QFile::link(world.home.path(u".whatsapp-baileys/other"_s), world.home.path(u".whatsapp-baileys/linked"_s));
    world.engines.resetAuth(accountNamed(u"linked"_s, Channel::Email));
    EXPECT_FALSE(QFile::exists(world.home.path(u".whatsapp-baileys/linked"_s)));
    EXPECT_TRUE(QFile::exists(world.home.path(u".whatsapp-baileys/other/creds.json"_s))) << "a link is not followed";
}

TEST_F(Supervisor, anAccountWhoseSecretOnlyALockedKeyringKnowsStartsOnceItIsUnlocked)
{
    const Account mail = accountNamed(u"mail"_s, Channel::Email);
    const Account paused = accountNamed(u"bot"_s, Channel::Telegram);
    FakeKeyring keyring;
    keyring.failure = Keyring::Failure::Locked;
    Keychain keychain { keyring, world.home.path(u"other-secrets.json"_s), world.clock };
    const EngineManager::Surroundings around { world.home.paths(), world.clock, world.launcher, world.ports,
        world.background, keychain, world.notifier, world.desktop };
    EngineManager engines { around, world.openDatabase(world.clock) };
    world.launcher.expect(FakeLauncher::stays(), 2);
    for (const Account& account : { shop, mail, paused })
        engines.start(account);
    EXPECT_EQ(launches(), 1) << "an account without a secret waits for nothing";
    EXPECT_EQ(engines.runtime(mail.id).status, WAStatus::Starting);
    EXPECT_EQ(engines.runtime(mail.id).lastLog, u"Waits for the desktop's keyring to be unlocked."_s);
    engines.stop(paused);
    keyring.failure.reset();
    keyring.values.insert(u"mail"_s, u"app password"_s);
    keychain.unlock();
    ASSERT_EQ(launches(), 2);
    EXPECT_EQ(world.launcher.last().spec.environment.value(u"EMAIL_PASS"_s), u"app password"_s);
}
