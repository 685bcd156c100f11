#include "Foundation/Literals.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Shell/ProfileMenu.h"
#include "Support/DemoWeb.h"
#include "UI/WindowTest.h"

#include "Support/Await.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"

namespace corvane {

namespace {

class WebWindow : public WindowTest {
protected:
    WebServices& web = app.web();
};

}

TEST_F(WebWindow, aPersonSignsInSeesTheWorkspacesReviewsAndPushesAChat)
{
    showInbox();
    DemoWeb service;
    defaults.setText("nimb.apiBaseUrl", service.base());
    web.push.attach();
    web.sync.takeUp();
    session.signIn("ana@ruiz.example", "secret");
    ASSERT_TRUE(await([this] { return web.sync.lastSyncedAt().has_value(); }));
    EXPECT_EQ(cell("SELECT COUNT(*) FROM unified_conversation WHERE workspace_id<>'ws-studio'"), "0");
    click(u"topnav.profile"_s);
    rest();
    EXPECT_EQ(profile.workspaces().size(), 3);
    press(Qt::Key_Escape);

    settings.setSection("sync");
    shell.openSettings();
    ASSERT_TRUE(await([this] { return web.push.review().has_value(); }));
    rest();
    EXPECT_NE(findItem(u"web.workspace.ws-studio"_s), nullptr);
    click(u"push.push"_s);
    ASSERT_TRUE(await([this] { return settings.push()->sheet()->state() == "filled"; }));
    rest();
    const QString kept = web.push.review()->threads.last().thread.conversationId;
    const auto due = web.push.review()->threads.size();
    settings.push()->sheet()->keepChat(kept, true);
    ASSERT_TRUE(await([&] { return settings.push()->sheet()->canPush(); }));
    rest();
    EXPECT_EQ(service.counts(), "0 0 0");
    click(u"pushSheet.push"_s);
    ASSERT_TRUE(await([&] { return !web.push.isRunning() && !web.push.isLookingUp(); }));
    rest();
    EXPECT_TRUE(service.counts().contains(u" %1 "_s.arg(due - 1))) << service.counts().toStdString();
    EXPECT_TRUE(item(u"push.state"_s)->property("text").toString().startsWith("Synced"));
    EXPECT_NE(findItem(u"push.release.0"_s), nullptr);
    service.plan("messages=stall");
    settings.push()->release(0);
    web.push.syncNow();
    rest();
    click(u"push.cancel"_s);
    rest();
    EXPECT_EQ(findItem(u"push.cancel"_s), nullptr);
}

}
