#include "Settings/WebSettings.h"

#include "Platform/Keychain.h"
#include "Store/Core/Workspaces.h"
#include "Support/Await.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/LoopbackWeb.h"
#include "Support/StoreTest.h"
#include "Web/SessionStore.h"
#include "Web/WebSync.h"

#include <QJsonArray>
#include <QSignalSpy>

namespace corvane {

namespace {

const QString bootstrap = "/api/auth/companion/bootstrap";

class OpenStore : public StoreTest {
protected:
    OpenStore() { open(); }
};

class WebSettingsTest : public OpenStore {
protected:
    WebSettingsTest() { m_defaults.setText("nimb.apiBaseUrl", web.base()); }

    void answer(const QStringList& workspaces, const QJsonArray& integrations = {})
    {
        QJsonArray nodes;
        for (const QString& id : workspaces)
            nodes.append(QJsonObject { { "id", id }, { "name", "Studio " + id } });
        const QJsonObject organization { { "id", "o" }, { "name", "Org" }, { "workspaces", nodes },
            { "integrations", integrations } };
        web.answer(bootstrap, LoopbackWeb::json({ { "organizations", QJsonArray { organization } } }));
    }

    void refresh()
    {
        page.refresh();
        EXPECT_TRUE(await([&] { return !page.busy(); }));
    }

