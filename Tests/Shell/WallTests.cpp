#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Platform/Keychain.h"
#include "Shell/AppShell.h"
#include "Shell/ContentView.h"
#include "Shell/CorvaneApp.h"
#include "Shell/LoginWallView.h"
#include "Shell/ProfileMenu.h"
#include "Shell/Screens.h"
#include "Store/Core/Workspaces.h"
#include "Support/Await.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/FakeMachine.h"
#include "Support/LoopbackWeb.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"
#include "Web/WebSync.h"

#include <gtest/gtest.h>

namespace corvane {

namespace {

const QString anyToken = "any token counts, expired or not";

class Wall : public testing::Test {
protected:
    Wall() { open(); }

    /// Restarts the program.
    void open()
    {
        wall.reset();
        content.reset();
        session.reset();
        keychain = std::make_unique<Keychain>(keyring, home.paths().secretsFile(), clock);
        session = std::make_unique<SessionStore>(home.paths(), *keychain, defaults, desktop, clock);
        content = std::make_unique<ContentView>(*session, defaults);
        wall = std::make_unique<LoginWallView>(*session, *content);
    }

    TemporaryHome home;
    VirtualScheduler clock;
    FakeKeyring keyring;
    std::unique_ptr<Keychain> keychain;
    UserDefaults defaults { home.paths().defaultsFile };
    FakeDesktop desktop;
    std::unique_ptr<SessionStore> session;
    std::unique_ptr<ContentView> content;
    std::unique_ptr<LoginWallView> wall;
};

}

TEST_F(Wall, standsUntilAnyTokenIsThereAndComesBackWithASignOut)
{
    EXPECT_TRUE(content->showsWall());
    session->setAuth(anyToken, "d");
    EXPECT_FALSE(content->showsWall());
    open();
    EXPECT_FALSE(content->showsWall());
    session->setWebRejected(true);
    EXPECT_FALSE(content->showsWall()) << "a token that the web refuses still opens the shell";
    session->signOut();
    EXPECT_TRUE(content->showsWall());
}

TEST_F(Wall, waitsForTheKeyringToSayWhetherThereIsAToken)
{
    session->setAuth(anyToken, "d");
    keyring.failure = Keyring::Failure::Locked;
    open();
    EXPECT_FALSE(content->showsWall());
    EXPECT_FALSE(session->signedIn());
    EXPECT_EQ(session->displayLine(), "Waiting for the desktop's keyring");
    keyring.failure.reset();
    keychain->unlock();
    EXPECT_TRUE(session->signedIn());
    session->signOut();
    EXPECT_TRUE(content->showsWall());
}

TEST_F(Wall, continuingWithoutSigningInIsRememberedUntilASignOut)
{
    wall->continueWithoutSigningIn();
    EXPECT_FALSE(content->showsWall());
    EXPECT_FALSE(session->signedIn());
    EXPECT_EQ(session->displayLine(), "Not signed in");
    open();
    EXPECT_FALSE(content->showsWall());

    session->setAuth(anyToken, "d");
    session->signOut();
    EXPECT_TRUE(content->showsWall());
    open();
    EXPECT_TRUE(content->showsWall());
}

TEST_F(Wall, submitsOnlyWhatIsFilledInAndOnlyOnce)
{
    LoopbackWeb web;
    web.answer("/api/auth/login", LoopbackWeb::json({}, 401));
    defaults.setText("nimb.apiBaseUrl", web.base());
    wall->submit();
    EXPECT_FALSE(wall->busy());
    wall->setEmail("   ");
    wall->setPassword(" ");
    EXPECT_FALSE(wall->canSubmit());
    wall->submit();
    EXPECT_FALSE(wall->busy());

    wall->setEmail("  ana@ruiz.example ");
    EXPECT_TRUE(wall->canSubmit());
    EXPECT_EQ(wall->primaryLabel(), "Sign in");
    wall->submit();
    wall->submit();
    EXPECT_TRUE(wall->busy());
    EXPECT_FALSE(wall->canSubmit());
    EXPECT_EQ(wall->primaryLabel(), "Signing in…");
    ASSERT_TRUE(await([&] { return !wall->busy(); }));
    EXPECT_EQ(wall->lastError(), "Wrong email or password.");
    ASSERT_EQ(web.requests().size(), 1);
    EXPECT_EQ(web.requests()[0].json()["email"].toString(), "ana@ruiz.example");
    EXPECT_EQ(web.requests()[0].json()["password"].toString(), " ") << "a password is sent as it was typed";
    EXPECT_EQ(wall->password(), " ") << "a failure leaves the fields as they are";
}

TEST_F(Wall, forgetsThePasswordOnceItIsSignedIn)
{
    wall->setPassword("secret");
    session->setAuth(anyToken, "d");
    session->signOut();
    EXPECT_EQ(wall->password(), "");
}

namespace {

class Profile : public testing::Test {
protected:
    QStringList labels() const
    {
        QStringList result;
        for (const auto& action : menu.actions())
            result.append(action.label);
        return result;
    }
    QStringList workspaces() const
    {
        QStringList result;
        for (const auto& workspace : menu.workspaces())
            result.append(workspace.name + (workspace.selected ? u"*"_s : QString()));
        return result;
    }

