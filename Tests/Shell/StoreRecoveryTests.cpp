#include "Care/Backup/BackupKeeper.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Notices.h"
#include "Shell/Screens.h"
#include "Shell/StoreRecovery.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreHealth.h"
#include "Support/Await.h"
#include "Support/FakeMachine.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"
#include "Web/SessionStore.h"

#include <QFile>
#include <gtest/gtest.h>
#include <sqlite3.h>

using namespace corvane;

namespace {

class Recovery : public testing::Test {
protected:
    Recovery()
    {
        Account account;
        account.id = QUuid::createUuid();
        account.name = account.slug = "shop";
        account.autoStart = true;
        home.write("share/Corvane/accounts.json", encodeAccounts({ account }));
        start();
    }

    void start()
    {
        app.reset();
        auto ownedLauncher = std::make_unique<FakeLauncher>(clock);
        launcher = ownedLauncher.get();
        app = std::make_unique<CorvaneApp>(home.paths(), clock, fakeMachine(home.paths(), std::move(ownedLauncher)));
        launcher->expect(FakeLauncher::stays(), 2); // the engine and the tool server
        app->onAppear();
    }

    bool allRuns()
    {
        return await([&] { return app->engine().mcpRunning(); });
    }

    StoreRecovery& recovery() { return app->recovery(); }
    LocalDB& db() { return app->engine().db(); }
    QStringList offered()
    {
        QStringList ids;
        for (const auto& choice : recovery().choices())
            ids.append(choice.id);
        return ids;
    }
    QString contacts() { return db().scalar("SELECT group_concat(display_name) FROM contact;").value_or("-"); }

    TemporaryHome home;
    VirtualScheduler clock;
    FakeLauncher* launcher = nullptr;
    std::unique_ptr<CorvaneApp> app;
};

}

TEST_F(Recovery, aDamagedFileStopsEverythingUntilAPersonHasChosenAlsoAcrossAStart)
{
    ASSERT_TRUE(allRuns());
    db().run("INSERT INTO contact(id, display_name) VALUES('a','Ana');");
    db().health().note(SQLITE_CORRUPT);
    clock.advance(Milliseconds(1));
    EXPECT_TRUE(recovery().needed());
    EXPECT_TRUE(recovery().busy());
    EXPECT_FALSE(app->engine().mcpRunning());
    clock.advance(seconds(5));
    EXPECT_EQ(offered(), QStringList({ "save", "new" }));
    EXPECT_FALSE(QFile::exists(home.paths().database()));
    EXPECT_TRUE(recovery().explanation().contains(home.paths().database() + ".damaged"));

    start();
    EXPECT_TRUE(recovery().needed());
    EXPECT_TRUE(launcher->children.empty()) << "nothing runs on a file that is not there";
    home.write("share/Corvane/backups/corvane-2026-11-01-120000.tar", "x");
    EXPECT_EQ(offered(), QStringList({ "save", "backup", "new" }));
    recovery().choose("save");
    EXPECT_TRUE(recovery().busy());
    ASSERT_TRUE(await([&] { return !recovery().busy(); }));
    EXPECT_FALSE(recovery().needed()) << recovery().error().toStdString();
    EXPECT_EQ(contacts(), "Ana");
    EXPECT_TRUE(allRuns());
    EXPECT_EQ(launcher->children.size(), 2);
    EXPECT_EQ(db().health().fault(), StoreFault::None);
}

TEST_F(Recovery, anEmptyFileOrABackupTakesThePlaceJustAsWell)
{
    db().run("INSERT INTO contact(id, display_name) VALUES('a','Ana');");
    app->backups().backUpNow();
    ASSERT_TRUE(await([&] { return !app->backups().busy(); }));
    home.write("share/Corvane/engines/mail/state.sqlite", "x");
    const QList<std::pair<QString, QString>> cases { { "new", "-" }, { "backup", "Ana" } };
    for (const auto& [id, expected] : cases) {
        ASSERT_TRUE(allRuns());
        launcher->expect(FakeLauncher::stays(), 2);
        db().health().note(SQLITE_NOTADB);
        clock.advance(seconds(6));
        launcher->exitTerminated();
        recovery().choose(id);
        ASSERT_TRUE(await([&] { return !recovery().needed(); })) << id.toStdString();
        EXPECT_EQ(contacts(), expected);
        EXPECT_TRUE(QFile::remove(home.path("share/Corvane/engines/mail/retell"))) << "what is lost is told again";
        clock.advance(seconds(10)); // the lines that waited for the database are handled first
    }
    EXPECT_TRUE(allRuns());
}

TEST_F(Recovery, noticesSayWhatIsWrongAndGoWithItsCause)
{
    ASSERT_TRUE(allRuns());
    Screens screens(*app);
    const auto texts = [&] {
        QStringList all;
        for (const auto& item : screens.notices->items())
            all.append(item.text.section(u'.', 0, 0));
        return all;
    };
    EXPECT_EQ(texts(), QStringList());
    db().health().note(SQLITE_FULL);
    clock.advance(Milliseconds(1));
    EXPECT_EQ(texts(), QStringList("The disk is full"));
    clock.advance(seconds(10));
    EXPECT_EQ(texts(), QStringList()) << "there is room again";

    app->session().setAuth("token", "d");
    app->session().handleCallback(QUrl("nimb-companion://auth?code=x"));
    ASSERT_EQ(texts().size(), 1);
    EXPECT_TRUE(texts()[0].startsWith("Sign in as someone else?"));
    screens.notices->perform("link", "ignore");
    EXPECT_EQ(texts(), QStringList());
    app->defaults().setText("nimb.apiBaseUrl", "http://nimb.example");
    app->session().startSignIn();
    EXPECT_TRUE(texts().value(0).startsWith("Sign-in failed: The web address is not encrypted"));
    screens.notices->perform("signIn", "dismiss");
    EXPECT_EQ(texts(), QStringList());
}