    LoopbackWeb web;
    FakeKeyring keyring;
    Keychain keychain { keyring, m_home.paths().secretsFile(), m_clock };
    FakeDesktop desktop;
    SessionStore session { m_home.paths(), keychain, m_defaults, desktop, m_clock };
    WebSync sync { session, *m_db, m_clock };
    WebSettings page { session, sync, m_clock };
};

}

TEST_F(WebSettingsTest, theStateOfTheAccountIsToldFromTheSignInOn)
{
    EXPECT_EQ(page.stateText(), "Sign in, and the workspaces and integrations of your account appear here.");
    EXPECT_FALSE(page.signedIn() || page.busy() || page.failed() || page.searchable());
    refresh();
    EXPECT_FALSE(page.failed()) << "that nobody is signed in is no failure";
    sync.takeUp();
    QSignalSpy changed(&page, &WebSettings::changed);
    session.setWebRejected(true);
    EXPECT_EQ(changed.size(), 1);
    answer({ "w1" });
    session.setAuth("t", "d");
    EXPECT_GT(changed.size(), 0);
    EXPECT_TRUE(page.signedIn());
    EXPECT_EQ(page.stateText(), "Asking the web…");
    EXPECT_EQ(page.workspaceText(), "None: everything stays on this computer");
    EXPECT_EQ(page.emptyIntegrationsText() + page.workspaceHint() + page.moreText(), "");
    EXPECT_TRUE(await([&] { return !page.busy(); }));
    m_clock.advance(seconds(120));
    EXPECT_EQ(page.stateText(), "Updated 2 minutes ago");
    EXPECT_EQ(page.emptyIntegrationsText(), "The account has no integrations.");
    EXPECT_EQ(page.workspaceText(), "Org · Studio w1");

    web.answer(bootstrap, LoopbackWeb::status(500, "down"));
    page.refresh();
    EXPECT_FALSE(page.failed());
    refresh();
    EXPECT_TRUE(page.failed());
    EXPECT_EQ(page.stateText(), "HTTP 500 on " + bootstrap + " — down");
}

TEST_F(WebSettingsTest, integrationsAreNamedAsPeopleWriteThem)
{
    const auto integration
        = [](const char* id, const char* type, const char* display, const char* user, const char* status) {
              return QJsonObject { { "id", id }, { "type", type }, { "provider", "p" }, { "displayName", display },
                  { "username", user }, { "status", status } };
          };
    session.setAuth("t", "d");
    EXPECT_EQ(page.stateText(), "Not asked yet");
    answer({ "w1" },
        { integration("1", "SHOP_FRONT", "Shop", "ana", "CONNECTED"), integration("2", "SMS", "", "ana", "CONNECTED"),
            integration("3", "TV", "", "", "NEEDS_LOGIN"), integration("4", "", "", "", "") });
    refresh();
    EXPECT_EQ(page.integrations(),
        (QList<IntegrationLine> { { "Shop", "Shop front · p", "Connected", true },
            { "ana", "Sms · p", "Connected", true }, { "", " · p", "", false },
            { "Tv", "Tv · p", "Needs login", false } }));
}

TEST_F(WebSettingsTest, workspacesAreFoundByTheirNameAndAnEmptyOneIsNotKept)
{
    m_db->exec("INSERT INTO unified_conversation(id, workspace_id, channel, last_ts) VALUES('a','w7','SMS',1);");
    QList<WorkspaceRow> rows;
    for (int i = 0; i < 10'000; ++i)
        rows.append({ u"w%1"_s.arg(i), u"Studio %1"_s.arg(i), {}, "o", "Org", {}, false });
    storeWorkspaceRows(*m_db, rows, "w7");
    sync.takeUp();
    EXPECT_EQ(page.workspaceText(), "Org · Studio 7");
    EXPECT_EQ(page.workspaces().size(), 8);
    EXPECT_TRUE(page.workspaces().first().selected);
    EXPECT_EQ(page.moreText(), "9,992 more: type a part of the name.");
    page.setQuery("STUDIO 999");
    EXPECT_EQ(page.workspaces().first().id, "w999");
    page.choose("w999");
    EXPECT_EQ(page.workspaceHint(), "Org · Studio 999 holds no conversations yet, so Org · Studio 7 stays in use.");
    page.setQuery("nowhere");
    EXPECT_EQ(page.moreText(), "No workspace has that name.");
}

TEST_F(WebSettingsTest, aWorkspaceWithConversationsIsTakenIntoUse)
{
    session.setAuth("t", "d");
    answer({ "w1", "w2" });
    refresh();
    m_db->exec("INSERT INTO unified_conversation(id, workspace_id, channel, last_ts)"
               " VALUES('a','w1','SMS',1),('b','w2','SMS',1);");
    page.choose("w2");
    EXPECT_EQ(page.workspaceText(), "Org · Studio w2");
    EXPECT_EQ(page.workspaceHint(), "");
    EXPECT_EQ(page.workspaces().first(), (WorkspaceChoice { "w2", "Org · Studio w2", true }));
}

TEST_F(WebSettingsTest, aWorkspaceThatTheWebNoLongerHasStaysInUse)
{
    m_db->exec("INSERT INTO unified_conversation(id, channel, last_ts) VALUES('a','SMS',1);");
    session.setAuth("t", "d");
    QStringList names { "w1", "w2", "w3", "w4", "w5", "w6", "w7", "w8" };
    answer(names);
    refresh();
    EXPECT_EQ(sync.selectedWorkspaceId(), "w1");
    EXPECT_EQ(page.workspaceHint() + page.moreText(), "");
    EXPECT_FALSE(page.searchable());
    page.choose("w2");
    EXPECT_EQ(page.workspaceHint(), "Org · Studio w2 holds no conversations yet, so Org · Studio w1 stays in use.");
    page.choose("w1");
    EXPECT_EQ(page.workspaceHint(), "");
    page.choose("w2");
    answer(names << "w9");
    refresh();
    EXPECT_EQ(page.workspaceHint(), "");
    EXPECT_TRUE(page.searchable());
    EXPECT_EQ(page.moreText(), "1 more: type a part of the name.");
    QSignalSpy changed(&page, &WebSettings::changed);
    page.setQuery("");
    EXPECT_EQ(changed.size(), 0);
    page.setQuery("w9");
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(page.workspaces(), (QList<WorkspaceChoice> { { "w9", "Org · Studio w9", false } }));
    EXPECT_EQ(page.moreText(), "");

    answer({ "w2" });
    refresh();
    EXPECT_EQ(page.workspaceText(), "w1");
    EXPECT_EQ(page.workspaceHint(), "The web no longer has this workspace. Its local data is kept and still shown.");
}

}