    TemporaryHome home;
    VirtualScheduler clock;
    CorvaneApp app { home.paths(), clock, fakeMachine(home.paths(), std::make_unique<FakeLauncher>(clock)) };
    Screens screens { app };
    SessionStore& session = app.session();
    LocalDB& db = app.db();
    AppShell& shell = *screens.shell;
    ProfileMenu& menu = *screens.profile;
};

}

TEST_F(Profile, offersTheSignInAloneWithoutAToken)
{
    menu.refresh();
    EXPECT_EQ(menu.displayLine(), "Not signed in");
    EXPECT_EQ(menu.initial(), "") << "a face stands there, not a question mark";
    EXPECT_EQ(labels(), (QStringList { "Sign in to Nimb", "Quit Corvane" }));
    EXPECT_TRUE(menu.workspaces().isEmpty());
    menu.perform(menu.actions()[0].id);
    const QList<QUrl> opened = dynamic_cast<FakeDesktop&>(app.desktop()).opened;
    EXPECT_EQ(opened.size(), 1);
    EXPECT_TRUE(opened.value(0).toString().startsWith("https://"));
}

TEST_F(Profile, listsTheWorkspacesAndMarksTheActiveOne)
{
    WorkspaceRow first;
    first.workspaceId = "w1";
    first.workspaceName = "North";
    WorkspaceRow second = first;
    second.workspaceId = "w2";
    second.workspaceName = "South";
    storeWorkspaceRows(db, { first, second }, "w2");
    session.setAuth(anyToken, "d");
    app.web().sync.takeUp();
    EXPECT_EQ(workspaces(), QStringList({ first.displayName(), second.displayName() + u'*' }));
    menu.selectWorkspace("w1");
    EXPECT_EQ(workspaces(), QStringList({ first.displayName() + u'*', second.displayName() }));
    corvane::selectWorkspace(db, "w2");
    EXPECT_EQ(workspaces(), QStringList({ first.displayName(), second.displayName() + u'*' }))
        << "a change made elsewhere shows too";
}

TEST_F(Profile, opensTheSettingsAndSignsOut)
{
    session.setAuth(anyToken, "d");
    EXPECT_EQ(labels(), QStringList({ "Open Settings", "Sign Out", "Quit Corvane" }));
    shell.selectHub("cx");
    menu.perform(menu.actions()[0].id);
    EXPECT_TRUE(shell.settings());
    EXPECT_EQ(shell.selectedNav(), "cx");
    menu.perform(menu.actions()[1].id);
    EXPECT_FALSE(session.signedIn());
    EXPECT_TRUE(screens.content->showsWall());
}

}
