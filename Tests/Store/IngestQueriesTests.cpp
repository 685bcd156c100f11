#include "Foundation/Literals.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/CrmQueue.h"
#include "Support/StoreTest.h"

#include <QJsonObject>

namespace corvane {

class IngestTest : public StoreTest {
protected:
    IngestTest() { open(); }

    QString store(const IncomingMessage& incoming)
    {
        return storeMessage(*m_db, "WHATSAPP", "main", incoming)->conversationId;
    }
};

TEST_F(IngestTest, aMessageMakesItsConversationContactAndIdentity)
{
    IncomingMessage incoming;
    incoming.conversationExternalId = "34600@s.whatsapp.net";
    incoming.providerMsgId = "A1";
    incoming.body = "hi";
    incoming.ts = 1000;
    incoming.conversationTitle = "Ana";
    incoming.sender = "Ana R.";
    EXPECT_EQ(store(incoming), "wa:main:34600@s.whatsapp.net");
    const QString now = QString::number(m_clock.nowMs());
    EXPECT_EQ(table("SELECT id, workspace_id, channel, account_id, external_id, title, contact_id, last_ts, unread, "
                    "updated_at FROM unified_conversation"),
        QStringList { "wa:main:34600@s.whatsapp.net|local|WHATSAPP|main|34600@s.whatsapp.net|Ana|"
                      "ct:WHATSAPP:34600@s.whatsapp.net|1000|0|"
            + now });
    EXPECT_EQ(table("SELECT id, workspace_id, display_name, updated_at FROM contact"),
        QStringList { "ct:WHATSAPP:34600@s.whatsapp.net|local|Ana|" + now });
    EXPECT_EQ(table("SELECT id, workspace_id, contact_id, channel, handle, email, phone, updated_at FROM "
                    "contact_identity"),
        QStringList { "id:WHATSAPP:34600@s.whatsapp.net|local|ct:WHATSAPP:34600@s.whatsapp.net|WHATSAPP|"
                      "34600@s.whatsapp.net|-|34600|"
            + now });
    EXPECT_EQ(table("SELECT id, workspace_id, conversation_id, direction, body, sender, ts, provider_msg_id, "
                    "media_type, media_path, source, updated_at, status FROM unified_message"),
        QStringList { "wa:msg:A1|local|wa:main:34600@s.whatsapp.net|IN|hi|Ana R.|1000|A1|-|-|local|" + now + "|-" });
    incoming.conversationTitle = std::nullopt;
    store(incoming);
    EXPECT_EQ(cell("SELECT display_name FROM contact;"), "34600@s.whatsapp.net")
        << "without a title the handle is the name";
    for (const QString& title : { "Ana", "" }) {
        incoming.conversationTitle = title;
        store(incoming);
        EXPECT_EQ(cell("SELECT display_name FROM contact;"), "Ana");
    }
    EXPECT_EQ(m_log.lines(), QStringList());
}

TEST_F(IngestTest, aHandleTellsAnAddressOrANumber)
{
    EXPECT_EQ(matchSignals("EMAIL", " Ana@Example.COM ").email, u"ana@example.com"_s);
    EXPECT_EQ(matchSignals("GMAIL", "thread-1").email, std::nullopt);
    EXPECT_EQ(matchSignals("WHATSAPP", "34600111@s.whatsapp.net").phone, u"34600111"_s);
    EXPECT_EQ(matchSignals("WHATSAPP", "34600:7@s.whatsapp.net").phone, u"346007"_s);
    EXPECT_EQ(matchSignals("WHATSAPP", "x@s.whatsapp.net").phone, std::nullopt);
    EXPECT_EQ(matchSignals("WHATSAPP", "123-456@g.us").phone, std::nullopt);
    EXPECT_EQ(matchSignals("WHATSAPP", "99@lid").phone, std::nullopt);
    EXPECT_EQ(matchSignals("TELEGRAM", "ana@example.com").email, std::nullopt);
}

TEST_F(IngestTest, theNewestMessageTimeIsPerChannel)
{
    EXPECT_EQ(newestConversationTimestamp(*m_db, "EMAIL"), 0);
    ensureConversation(*m_db, "EMAIL", "mail", "a@b.c", std::nullopt, 700);
    ensureConversation(*m_db, "EMAIL", "mail", "d@e.f", std::nullopt, 900);
    ensureConversation(*m_db, "LINKEDIN", "li", "x", std::nullopt, 2000);
    EXPECT_EQ(newestConversationTimestamp(*m_db, "EMAIL"), 900);
    m_db->exec("UPDATE unified_conversation SET deleted_at=1 WHERE external_id='d@e.f';");
    EXPECT_EQ(newestConversationTimestamp(*m_db, "EMAIL"), 700);
    m_db->exec("DROP TABLE unified_conversation;");
    EXPECT_EQ(newestConversationTimestamp(*m_db, "EMAIL"), 0);
}

TEST_F(IngestTest, editsThatWaitForTheWebBecomeOne)
{
    recordCRMMutation(*m_db, "task", "tk:1", "update", "native-ui", { { "title", "one" } });
    m_db->exec("UPDATE crm_mutation_queue SET error='offline';");
    const QString id = cell("SELECT id FROM crm_mutation_queue;");
    m_clock.advance(seconds(1));
    recordCRMMutation(*m_db, "task", "tk:1", "update", "native-ui", { { "title", "two" }, { "due", "" } });
    const QString columns = "SELECT id, idempotency_key, payload_json, status, attempts, error, created_at, updated_at "
                            "FROM crm_mutation_queue ORDER BY created_at";
    const qint64 now = m_clock.nowMs();
    EXPECT_EQ(table(columns),
        QStringList { id + "|local:task:tk:1:update:native-ui|{\"due\":\"\",\"title\":\"two\"}|pending|0|-|"
            + u"%1|%2"_s.arg(now - 1000).arg(now) });
    m_db->exec("UPDATE crm_mutation_queue SET status='sent';");
    m_clock.advance(seconds(1));
    recordCRMMutation(*m_db, "task", "tk:1", "update", "native-ui", {});
    EXPECT_EQ(table(columns).size(), 2);
}

}
