#include "Foundation/Literals.h"
#include "Store/Assistant/DraftQueries.h"
#include "Store/Messages/AudioTranscripts.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Messages/ThreadQueries.h"
#include "Store/People/IdentityQueries.h"
#include "Support/StoreTest.h"

#include <algorithm>

namespace corvane {

namespace {

class MessageRowsTest : public StoreTest {
protected:
    MessageRowsTest() { open(); }

    StoredMessage store(
        const QString& id, const QString& account, const QString& chat, qint64 ts, bool outgoing = false)
    {
        IncomingMessage incoming;
        incoming.conversationExternalId = chat;
        incoming.providerMsgId = id;
        incoming.body = "body of " + id;
        incoming.ts = ts;
        incoming.outgoing = outgoing;
        return storeMessage(*m_db, "SMS", account, incoming).value();
    }

    /// The unread counts, newest conversation first.
    QString unread()
    {
        return m_db
            ->rows("SELECT unread FROM unified_conversation ORDER BY last_ts DESC;", {},
                [](const SqlRow& row) { return QString::number(row.integer(0)); })
            .join(' ');
    }
};

}

TEST_F(MessageRowsTest, anEngineChangesOnlyMessagesOfItsOwnAccount)
{
    EXPECT_TRUE(store("p", "a", "1", 100).isNew);
    EXPECT_FALSE(store("p", "a", "1", 100).isNew);
    EXPECT_EQ(messageIdOf(*m_db, "a", "p"), "wa:msg:p");
    EXPECT_EQ(messageIdOf(*m_db, "b", "p"), "wa:msg:b:p") << "the id is taken";
    EXPECT_EQ(messageIdOf(*m_db, "b", "q"), "wa:msg:q");
    EXPECT_TRUE(store("p", "b", "9", 200, true).isNew);
    raiseMessageStatus(*m_db, "a", "p", 3);
    raiseMessageStatus(*m_db, "a", "p", 2);
    raiseMessageStatus(*m_db, "c", "p", 4);
    setProviderReaction(*m_db, "b", "p", u"👍"_s);
    updateMessageMedia(*m_db, "a", "p", "image", "/x");
    updateMessageMedia(*m_db, "a", "p", {}, "/y");
    EXPECT_EQ(table("SELECT id, direction, body, status, reaction, media_type, media_path FROM unified_message "
                    "ORDER BY ts"),
        (QStringList { "wa:msg:p|IN|body of p|3|-|image|/y", u"wa:msg:b:p|OUT|body of p|-|👍|-|-"_s }));
    deleteMessageLocal(*m_db, "wa:msg:p");
    EXPECT_EQ(fetchUnifiedThread(*m_db, "ct:SMS:1", 9).size(), 0);
    EXPECT_EQ(cell("SELECT deleted_at=updated_at FROM unified_message WHERE id='wa:msg:p';"), "1");
    restoreMessageLocal(*m_db, "wa:msg:p");
    EXPECT_EQ(fetchUnifiedThread(*m_db, "ct:SMS:1", 9).size(), 1);

    EXPECT_TRUE(storeAudioTranscript(*m_db, { "wa:msg:p", "/y", "one", "tiny" }));
    EXPECT_TRUE(storeAudioTranscript(*m_db, { "wa:msg:p", "", "two", "base" }));
    EXPECT_EQ(table("SELECT message_id, workspace_id, audio_path, transcript, model FROM audio_transcript"),
        QStringList("wa:msg:p|local|/y|two|base"));
}

TEST_F(MessageRowsTest, whatIsUnreadIsCountedByPersonAndMarkedAtTheNewest)
{
    const QString older = store("p", "a", "1", 100).conversationId;
    const QString newer = store("q", "b", "2", 200).conversationId;
    m_db->exec("UPDATE unified_conversation SET contact_id='ct:SMS:1';");
    EXPECT_EQ(unreadOf(*m_db, "nobody"), std::nullopt);
    EXPECT_EQ(unreadOf(*m_db, "ct:SMS:1"), 0);
    markUnread(*m_db, "ct:SMS:1");
    EXPECT_EQ(unread(), "1 0");
    raiseUnread(*m_db, older);
    raiseUnread(*m_db, older);
    raiseUnread(*m_db, older);
    lowerUnread(*m_db, older, 5);
    EXPECT_EQ(unread() + ": " + QString::number(*unreadOf(*m_db, "ct:SMS:1")), "1 3: 4");
    lowerUnread(*m_db, older, 2);
    EXPECT_EQ(unread(), "1 2");
    lowerUnread(*m_db, newer, 0);
    markUnread(*m_db, "ct:SMS:1");
    EXPECT_EQ(unread(), "0 2") << "one is unread already";
    markRead(*m_db, "ct:SMS:1");
    m_db->run("UPDATE unified_conversation SET archived_at=1 WHERE id=?;", { newer });
    markUnread(*m_db, "ct:SMS:1");
    EXPECT_EQ(unread(), "0 1") << "before one that is put away";
    EXPECT_FALSE(isMuted(*m_db, "ct:SMS:1"));
    setMuted(*m_db, "ct:SMS:1", true);
    EXPECT_TRUE(isMuted(*m_db, "ct:SMS:1"));
    setMuted(*m_db, "ct:SMS:1", false);
    EXPECT_FALSE(isMuted(*m_db, "ct:SMS:1"));
    EXPECT_FALSE(isMuted(*m_db, "nobody"));
}

TEST_F(MessageRowsTest, manyAreArchivedTogetherAndRestoredAsTheyWere)
{
    store("p", "a", "1", 100);
    store("q", "a", "2", 200);
    store("r", "a", "3", 300);
    const QStringList both { "ct:SMS:1", "ct:SMS:2" };
    const auto archived = [&] {
        return table("SELECT archived_at FROM unified_conversation ORDER BY external_id").join(',');
    };
    archiveContact(*m_db, "ct:SMS:1");
    const QString then = QString::number(m_clock.nowMs());
    const QList<ArchivedConversation> before = fetchArchived(*m_db, both);
    ASSERT_EQ(before.size(), 2);
    m_clock.advance(Milliseconds(5));
    EXPECT_TRUE(setArchived(*m_db, both, true));
    const QString now = QString::number(m_clock.nowMs());
    EXPECT_EQ(archived(), now + ',' + now + ",-");
    EXPECT_TRUE(restoreArchived(*m_db, before));
    EXPECT_EQ(archived(), then + ",-,-");
    EXPECT_TRUE(setArchived(*m_db, both, false));
    EXPECT_EQ(archived(), "-,-,-");
    m_db->close();
    EXPECT_FALSE(setArchived(*m_db, both, true)) << "a file that is closed takes nothing";
    EXPECT_FALSE(restoreArchived(*m_db, before));
    ASSERT_TRUE(m_db->reopen());
    EXPECT_EQ(archived(), "-,-,-");
}

TEST_F(MessageRowsTest, aPersonIsFoundByMessageConversationAndSign)
{
    const QString first = store("p", "a", "1", 100).conversationId;
    const QString second = store("q", "b", "1", 200, true).conversationId;
    store("r", "a", "2", 150);
    m_db->exec("UPDATE unified_message SET status=2, media_type='image' WHERE id='wa:msg:q';");
    EXPECT_EQ(contactOfMessage(*m_db, "wa:msg:q"), "ct:SMS:1");
    EXPECT_EQ(contactOfMessage(*m_db, "none"), "");
    EXPECT_EQ(contactOfConversation(*m_db, first) + contactOfConversation(*m_db, "none"), "ct:SMS:1");
    EXPECT_EQ(newestConversation(*m_db, "ct:SMS:1"), second);
    EXPECT_EQ(newestConversation(*m_db, "none"), std::nullopt);
    EXPECT_EQ(fetchContact(*m_db, "ct:SMS:1")->snippet, "body of q");
    EXPECT_FALSE(fetchContact(*m_db, "none"));
    const QHash<QString, LastMessage> last = fetchLastMessages(*m_db, { "ct:SMS:1", "ct:SMS:2", "none" });
    EXPECT_EQ(last.size(), 2);
    const LastMessage newest = last.value("ct:SMS:1");
    EXPECT_EQ(newest.direction + newest.channel + newest.mediaType + QString::number(newest.status), "OUTSMSimage2");
    EXPECT_EQ(last.value("ct:SMS:2").direction, "IN");
    EXPECT_TRUE(fetchLastMessages(*m_db, {}).isEmpty());

    ensureContactId(*m_db, "EMAIL", "Ana@x.example", u"Ana"_s);
    ensureContactId(*m_db, "GMAIL", "ana@x.example", u"Ana too"_s);
    ensureContactId(*m_db, "EMAIL", "no address", {});
    EXPECT_EQ(fetchPairsSharing(*m_db, SharedSign::Email),
        (QList<std::pair<QString, QString>> { { "ct:EMAIL:Ana@x.example", "ct:GMAIL:ana@x.example" } }));
    EXPECT_TRUE(fetchPairsSharing(*m_db, SharedSign::Phone).isEmpty());
    m_db->exec("UPDATE contact_identity SET phone='34' WHERE channel<>'GMAIL';");
    EXPECT_EQ(fetchPairsSharing(*m_db, SharedSign::Phone).size(), 6) << "of four";
    QStringList people;
    for (const PersonName& person : fetchPeopleWithConversations(*m_db))
        people.append(person.id + '=' + person.name);
    people.sort();
    EXPECT_EQ(people, (QStringList { "ct:SMS:1=1", "ct:SMS:2=2" })) << "nobody without a conversation";
    setContactName(*m_db, "ct:SMS:1", "Ana Ruiz");
    EXPECT_EQ(fetchContactLinks(*m_db),
        (QList<ContactLink> { { "ct:SMS:1", "Ana Ruiz", "SMS" }, { "ct:SMS:2", "2", "SMS" } }));
    EXPECT_EQ(table("SELECT entity_type, entity_id, action, origin, payload_json FROM crm_mutation_queue"),
        QStringList(R"(contact|ct:SMS:1|update|local-contact-name|{"display_name":"Ana Ruiz"})"));
    setContactAvatar(*m_db, "ct:SMS:1", "/a.png");
    EXPECT_EQ(fetchContact(*m_db, "ct:SMS:1")->avatarPath, "/a.png");
}

TEST_F(MessageRowsTest, aDraftRemembersWhatItWasMadeOf)
{
    EXPECT_EQ(memorySnapshot(*m_db), "");
    m_db->exec("INSERT INTO work_memory_entries VALUES('a','business','We fire\n\non Mondays','1'),"
               "('b','owner','I am Oskel','1'),('c','contact:ct:SMS:1','Likes blue','1'),"
               "('d','business','Closed in May','2');");
    const QString known = "\n\nKNOWN CONTEXT (curated memory — treat as true, never contradict):\n"
                          "Business:\n- We fire  on Mondays\n- Closed in May\nOwner:\n- I am Oskel";
    EXPECT_EQ(memorySnapshot(*m_db), known);
    EXPECT_EQ(memorySnapshot(*m_db, "ct:SMS:1"), known + "\nThis contact:\n- Likes blue");
    EXPECT_EQ(memorySnapshot(*m_db, "ct:SMS:2"), known);
    EXPECT_FALSE(m_db->inTransaction());
    EXPECT_TRUE(insertDraftMetadata(
        *m_db, { "ct:SMS:1", {}, "reply", "model", "prompt", "result", { "m1", "m2" }, { "long" } }));
    EXPECT_EQ(table("SELECT workspace_id, contact_id, conversation_id, intent, model, prompt_ref, result_ref, "
                    "used_message_ids, warnings, created_at FROM draft_metadata"),
        QStringList(
            R"(local|ct:SMS:1|-|reply|model|prompt|result|["m1","m2"]|["long"]|)" + QString::number(m_clock.nowMs())));
}

}
