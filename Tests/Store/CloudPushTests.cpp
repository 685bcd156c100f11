#include "Store/Sync/CloudPush.h"

#include "Store/Core/Workspaces.h"
#include "Store/Sync/SyncQueries.h"
#include "Support/StoreTest.h"

namespace corvane {

namespace {

class CloudPushTest : public StoreTest {
protected:
    CloudPushTest()
    {
        open();
        m_db->exec(R"(
INSERT INTO unified_conversation(id, channel, account_id, external_id, title, last_ts, unread, archived_at, deleted_at)
  VALUES('old','WHATSAPP','shop','1@s.whatsapp.net','Ana',30,2,NULL,NULL), ('new','WHATSAPP','shop','7@g.us',NULL,40,0,9,NULL),
    ('other','WHATSAPP','home','2@s.whatsapp.net','Bo',35,0,NULL,NULL), ('mail','EMAIL','m','x','Mail',90,0,NULL,NULL),
    ('gone','WHATSAPP','shop','3@s.whatsapp.net','Gone',90,0,NULL,1);
INSERT INTO unified_message(id, conversation_id, direction, body, ts, deleted_at) VALUES('a','old','IN','one',10,NULL),
  ('c','old','OUT','three',20,NULL), ('b','old','IN','two',20,NULL), ('d','old','IN',NULL,30,NULL), ('x','old','IN','gone',30,1);)");
    }

    QString due(int limit = 200)
    {
        QStringList ids;
        for (const CloudThread& thread : cloudThreadsToSync(*m_db, "local", limit))
            ids.append(thread.conversationId);
        return ids.join(u' ');
    }

    static QString ids(const QList<CloudMessage>& messages)
    {
        QStringList ids;
        for (const CloudMessage& message : messages)
            ids.append(message.id);
        return ids.join(u' ');
    }
};

}

TEST_F(CloudPushTest, whatIsNewerThanItsCursorIsDueAndWhatIsKeptLocalIsNot)
{
    EXPECT_EQ(due(), "new other old");
    EXPECT_EQ(due(2), "new other");
    const CloudThread group = cloudThreadsToSync(*m_db, "local", 1).first();
    EXPECT_TRUE(group.isGroup() && group.archived && !group.muted && !group.cloudChatId);
    keepConversationLocal(*m_db, "new");
    EXPECT_EQ(due(2), "other old") << "it takes no place";
    keepAccountLocal(*m_db, "shop");
    EXPECT_EQ(due(), "other");
    EXPECT_EQ(cloudThread(*m_db, "old"), std::nullopt);
    EXPECT_EQ(fetchKeptLocal(*m_db), (QList<KeptLocal> { { "", "shop", "" }, { "new", "shop", "7@g.us" } }));
    for (const KeptLocal& kept : fetchKeptLocal(*m_db))
        stopKeepingLocal(*m_db, kept);
    storeCloudCursor(*m_db, "old", "chat-1", 30, std::nullopt);
    EXPECT_EQ(due(), "new other");
    EXPECT_EQ(cloudThread(*m_db, "old")->cloudChatId, "chat-1");
    forgetCloudCursors(*m_db);
    EXPECT_EQ(due(), "new other old");
}

TEST_F(CloudPushTest, aReviewCountsWhatIsDueWhatWaitsAndWhatWasLeftOut)
{
    storeCloudCursor(*m_db, "old", "chat-1", 25, std::nullopt);
    storeLeftOut(*m_db, { "old", 20, "b", 25 });
    storeLeftOut(*m_db, { "gone", 0, "", 99 });
    const PushReview review = fetchPushReview(*m_db, "local", 3);
    ASSERT_EQ(review.threads.size(), 3);
    EXPECT_EQ(review.threads[2].messages, 1);
    EXPECT_EQ(review.threads[2].oldestMs, 30);
    EXPECT_EQ(review.threads[0].oldestMs, 0);
    EXPECT_EQ(std::tuple(review.waitingThreads, review.leftOutThreads, review.leftOutMessages), std::tuple(0, 1, 1));
    EXPECT_EQ(fetchPushReview(*m_db, "local", 1).waitingThreads, 2);
    EXPECT_EQ(fetchPushReview(*m_db, "elsewhere", 1).leftOutMessages, 0);
}

TEST_F(CloudPushTest, messagesComeInTheirOrderAndARangeGoesOnWithinOneMoment)
{
    EXPECT_EQ(ids(cloudMessagesToSync(*m_db, "old", 0, 3)), "a b c");
    EXPECT_EQ(ids(cloudMessagesToSync(*m_db, "old", 20, 3)), "d");
    const LeftOutRange range { "old", 20, "b", 29 };
    EXPECT_EQ(ids(cloudMessagesLeftOut(*m_db, range, 9)), "c");
    storeLeftOut(*m_db, range);
    EXPECT_EQ(fetchLeftOut(*m_db, "local").size(), 1);
    removeLeftOut(*m_db, range);
    EXPECT_EQ(fetchLeftOut(*m_db, "local").size(), 0);
}

TEST_F(CloudPushTest, whatIsKeptLocalStaysSoWhenAWorkspaceTakesItOver)
{
    m_db->exec("INSERT INTO unified_conversation(id, channel, external_id, last_ts) "
               "VALUES('web:WHATSAPP:5','WHATSAPP','5',50);");
    keepConversationLocal(*m_db, "web:WHATSAPP:5");
    selectWorkspace(*m_db, "w1");
    EXPECT_EQ(fetchKeptLocal(*m_db).first().conversationId, "web:w1:WHATSAPP:5");
    EXPECT_EQ(cloudThreadsToSync(*m_db, "w1", 1).first().conversationId, "new");
}

TEST_F(CloudPushTest, healthKeepsItsStartAndItsEndApart)
{
    const auto times = [this] {
        return table("SELECT status, last_finished_at-last_started_at, last_error FROM sync_health").join(u' ');
    };
    const auto record = [this](const QString& status, const QString& error) {
        recordSyncHealth(*m_db, { "corvane_ingest", status, {}, {}, 0, "{}", error });
    };
    record("running", "");
    m_clock.advance(seconds(2));
    record("error", "no");
    EXPECT_EQ(times(), "error|2000|no");
    m_clock.advance(seconds(3));
    record("running", "");
    EXPECT_EQ(times(), "running|-3000|");
    m_db->exec("INSERT INTO engine_info(version, started_at, updated_at) VALUES('1.2',3,4);"
               "INSERT INTO _sync_state(table_name, last_pulled) VALUES('crm:w',8);");
    EXPECT_EQ(fetchEngineInfo(*m_db)->version, "1.2");
    EXPECT_EQ(fetchSyncStateCursor(*m_db, "crm:w")->lastPulled, 8);
    m_db->exec("DROP TABLE _sync_state; DROP TABLE engine_info;");
    EXPECT_FALSE(fetchSyncStateCursor(*m_db, "crm:w").has_value() || fetchEngineInfo(*m_db).has_value());
}

}
