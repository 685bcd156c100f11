#include "Settings/SystemSettings.h"

#include "Platform/Autostart.h"
#include "Settings/SyncSettings.h"
#include "Store/Core/StoreWatch.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/Print.h"
#include "Web/SessionStore.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

namespace {

/// A desktop's list of programs that start at the login.
class LoginItems final : public Autostart {
public:
    bool isOn() const override { return on; }
    void set(bool wanted, QObject*, std::function<void(const Result<void>&)> done) override
    {
        ++asked;
        if (outcome)
            on = wanted;
        done(outcome);
    }

    bool on = false;
    int asked = 0;
    Result<void> outcome;
};

const QString usualHint = "In the background: messages arrive, and the window stays closed.";

}

TEST(SystemCard, theStartAtLoginIsTheDesktopsAndItsRefusalIsTold)
{
    EngineWorld world;
    LoginItems items;
    SystemSettings card(world.defaults, world.keychain, world.home.paths(), &items);
    QSignalSpy changed(&card, &SystemSettings::changed);
    EXPECT_TRUE(card.canStartAtLogin());
    EXPECT_FALSE(card.startsAtLogin());
    card.setStartsAtLogin(false);
    EXPECT_EQ(items.asked, 0);
    EXPECT_EQ(card.startHint(), usualHint);
    items.outcome = failure("The folder cannot be written.");
    card.setStartsAtLogin(true);
    EXPECT_FALSE(card.startsAtLogin());
    EXPECT_EQ(card.startHint(), "The folder cannot be written.");
    EXPECT_EQ(changed.size(), 1);
    items.outcome = {};
    card.setStartsAtLogin(true);
    EXPECT_TRUE(card.startsAtLogin());
    EXPECT_EQ(card.startHint(), usualHint);
    EXPECT_EQ(changed.size(), 2);
    EXPECT_FALSE(SystemSettings(world.defaults, world.keychain, world.home.paths(), nullptr).canStartAtLogin());
}

TEST(SystemCard, bannersAreSwitchedOnceAndALockedKeyringCanBeUnlocked)
{
    EngineWorld world;
    SystemSettings card(world.defaults, world.keychain, world.home.paths(), nullptr);
    QSignalSpy changed(&card, &SystemSettings::changed);
    card.setNotifyOnNewMessage(true);
    EXPECT_EQ(changed.size(), 0);
    card.setNotifyOnNewMessage(false);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_FALSE(card.canUnlock());
    world.keyring.failure = Keyring::Failure::Locked;
    world.keychain.unlock();
    EXPECT_TRUE(card.canUnlock());
    EXPECT_EQ(changed.size(), 2);
    EXPECT_TRUE(card.secretsPlace().startsWith("the desktop's keyring, which is locked; "));
    world.keyring.failure.reset();
    card.unlock();
    EXPECT_FALSE(card.canUnlock());
    EXPECT_EQ(changed.size(), 3);
}

TEST(SyncCard, saysWhetherASignInIsUnderWayOrFailed)
{
    EngineWorld world;
    world.defaults.setText("nimb.apiBaseUrl", "http://127.0.0.1:1");
    SessionStore session { world.home.paths(), world.keychain, world.defaults, world.desktop, world.clock };
    SyncSettings card(session, world.engines.db());
    QSignalSpy changed(&card, &SyncSettings::changed);
    EXPECT_EQ(card.displayLine(), "Not signed in");
    EXPECT_EQ(card.stateKind(), "idle");
    session.signIn("ana@ruiz.example", "secret");
    EXPECT_EQ(card.stateText() + u' ' + card.stateKind(), "Signing in… busy");
    EXPECT_EQ(changed.size(), 1);
    EXPECT_TRUE(await([&] { return !session.busy(); }));
    EXPECT_EQ(card.stateText(), session.lastErrorText());
    EXPECT_NE(card.stateText(), "");
    EXPECT_EQ(card.stateKind(), "bad");
    session.setAuth("t", "d");
    EXPECT_EQ(card.stateText() + u' ' + card.stateKind(), "Signed in good");
    EXPECT_EQ(card.displayLine(), "Signed in");
}

TEST(SyncCard, putsEveryPartOfTheSyncIntoWordsAndFollowsTheStore)
{
    EngineWorld world;
    LocalDB& db = world.engines.db();
    SessionStore session { world.home.paths(), world.keychain, world.defaults, world.desktop, world.clock };
    SyncSettings card(session, db);
    EXPECT_EQ(card.engineText(), "");
    db.run("INSERT INTO sync_health(source, status, last_finished_at, last_error, counts_json, updated_at) VALUES"
           "('bootstrap','running',NULL,NULL,'{\"workspaces\":2}',5),"
           "('corvane_ingest','waiting_for_web',?1,'','{\"localThreads\":1,\"localMessages\":1200}',4),"
           "('outbound_drafts','skipped',NULL,'sign in first','no object',3),('else','odd',NULL,NULL,'{}',2);",
        { world.clock.nowMs() - 120'000 });
    db.run("INSERT INTO engine_info(version, git_sha, started_at, updated_at) VALUES('1.2','0123456789ab',?1,?1);",
        { world.clock.nowMs() - 60'000 });
    QSignalSpy changed(&card, &SyncSettings::changed);
    db.watch().tell(StoreSubject::Sync);
    world.settle();
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(card.engineText(), "Version 1.2 01234567, started 1 minute ago");
    QStringList lines;
    for (const SyncHealthLine& line : card.health())
        lines.append(QStringList { line.source, line.status, line.kind, line.detail }.join(u'|'));
    lines.sort();
    EXPECT_EQ(lines,
        QStringList({ "Drafts from the web|Skipped|bad|sign in first",
            "Local channels to the web|Waiting for the web|good|Finished 2 minutes ago · 1 chat · 1,200 messages",
            "Workspaces and integrations|Running|busy|2 workspaces", "else|odd|good|" }));
    db.exec("UPDATE engine_info SET git_sha=NULL;");
    card.refresh();
    EXPECT_EQ(card.engineText(), "Version 1.2, started 1 minute ago");
    EXPECT_EQ(card.health().size(), 4);
}

}
