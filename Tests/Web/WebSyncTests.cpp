#include "Web/WebSync.h"

#include "Support/WebTest.h"

namespace corvane {

namespace {

class WebSyncTest : public WebTest {
protected:
    QString refresh()
    {
        sync.refresh();
        EXPECT_TRUE(await([this] { return !sync.syncing(); }));
        return sync.lastError();
    }

    WebSync sync { session, *m_db, m_clock };
};

BootstrapLists listsOf(const QByteArray& json)
{
    const auto data = decodeBootstrap(json);
    EXPECT_TRUE(data.has_value()) << json.constData();
    return flattened(data.value_or(BootstrapData {}));
}

}

TEST(Bootstrap, isReadBareAndWrappedAndNothingElse)
{
    const QByteArray bare = R"({"activeOrganizationId":"o2","organizations":[
{"id":"o1","name":"One","workspaces":[{"id":"w1","name":"A","isDefault":true,"integrations":[
  {"id":"i","type":"SMS","provider":"p","status":"GONE"},{"id":"j","type":"ZOO","provider":"p","status":"CONNECTED"}]}],
 "integrations":[{"id":"i","type":"SMS","provider":"p","displayName":"later","status":"GONE"}]},
{"id":"o2","name":"Two","slug":null,"workspaces":[{"id":"w2","name":"B"},{"id":"w3","name":"C","isDefault":true}]},
{"id":"o3","name":"Three","workspaces":[],"integrations":[{"id":"k","type":"MAIL","provider":"p","status":"GONE"}]}]})";
    for (const QByteArray& json : { bare, "{\"data\":" + bare + "}" }) {
        const BootstrapLists lists = listsOf(json);
        ASSERT_EQ(lists.workspaces.size(), 3);
        EXPECT_EQ(lists.preferredWorkspaceId, "w3");
        ASSERT_EQ(lists.integrations.size(), 3);
        EXPECT_EQ(lists.integrations[0].id + lists.integrations[1].id + lists.integrations[2].id, "jki");
        EXPECT_EQ(lists.integrations[2].displayName, "later") << "the organization's entry wins";
    }
    EXPECT_EQ(listsOf(R"({"organizations":[]})").preferredWorkspaceId, std::nullopt);
    for (const QByteArray& json : QList<QByteArray> { "", "[]", "{}", R"({"data":{"organizations":{}}})",
             R"({"organizations":[{"id":"o","name":"n"}]})", R"({"organizations":[7]})",
             R"({"organizations":[{"id":"o","name":"n","workspaces":[{"id":1,"name":"w"}]}]})" })
        EXPECT_FALSE(decodeBootstrap(json).has_value()) << json.constData();
}

TEST_F(WebSyncTest, theFirstRefreshMovesWhatWasLocalIntoTheWebsWorkspace)
{
    addChat("wa:shop:1", "shop", 2);
    sync.takeUp();
    EXPECT_EQ(sync.selectedWorkspaceId(), "local");
    EXPECT_EQ(refresh(), "");
    EXPECT_EQ(sync.selectedWorkspaceId(), "ws-studio");
    EXPECT_EQ(table("SELECT DISTINCT workspace_id FROM unified_message"), QStringList("ws-studio"));
    EXPECT_EQ(sync.workspaces().size(), 3);
    EXPECT_EQ(sync.integrations().last().type, "EMAIL") << "what is not connected comes last";
    EXPECT_EQ(sync.lastSyncedAt(), m_clock.nowMs());

    web.plan("bootstrap=gone");
    EXPECT_EQ(refresh(), "");
    EXPECT_EQ(sync.selectedWorkspaceId(), "ws-studio") << "what is stored there is still shown";
    EXPECT_FALSE(sync.selectionIsKnown());
    EXPECT_EQ(consumeWorkspaceSelectionNotice(*m_db), std::nullopt) << "nothing changed for the person";
    sync.selectWorkspace("ws-fairs");
    EXPECT_EQ(sync.selectedWorkspaceId(), "ws-studio") << "an empty one is left for the one with data";
}

TEST_F(WebSyncTest, everyFailureHasItsWordsAndKeepsTheLists)
{
    EXPECT_EQ(refresh(), "");
    const QString path = "/api/auth/companion/bootstrap";
    const std::pair<const char*, QString> cases[] { { "401", "HTTP 401 on " + path + " — {\"error\":" },
        { "500", "HTTP 500 on " + path + " — " }, { "redirect", "HTTP 302 on " + path },
        { "nonsense", "Unexpected response shape: <!doctype html>" }, { "huge", "The reply is too large." },
        { "half", "Connection closed" }, { "drop", "Connection closed" } };
    for (const auto& [fault, words] : cases) {
        web.plan(QByteArray("bootstrap=") + fault);
        EXPECT_TRUE(refresh().startsWith(words)) << fault << ": " << sync.lastError().toStdString();
        EXPECT_EQ(sync.workspaces().size(), 3);
        EXPECT_TRUE(session.webRejected()) << "only a success clears it";
    }
    web.plan("");
    EXPECT_EQ(refresh(), "");
    EXPECT_FALSE(session.webRejected());
    EXPECT_EQ(readBootstrap(502, QByteArray(500, 'x'), "/p").error().message, "HTTP 502 on /p — " + QString(160, 'x'));
    m_defaults.setText("nimb.apiBaseUrl", "http://elsewhere.example");
    EXPECT_EQ(refresh(), "Bad URL " + path);
}

TEST_F(WebSyncTest, tenThousandWorkspacesAreTakenUp)
{
    web.plan("bootstrap=many");
    EXPECT_EQ(refresh(), "");
    EXPECT_EQ(sync.workspaces().size(), 10'001);
    EXPECT_EQ(cell("SELECT COUNT(*) FROM sync_workspace"), "10001");
    EXPECT_EQ(sync.selectedWorkspaceId(), "ws-0");
}

TEST_F(WebSyncTest, aSignOutEndsARefreshAndASignInBeginsOne)
{
    const QString token = *session.token();
    sync.takeUp();
    web.plan("bootstrap=stallx1");
    sync.refresh();
    EXPECT_TRUE(await([this] { return web.requests("bootstrap ->") > 0; }));
    session.signOut();
    EXPECT_FALSE(sync.syncing());
    EXPECT_EQ(refresh(), "Sign in first");
    session.setAuth(token, "d");
    EXPECT_TRUE(sync.syncing());
    EXPECT_TRUE(await([this] { return !sync.workspaces().isEmpty(); }));
    web.plan("bootstrap=stall");
    sync.refresh(); // destroyed while the request is in flight
}

}
