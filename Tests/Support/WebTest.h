#pragma once

#include "Platform/Keychain.h"
#include "Store/Core/Workspaces.h"
#include "Support/Await.h"
#include "Support/DemoWeb.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/StoreTest.h"
#include "Web/SessionStore.h"

namespace corvane {

/// A real database, a fake web service and a signed-in user.
class WebTest : public StoreTest {
protected:
    WebTest()
    {
        activeWorkspaceId(open());
        m_defaults.setText("nimb.apiBaseUrl", web.base());
        session.signIn("ana@ruiz.example", "secret");
        EXPECT_TRUE(await([this] { return session.signedIn() && !session.busy(); }))
            << session.lastErrorText().toStdString();
    }

    void addChat(const QString& id, const QString& account, int messages)
    {
        m_db->run("INSERT INTO unified_conversation(id, channel, account_id, external_id, title, last_ts) "
                  "VALUES(?1,'WHATSAPP',?2,?1,'Chat ' || ?1,?3);",
            { id, account, messages });
        m_db->run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<?3)"
                  "INSERT INTO unified_message(id, conversation_id, direction, body, ts, reaction)"
                  " SELECT ?1 || '-' || i, ?1, CASE i%2 WHEN 0 THEN 'IN' ELSE 'OUT' END, 'hello ' || i, i, 'x' FROM n "
                  "WHERE ?3>0;",
            { id, account, messages });
    }

    DemoWeb web;
    FakeKeyring keyring;
    Keychain keychain { keyring, m_home.paths().secretsFile(), m_clock };
    FakeDesktop desktop;
    SessionStore session { m_home.paths(), keychain, m_defaults, desktop, m_clock };
};

}
