#include "Store/Core/StoreWatch.h"

#include "Store/Approvals/OutboundQueries.h"
#include "Store/Core/StoreHealth.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Search/MessageChanges.h"
#include "Support/StoreTest.h"

namespace corvane {

namespace {

class StoreWatchTest : public StoreTest {
protected:
    StoreWatchTest()
    {
        ensureConversation(open(), "EMAIL", "shop", "c", "Ana", 1);
        QObject::connect(
            &m_db->watch(), &StoreWatch::changed, &m_context, [this](StoreSubject subject) { m_told.append(subject); });
        m_db->watch().start();
    }

    QList<StoreSubject> toldAfter(Milliseconds time)
    {
        m_told.clear();
        m_clock.advance(time);
        return m_told;
    }

    const QList<StoreSubject> m_unproven { StoreSubject::Messages, StoreSubject::Work, StoreSubject::Calendar };
    QObject m_context;
    QList<StoreSubject> m_told;
};

}

TEST_F(StoreWatchTest, whatAnotherProgramWritesIsToldOnceAndOnlyWhereItMayHaveChanged)
{
    OtherProcess other(path());
    EXPECT_TRUE(queueDraft(*m_db, "wa:shop:c", "mine", "compose"));
    EXPECT_TRUE(toldAfter(seconds(5)).isEmpty()) << "what this program writes is no news";
    other.exec("UPDATE unified_conversation SET title='x';");
    EXPECT_TRUE(toldAfter(Milliseconds(999)).isEmpty());
    EXPECT_TRUE(toldAfter(Milliseconds(1)).contains(StoreSubject::Drafts)) << "one was queued since";
    EXPECT_TRUE(toldAfter(seconds(5)).isEmpty());
    other.exec("UPDATE unified_conversation SET title='y';");
    EXPECT_EQ(toldAfter(seconds(1)), m_unproven);
    for (const auto& [sql, subject] : { std::pair("UPDATE outbound_draft SET body='theirs';", StoreSubject::Drafts),
             std::pair("INSERT INTO ai_requests(id, prompt, status, created_at) VALUES('r','p','pending',1);",
                 StoreSubject::Requests),
             std::pair("INSERT INTO work_decision(id, module, title, status, proposal, created_at, updated_at) "
                       "VALUES('d','ops','t','proposed','p','1','1');",
                 StoreSubject::Approvals),
             std::pair("INSERT INTO sync_health(source, status, updated_at) VALUES('crm','running',1);",
                 StoreSubject::Sync) }) {
        other.exec(sql);
        const QList<StoreSubject> told = toldAfter(seconds(1));
        EXPECT_EQ(told.size(), m_unproven.size() + 1) << sql;
        EXPECT_TRUE(told.contains(subject)) << sql;
    }
}

TEST_F(StoreWatchTest, aSubjectWithTooManyRowsToCompareIsAlwaysTold)
{
    OtherProcess other(path());
    const auto queue = [&](int count) {
        for (int i = 0; i < count; ++i) {
            m_clock.advance(Milliseconds(1)); // there are only 9000 different ids per millisecond
            EXPECT_TRUE(queueDraft(*m_db, "wa:shop:c", QString::number(i), "compose"));
        }
    };
    const auto toldOfDrafts = [&](const char* title) {
        other.exec((QByteArray("UPDATE unified_conversation SET title='") + title + "';").constData());
        return toldAfter(seconds(1)).contains(StoreSubject::Drafts);
    };
    queue(199);
    EXPECT_TRUE(toldOfDrafts("w"));
    EXPECT_FALSE(toldOfDrafts("x")) << "with the workspace 200 rows, which are compared";
    queue(1);
    for (const char* title : { "y", "z" })
        EXPECT_TRUE(toldOfDrafts(title));
}

TEST_F(StoreWatchTest, whoListensToOneSubjectHearsNoOther)
{
    int drafts = 0;
    auto listener = std::make_unique<QObject>();
    m_db->watch().on(StoreSubject::Drafts, listener.get(), [&] { ++drafts; });
    m_db->watch().tell(StoreSubject::Sync);
    m_db->watch().tell(StoreSubject::Drafts);
    EXPECT_EQ(drafts, 1);
    listener.reset();
    m_db->watch().tell(StoreSubject::Drafts);
    EXPECT_EQ(drafts, 1);
}

TEST_F(StoreWatchTest, aClosedOrFaultyDatabaseIsLeftAloneAndEverythingIsToldAfterwards)
{
    OtherProcess other(path());
    m_db->close();
    other.exec("UPDATE unified_conversation SET title='x';");
    const QStringList logged = m_log.lines();
    EXPECT_TRUE(toldAfter(seconds(60)).isEmpty());
    EXPECT_EQ(m_log.lines(), logged);
    ASSERT_TRUE(m_db->reopen());
    EXPECT_EQ(toldAfter(seconds(1)), m_unproven) << "the drafts are the same";

    m_db->health().note(SQLITE_CORRUPT);
    other.exec("UPDATE unified_conversation SET title='y';");
    EXPECT_TRUE(toldAfter(seconds(60)).isEmpty());
    m_db->health().forget();
    EXPECT_EQ(toldAfter(seconds(1)), m_unproven);
}

TEST(MessageChanges, aRowCountsAsChangedUntilTheIndexHasIt)
{
    using Rows = QSet<qint64>;
    MessageChanges changes;
    changes.note(SQLITE_UPDATE, "unified_message", 1);
    EXPECT_TRUE(changes.all().isEmpty()) << "no index follows";
    EXPECT_FALSE(changes.isFollowed());
    int told = 0;
    changes.onChange([&] { ++told; });
    EXPECT_TRUE(changes.isFollowed());
    changes.note(SQLITE_UPDATE, "unified_message", 1);
    changes.note(SQLITE_INSERT, "unified_message", 2);
    changes.note(SQLITE_INSERT, "audio_transcript", 3);
    changes.note(SQLITE_UPDATE, "contact", 4);
    EXPECT_EQ(told, 3);
    EXPECT_EQ(changes.all().messages, Rows { 1 }) << "a new one is found without";
    EXPECT_EQ(changes.all().transcripts, Rows { 3 });
    EXPECT_EQ(changes.take(1).messages, Rows { 1 });
    changes.note(SQLITE_UPDATE, "unified_message", 5);
    EXPECT_EQ(changes.take(1).messages, Rows { 1 }) << "until that one is done";
    EXPECT_EQ(changes.all().messages, (Rows { 1, 5 }));
    changes.notTaken();
    EXPECT_EQ(changes.take().messages, (Rows { 1, 5 }));
    EXPECT_EQ(changes.take().transcripts, Rows { 3 });
    changes.note(SQLITE_UPDATE, "unified_message", 1);
    changes.taken();
    EXPECT_EQ(changes.all().messages, Rows { 1 }) << "it changed again meanwhile";
    EXPECT_TRUE(changes.all().transcripts.isEmpty());
}

}
