#include "Store/Assistant/ControlChat.h"

#include "Store/Work/DigestQueries.h"
#include "Support/StoreTest.h"

namespace corvane {

/// Conversations with and without a title or contact, archived, deleted and in another workspace.
class ControlChatTest : public StoreTest {
protected:
    ControlChatTest()
    {
        open();
        m_db->exec(
            "INSERT INTO contact(id, workspace_id, display_name) VALUES('ana','local','Ana'),('mute','local','');"
            "INSERT INTO unified_conversation(id, workspace_id, channel, account_id, external_id, title, "
            "contact_id, last_ts, unread, archived_at, deleted_at) VALUES"
            "('nameless','local','SMS','s','+34','',NULL,1,0,NULL,NULL),"
            "('titled','local','EMAIL','e','x','Orders','mute',2,3,NULL,NULL),"
            "('archived','local','EMAIL','e','y','Old',NULL,3,1,1,NULL),"
            "('ana1','local','WHATSAPP','w','z','+34 1','ana',4,0,NULL,NULL),"
            "('gone','local','WHATSAPP','w','g','Gone',NULL,5,1,NULL,1),"
            "('elsewhere','other','WHATSAPP','w','o','Other',NULL,6,1,NULL,NULL);"
            "INSERT INTO unified_message(id, workspace_id, conversation_id, body, ts, deleted_at) VALUES"
            "('1','local','titled','older',1,NULL),('2','local','titled','newest',2,NULL),"
            "('3','local','titled','taken back',3,1);");
    }
};

TEST_F(ControlChatTest, anyConversationCanBeChosenAndTheChoiceIsKept)
{
    EXPECT_EQ(fetchApprovalControlChats(*m_db, 50),
        (QList<ApprovalControlChat> { { "ana1", "Ana", "WHATSAPP", "w" }, { "archived", "Old", "EMAIL", "e" },
            { "titled", "Orders", "EMAIL", "e" }, { "nameless", "+34", "SMS", "s" } }));
    EXPECT_EQ(fetchApprovalControlChats(*m_db, 1).size(), 1);

    EXPECT_EQ(approvalsControlChatId(*m_db), "");
    EXPECT_TRUE(setApprovalsControlChatId(*m_db, "titled"));
    EXPECT_TRUE(setApprovalsControlChatId(*m_db, "ana1"));
    open();
    EXPECT_EQ(approvalsControlChatId(*m_db), "ana1");
    EXPECT_EQ(cell("SELECT updated_at FROM engine_settings;"), isoTime(m_clock.nowMs()));
}

TEST_F(ControlChatTest, theGlanceShowsUnreadOnesFirst)
{
    EXPECT_EQ(fetchInboxGlance(*m_db, 50),
        (QList<InboxGlanceRow> { { "titled", "mute", "Orders", "EMAIL", "newest", 3, 2 },
            { "ana1", "ana", "Ana", "WHATSAPP", "", 0, 4 }, { "nameless", "", "+34", "SMS", "", 0, 1 } }));
    EXPECT_EQ(fetchInboxGlance(*m_db, 1).size(), 1);
}

}
