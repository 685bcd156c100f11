#include "Foundation/Literals.h"
#include "Store/Core/Workspaces.h"
#include "Store/Messages/InboxQueries.h"
#include "Support/StoreTest.h"

namespace corvane {

class WorkspacesTest : public StoreTest {
protected:
    WorkspacesTest() { open(); }

    void addConversations(const QString& workspace, int count, qint64 lastTs)
    {
        for (int index = 0; index < count; ++index) {
            m_db->run("INSERT INTO unified_conversation(id, workspace_id, channel, external_id, last_ts) "
                      "VALUES(?,?,'SMS',?,?);",
                { u"%1/%2"_s.arg(workspace).arg(index), workspace, QString::number(index), lastTs });
        }
    }

    void select(const char* workspace)
    {
        persistActiveWorkspace(*m_db, QString::fromUtf8(workspace), std::nullopt, LegacyRows::Keep);
    }

    QString row() { return cell("SELECT workspace_id FROM sync_workspace_selection WHERE key='active';"); }
    QString copy() { return m_defaults.text("nimb.activeWorkspaceId").value_or("-"); }
    QStringList selection() { return { row(), copy() }; }

    static WorkspaceRow workspace(const char* id, bool isDefault = false)
    {
        const QString text = QString::fromUtf8(id);
        return { text, text.toUpper(), text, "org-" + text, "Org", "org", isDefault };
    }
};

TEST_F(WorkspacesTest, theFirstStartSettlesOnLocalInBothPlaces)
{
    EXPECT_EQ(activeWorkspaceId(*m_db), "local");
    EXPECT_EQ(selection(), (QStringList { "local", "local" }));
    EXPECT_EQ(cell("SELECT updated_at FROM sync_workspace_selection;"), QString::number(m_clock.nowMs()));
    EXPECT_EQ(UserDefaults(m_home.paths().defaultsFile).text("nimb.activeWorkspaceId"), u"local"_s);
    addConversations("local", 1, 5);
    select("w1");
    EXPECT_EQ(selectWorkspace(*m_db, "  "), "local");
    EXPECT_EQ(cell("SELECT workspace_id FROM unified_conversation;"), "local") << "choosing local moves nothing";
}

TEST_F(WorkspacesTest, theRowWinsOverTheCopyAndTheCopyOverNothing)
{
    select("w1");
    m_defaults.setText("nimb.activeWorkspaceId", "w2");
    EXPECT_EQ(activeWorkspaceId(*m_db), "w1");
    EXPECT_EQ(copy(), "w1");
    m_db->exec("DELETE FROM sync_workspace_selection;");
    EXPECT_EQ(activeWorkspaceId(*m_db), "w1");
    EXPECT_EQ(row(), "w1");
    m_db->exec("UPDATE sync_workspace_selection SET workspace_id=' \n';");
    EXPECT_EQ(activeWorkspaceId(*m_db), "local");
    EXPECT_EQ(selection(), (QStringList { "local", "local" }));
    m_db->exec("UPDATE sync_workspace_selection SET workspace_id=' w3 ';"); // as written by another process
    m_db->exec("BEGIN;");
    EXPECT_EQ(activeWorkspaceId(*m_db), "w3");
    EXPECT_TRUE(m_db->inTransaction()) << "whoever began it ends it";
    m_db->exec("COMMIT;");
    EXPECT_EQ(row(), "w3");
}

TEST_F(WorkspacesTest, anEmptyWorkspaceIsLeftForTheFullestOnceAndWithANotice)
{
    m_db->exec("INSERT INTO sync_workspace(workspace_id, workspace_name, org_id, org_name, updated_at) "
               "VALUES('five','Five people','o5','Org',0);");
    addConversations("three", 3, 900);
    addConversations("five", 5, 100);
    select("empty");
    EXPECT_EQ(activeWorkspaceId(*m_db, Repair::No), "empty");
    EXPECT_EQ(activeWorkspaceId(*m_db), "five");
    EXPECT_EQ(selection(), (QStringList { "five", "five" }));
    EXPECT_EQ(cell("SELECT org_id FROM sync_workspace_selection;"), "o5");
    EXPECT_EQ(consumeWorkspaceSelectionNotice(*m_db), u"Workspace changed — showing Five people"_s);
    EXPECT_EQ(consumeWorkspaceSelectionNotice(*m_db), std::nullopt);
    EXPECT_EQ(activeWorkspaceId(*m_db), "five");
    EXPECT_EQ(consumeWorkspaceSelectionNotice(*m_db), std::nullopt);

    m_db->exec("UPDATE unified_conversation SET deleted_at=1 WHERE workspace_id='five';");
    EXPECT_EQ(activeWorkspaceId(*m_db), "three"); // known only from its rows
    EXPECT_EQ(consumeWorkspaceSelectionNotice(*m_db), u"Workspace changed — showing three"_s);
}

TEST_F(WorkspacesTest, theNewestMessageBreaksATieAndNothingElsewhereMeansStay)
{
    select("empty");
    EXPECT_EQ(activeWorkspaceId(*m_db), "empty");
    addConversations("old", 2, 100);
    addConversations("new", 2, 200);
    EXPECT_EQ(activeWorkspaceId(*m_db), "new");
}

TEST_F(WorkspacesTest, everyChangeIsAnnouncedOnceAfterBothPlacesHoldIt)
{
    QStringList heard;
    const auto observation = m_centre.observe(notifications::activeWorkspaceChanged, [&](const Notification& note) {
        EXPECT_EQ(note.object, std::nullopt);
        EXPECT_FALSE(m_db->inTransaction());
        heard.append(selection().join(u'+'));
    });
    selectWorkspace(*m_db, "w1");
    selectWorkspace(*m_db, "w1");
    EXPECT_EQ(heard, (QStringList { "w1+w1" }));
    addConversations("local", 1, 5);
    selectWorkspace(*m_db, "w1");
    EXPECT_EQ(heard.size(), 2) << "the same workspace, but more rows";
    m_defaults.setText("nimb.activeWorkspaceId", "stale");
    activeWorkspaceId(*m_db);
    EXPECT_EQ(heard.size(), 2);
}

TEST_F(WorkspacesTest, aSelectionThatCannotBeWrittenNeverTurnsInCircles)
{
    m_db->exec("CREATE TRIGGER refuse BEFORE INSERT ON sync_workspace_selection "
               "BEGIN SELECT RAISE(ABORT, 'no'); END;");
    int reloads = 0;
    const auto observation = m_centre.observe(notifications::activeWorkspaceChanged, [&](const Notification&) {
        if (++reloads < 100)
            fetchContacts(*m_db, InboxFilter::All, {}, 300);
    });
    EXPECT_EQ(activeWorkspaceId(*m_db), "local");
    EXPECT_EQ(reloads, 0);
    EXPECT_FALSE(m_db->inTransaction());
}

TEST_F(WorkspacesTest, choosingARealWorkspacePullsTheLocalRowsIn)
{
    m_db->exec(R"(
INSERT INTO contact(id, display_name) VALUES('web:contact:7','Ana'), ('ct:SMS:1','Bo');
INSERT INTO contact_identity(id, contact_id) VALUES('i','web:contact:7');
INSERT INTO contact_note(id, contact_id) VALUES('n','web:contact:7');
INSERT INTO company(id) VALUES('web:company:3');
INSERT INTO deal(id, contact_id) VALUES('web:deal:9','web:contact:7');
INSERT INTO unified_conversation(id, channel, external_id, contact_id, last_ts)
  VALUES('web:WHATSAPP:123','WHATSAPP','123','web:contact:7',5), ('wa:main:456','WHATSAPP','456','ct:SMS:1',6);
INSERT INTO unified_message(id, conversation_id) VALUES('m1','web:WHATSAPP:123'), ('m2','wa:main:456');
INSERT INTO call_recording(id, contact_id, conversation_id, started_at, created_at, updated_at)
  VALUES('call','web:contact:7','web:WHATSAPP:123',1,1,1);
INSERT INTO crm_update_proposal(id, call_id, contact_id, deal_id, kind, title, payload_json, created_at, updated_at)
  VALUES('p','call','web:contact:7','web:deal:9','note','t','{}',1,1);
INSERT INTO crm_task(id, title, contact_id) VALUES('tk:1','call back','web:contact:7');
INSERT INTO crm_deal(id, contact_id) VALUES('dl:1','web:contact:7');
INSERT INTO contact_tag(id, contact_id, tag) VALUES('t','web:contact:7','vip');
INSERT INTO contact_merge(id, workspace_id, primary_contact_id, merged_contact_id, conv_ids_json, created_at)
  VALUES('mg','local','web:contact:7','web:contact:8','["wa:main:456","web:WHATSAPP:123"]',1);
INSERT INTO outbound_draft(id, conversation_id, channel, account_id, external_id, body, created_at, updated_at)
  VALUES('od','web:WHATSAPP:123','WHATSAPP','main','123','hello',1,1);
INSERT INTO draft_metadata(id, contact_id, conversation_id, intent, created_at)
  VALUES('dm','web:contact:7','web:WHATSAPP:123','draft_reply',1);
INSERT INTO work_memory_entries(id, scope) VALUES('m','contact:web:contact:7'), ('b','business');)");
    EXPECT_EQ(selectWorkspace(*m_db, " w1\n", u"o1"_s), "w1");
    EXPECT_EQ(table("SELECT id, workspace_id, contact_id FROM unified_conversation ORDER BY id"),
        (QStringList { "wa:main:456|w1|ct:SMS:1", "web:w1:WHATSAPP:123|w1|web:w1:contact:7" }));
    EXPECT_EQ(table("SELECT id, conversation_id, workspace_id FROM unified_message ORDER BY id"),
        (QStringList { "m1|web:w1:WHATSAPP:123|w1", "m2|wa:main:456|w1" }));
    EXPECT_EQ(table("SELECT id, workspace_id FROM contact ORDER BY id"),
        (QStringList { "ct:SMS:1|w1", "web:w1:contact:7|w1" }));
    EXPECT_EQ(table("SELECT contact_id FROM contact_identity UNION ALL SELECT contact_id FROM contact_note"),
        (QStringList { "web:w1:contact:7", "web:w1:contact:7" }));
    EXPECT_EQ(table("SELECT id, contact_id FROM deal"), QStringList { "web:w1:deal:9|web:w1:contact:7" });
    EXPECT_EQ(cell("SELECT id FROM company;"), "web:w1:company:3");
    EXPECT_EQ(table("SELECT workspace_id, contact_id FROM crm_task UNION ALL SELECT workspace_id, contact_id FROM "
                    "crm_deal UNION ALL SELECT workspace_id, contact_id FROM contact_tag"),
        QStringList(3, "w1|web:w1:contact:7"));
    EXPECT_EQ(table("SELECT workspace_id, primary_contact_id, merged_contact_id, conv_ids_json FROM contact_merge"),
        QStringList { R"(w1|web:w1:contact:7|web:w1:contact:8|["wa:main:456","web:w1:WHATSAPP:123"])" });
    EXPECT_EQ(table("SELECT conversation_id, contact_id FROM draft_metadata UNION ALL SELECT conversation_id, "
                    "external_id FROM outbound_draft"),
        (QStringList { "web:w1:WHATSAPP:123|web:w1:contact:7", "web:w1:WHATSAPP:123|123" }));
    EXPECT_EQ(table("SELECT scope FROM work_memory_entries ORDER BY id"),
        (QStringList { "business", "contact:web:w1:contact:7" }));
    EXPECT_EQ(table("SELECT contact_id, conversation_id, workspace_id FROM call_recording"),
        QStringList { "web:w1:contact:7|web:w1:WHATSAPP:123|w1" });
    EXPECT_EQ(
        table("SELECT contact_id, deal_id FROM crm_update_proposal"), QStringList { "web:w1:contact:7|web:w1:deal:9" });
    EXPECT_EQ(cell("SELECT org_id FROM sync_workspace_selection;"), "o1");
    EXPECT_EQ(table("SELECT * FROM pragma_foreign_key_check"), QStringList());
    EXPECT_EQ(m_log.lines(), QStringList());
    EXPECT_FALSE(m_db->inTransaction());
}

TEST_F(WorkspacesTest, aDanglingReferenceDoesNotKeepTheTransactionOpen)
{
    m_db->exec("INSERT INTO contact(id) VALUES('web:contact:7');"
               "INSERT INTO call_recording(id, workspace_id, contact_id, started_at, created_at, updated_at)"
               " VALUES('call','another','web:contact:7',1,1,1);");
    EXPECT_EQ(selectWorkspace(*m_db, "w1"), "w1");
    EXPECT_FALSE(m_db->inTransaction());
    open();
    EXPECT_EQ(cell("SELECT id FROM contact;"), "web:w1:contact:7");
    EXPECT_EQ(row(), "w1");
}

TEST_F(WorkspacesTest, theWebsListIsKeptAndSettlesTheSelection)
{
    addConversations("local", 1, 5);
    EXPECT_EQ(storeWorkspaceRows(*m_db, { workspace("a"), workspace("b", true), workspace("c") }, std::nullopt), "b");
    EXPECT_EQ(cell("SELECT workspace_id FROM unified_conversation;"), "b");
    EXPECT_EQ(storeWorkspaceRows(*m_db, { workspace("a"), workspace("b") }, u"a"_s), "b"); // already in use
    EXPECT_EQ(table("SELECT workspace_id, workspace_name, org_id, is_default FROM sync_workspace ORDER BY 1"),
        (QStringList { "a|A|org-a|0", "b|B|org-b|0", "c|C|org-c|0" }));
    EXPECT_EQ(storeWorkspaceRows(*m_db, {}, u"a"_s), "b");

    m_db->exec("DELETE FROM unified_conversation;");
    select("gone");
    EXPECT_EQ(storeWorkspaceRows(*m_db, { workspace("a"), workspace("b", true) }, u"a"_s), "a"); // preferred
    select("gone");
    EXPECT_EQ(storeWorkspaceRows(*m_db, { workspace("c"), workspace("d") }, u"z"_s), "c"); // the first
}

TEST_F(WorkspacesTest, thePickersListIsInTheOrderOfItsNames)
{
    m_db->exec("INSERT INTO sync_workspace(workspace_id, workspace_name, org_id, org_name, is_default, updated_at)"
               " VALUES('1','beta','o','acme',0,0), ('2','Alpha','o','Acme',0,0), ('3','zeta','o','ACME',1,0),"
               " ('4','x','p','Aardvark',0,0);");
    QStringList names;
    for (const WorkspaceRow& each : fetchWorkspaceRows(*m_db))
        names.append(each.displayName());
    EXPECT_EQ(names, (QStringList { "Aardvark · x", "ACME · zeta", "Acme · Alpha", "acme · beta" }));
    EXPECT_EQ((WorkspaceRow { "w", {}, {}, {}, {}, {}, false }).displayName(), "w");
}

}
