#include "Store/Search/MessageSearch.h"

#include "Foundation/Literals.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Await.h"
#include "Support/StoreTest.h"

#include <QDir>

namespace corvane {

namespace {

class MessageSearchTest : public StoreTest {
protected:
    /// Enough messages that a search takes a while; the first one contains the needle.
    MessageSearchTest()
    {
        open();
        IncomingMessage message;
        message.conversationExternalId = "1";
        message.providerMsgId = "needle";
        message.body = "the Needle is here";
        message.ts = 1;
        const QString conversation = storeMessage(*m_db, "SMS", "a", message)->conversationId;
        m_db->run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<20000) "
                  "INSERT INTO unified_message(id, workspace_id, conversation_id, direction, body, ts, updated_at) "
                  "SELECT 'wa:msg:h' || i, 'local', ?, 'IN', 'hay and more hay ' || i, i, i FROM n;",
            { conversation });
    }
};

QStringList ids(const QList<MessageHit>& hits)
{
    QStringList ids;
    for (const MessageHit& hit : hits)
        ids.append(hit.id);
    return ids;
}

}

TEST_F(MessageSearchTest, whatIsFoundComesHomeAsTheSameRows)
{
    MessageSearch search(*m_db);
    std::optional<QList<MessageHit>> found;
    search.start(u"hay"_s, 60, [&](const FoundMessages& answer) { found = answer.hits; });
    EXPECT_FALSE(found) << "never before the caller is done";
    ASSERT_TRUE(await([&] { return found.has_value(); }));
    EXPECT_EQ(found->size(), 60);
    EXPECT_EQ(*found, searchMessages(*m_db, u"hay"_s, 60));
}

TEST_F(MessageSearchTest, aNewerSearchStopsTheOlderWhichIsNeverHeardOf)
{
    MessageSearch search(*m_db);
    QStringList heard;
    search.start(u"hay"_s, 60, [&](const FoundMessages&) { heard.append("hay"); });
    search.start(u"straw"_s, 60, [&](const FoundMessages&) { heard.append("straw"); });
    search.start(u"needle"_s, 60, [&](const FoundMessages& found) { heard.append(ids(found.hits)); });
    ASSERT_TRUE(await([&] { return !heard.isEmpty(); }));
    search.start(u"hay"_s, 60, [&](const FoundMessages&) { heard.append("hay"); });
    search.stop();
    bool last = false;
    MessageSearch other(*m_db);
    other.start(u"straw"_s, 60, [&](const FoundMessages&) { last = true; });
    ASSERT_TRUE(await([&] { return last; }));
    EXPECT_EQ(heard, QStringList("wa:msg:needle"));
}

TEST_F(MessageSearchTest, aStoppedReaderEndsInTheMiddleOfItsQuery)
{
    const auto stopped = std::make_shared<std::atomic<bool>>(false);
    const auto reader = SqlConnection::reader(path(), stopped);
    EXPECT_EQ(ids(searchMessages(*reader, u"needle"_s, 60)), QStringList("wa:msg:needle"));
    stopped->store(true);
    EXPECT_EQ(ids(searchMessages(*reader, u"needle"_s, 60)), QStringList());
}

TEST_F(MessageSearchTest, aReaderSeesWhatOthersWriteAndWritesNothing)
{
    const auto reader = SqlConnection::reader(path(), std::make_shared<std::atomic<bool>>(false));
    OtherProcess(path()).exec("UPDATE unified_message SET deleted_at=1 WHERE id='wa:msg:needle';");
    EXPECT_TRUE(searchMessages(*reader, u"needle"_s, 60).isEmpty());
    const auto identity = [](const SqlRow& row) {
        return row.text(0);
    };
    reader->rows("DELETE FROM unified_message RETURNING id;", {}, identity);
    EXPECT_EQ(cell("SELECT COUNT(*) FROM unified_message;"), "20001");
}

TEST_F(MessageSearchTest, theEndOfTheProgramWaitsForNoSearch)
{
    bool heard = false;
    for (int i = 0; i < 20; ++i) {
        MessageSearch search(*m_db);
        search.start(u"hay"_s, 60, [&](const FoundMessages&) { heard = true; });
    }
    EXPECT_FALSE(heard);
}

TEST_F(MessageSearchTest, aDatabaseThatIsNotOpenGivesNothing)
{
    m_db.reset();
    QDir().mkpath(path() + ".folder");
    LocalDB broken(path() + ".folder", {}, m_clock, m_defaults, m_centre);
    ASSERT_FALSE(broken.isOpen());
    MessageSearch search(broken);
    std::optional<QList<MessageHit>> found;
    search.start(u"hay"_s, 60, [&](const FoundMessages& answer) { found = answer.hits; });
    ASSERT_TRUE(await([&] { return found.has_value(); }));
    EXPECT_TRUE(found->isEmpty());
    EXPECT_FALSE(SqlConnection::reader("/nowhere/at.all", std::make_shared<std::atomic<bool>>(false))->isOpen());
}

}
