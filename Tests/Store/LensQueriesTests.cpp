#include "Store/Work/LensQueries.h"

#include "Foundation/Ids.h"
#include "Store/Assistant/AIRequestQueries.h"
#include "Store/Messages/ChannelFeatures.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Work/DevRecords.h"
#include "Support/StoreTest.h"

namespace corvane {

class LensTest : public StoreTest {
protected:
    LensTest() { open(); }

    void say(const QString& handle, const QString& body, qint64 ts, bool outgoing = false)
    {
        IncomingMessage message;
        message.conversationExternalId = handle;
        message.conversationTitle = u"To "_s + handle;
        message.providerMsgId = handle + QString::number(ts);
        message.body = body;
        message.ts = ts;
        message.outgoing = outgoing;
        ASSERT_TRUE(storeMessage(*m_db, u"SMS"_s, u"s"_s, message));
    }
    QStringList waiting(qint64 notBeforeMs = 0, int limit = 9)
    {
        QStringList lines;
        for (const WaitingPerson& person : fetchWaitingPeople(*m_db, notBeforeMs, limit))
            lines.append(u"%1 since %2, %3, %4, %5"_s.arg(person.name)
                    .arg(person.sinceMs)
                    .arg(person.unanswered)
                    .arg(person.everAnswered ? u"answered once"_s : u"never answered"_s, person.handles.join(u' ')));
        return lines;
    }
};

TEST_F(LensTest, whoWroteLastWaitsSinceTheFirstUnansweredWord)
{
    say(u"ana"_s, u"hello"_s, 10);
    say(u"ana"_s, u"hello to you"_s, 20, true);
    say(u"ana"_s, u"and?"_s, 30);
    say(u"ana"_s, u"well?"_s, 40);
    say(u"bo"_s, u"first"_s, 25);
    say(u"answered"_s, u"question"_s, 5);
    say(u"answered"_s, u"answer"_s, 50, true);
    say(u"1@g.us"_s, u"a group"_s, 26);
    say(u"quiet"_s, u"muted"_s, 27);
    setMuted(*m_db, contactOfConversation(*m_db, conversationId(u"s"_s, u"quiet"_s)), true);
    EXPECT_EQ(waiting(),
        (QStringList { u"To bo since 25, 1, never answered, bo"_s, u"To ana since 30, 2, answered once, ana"_s }));
    EXPECT_EQ(waiting(25).size(), 2);
    EXPECT_EQ(waiting(26).size(), 1);
    EXPECT_TRUE(waiting(0, 1).first().startsWith("To bo"_L1));

    const QString ana = contactOfConversation(*m_db, conversationId(u"s"_s, u"ana"_s));
    m_db->run("INSERT INTO crm_deal(id, workspace_id, contact_id, name, stage, updated_at, deleted_at) VALUES"
              "('a','local',?,'Kiln','Won',1,NULL),('b','local',NULL,'Wheel','',2,NULL),('x','local',NULL,'x','',3,1);",
        { ana });
    const auto deals = fetchDealLens(*m_db, 9);
    ASSERT_EQ(deals.size(), 2);
    EXPECT_EQ(deals.first().name + deals.last().name + deals.last().contactName, u"WheelKilnTo ana"_s);
    EXPECT_EQ(deals.first().touchedAt, 0);
    EXPECT_EQ(deals.last().touchedAt, 40);
}

TEST_F(LensTest, aTextRequestIsClaimedByOneAndAnOldOneExpires)
{
    const auto ask = [&](const QString& id) {
        m_db->run("INSERT INTO ai_requests(id, prompt, status, created_at) VALUES(?,'p','pending',?);",
            { id, m_clock.nowMs() });
        m_clock.advance(Milliseconds(1));
    };
    const auto state = [&](const QString& id) {
        return m_db->scalar("SELECT status || ' ' || COALESCE(response,error,'') FROM ai_requests WHERE id=?;", { id })
            .value_or(QString());
    };
    for (const QString& id : { u"a"_s, u"b"_s, u"c"_s, u"d"_s })
        ask(id);
    const auto pending = fetchPendingAIRequests(*m_db, 2);
    ASSERT_EQ(pending.size(), 2);
    EXPECT_EQ(pending.first().id + pending.last().id, u"ab"_s);
    EXPECT_TRUE(claimAIRequest(*m_db, u"a"_s, u"me"_s));
    EXPECT_FALSE(claimAIRequest(*m_db, u"a"_s, u"you"_s));
    EXPECT_TRUE(claimAIRequest(*m_db, u"b"_s, u"me"_s));
    EXPECT_TRUE(claimAIRequest(*m_db, u"c"_s, u"gone"_s));
    completeAIRequest(*m_db, u"a"_s, u"text"_s);
    failAIRequest(*m_db, u"a"_s, u"too late"_s);
    failAIRequest(*m_db, u"b"_s, u"no model"_s);
    completeAIRequest(*m_db, u"d"_s, u"nobody claimed it"_s);
    m_clock.advance(Milliseconds(60'001));
    failStaleAIRequests(*m_db, 61'000);
    EXPECT_EQ(state(u"d"_s), u"pending "_s);
    failStaleAIRequests(*m_db, 60'000);
    EXPECT_EQ(state(u"a"_s) + u", "_s + state(u"b"_s), u"done text, error no model"_s);
    EXPECT_EQ(state(u"c"_s), u"pending "_s) << "who claimed it is gone";
    EXPECT_TRUE(state(u"d"_s).startsWith("error LumoAI request expired"_L1));
}

TEST_F(LensTest, whatAChannelCarriesAndAProjectsDocumentAreKept)
{
    ChannelFeatures features;
    EXPECT_EQ(fetchFeatures(*m_db, u"s"_s), features);
    EXPECT_FALSE(rememberFeatures(*m_db, u"s"_s, features)) << "nothing new";
    features.files = true;
    features.maxBytes = 1000;
    EXPECT_TRUE(rememberFeatures(*m_db, u"s"_s, features));
    EXPECT_FALSE(rememberFeatures(*m_db, u"s"_s, features));
    features.subject = true;
    EXPECT_TRUE(rememberFeatures(*m_db, u"s"_s, features));
    EXPECT_EQ(fetchFeatures(*m_db, u"s"_s), features);
    EXPECT_EQ(fetchFeatures(*m_db, u"other"_s), ChannelFeatures());

    OpsProjectRow project;
    EXPECT_FALSE(seedDevSRS(*m_db, project));
    project.id = u"p"_s;
    project.slug = u"shop"_s;
    const auto seeded = seedDevSRS(*m_db, project);
    ASSERT_TRUE(seeded);
    EXPECT_EQ(seeded->overview, u"shop development workspace."_s);
    DevSRSRow wanted = *seeded;
    wanted.users = u"shoppers"_s;
    m_clock.advance(seconds(1));
    EXPECT_EQ(saveDevSRS(*m_db, *seeded, wanted), DevSRSSaved::Saved);
    EXPECT_EQ(saveDevSRS(*m_db, *seeded, wanted), DevSRSSaved::Changed) << "another one was seen";
    project.name = u"Shop"_s;
    EXPECT_EQ(seedDevSRS(*m_db, project)->users, u"shoppers"_s);
    DevSRSRow none;
    none.projectId = u"new"_s;
    EXPECT_EQ(saveDevSRS(*m_db, none, none), DevSRSSaved::Saved);
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON dev_srs BEGIN SELECT RAISE(ABORT, 'full'); END;");
    project.id = u"q"_s;
    EXPECT_FALSE(seedDevSRS(*m_db, project));
    none.projectId = u"q"_s;
    EXPECT_EQ(saveDevSRS(*m_db, none, none), DevSRSSaved::Failed);
    m_db->exec("DROP TABLE dev_srs;");
    EXPECT_FALSE(fetchDevSRS(*m_db, u"p"_s));
    EXPECT_FALSE(seedDevSRS(*m_db, project));
    EXPECT_EQ(saveDevSRS(*m_db, none, none), DevSRSSaved::Failed);
}

}
