#include "Web/SyncClient.h"

#include "Support/WebTest.h"
#include "Web/IngestBodies.h"

#include <QFile>
#include <QJsonArray>

namespace corvane {

namespace {

class SyncClientTest : public WebTest {
protected:
    SyncClientTest()
    {
        client->attach();
        client->approve();
    }

    QString finished()
    {
        EXPECT_TRUE(await([this] {
            m_clock.advance(Milliseconds(200));
            return !client->isRunning();
        }));
        return client->statusLine();
    }
    QString push()
    {
        client->syncNow();
        return finished();
    }
    QString health() { return table("SELECT status, last_error FROM sync_health").join(u' '); }
    QString cursors() { return table("SELECT last_synced_ms, last_message_id FROM cloud_sync_cursor").join(u' '); }
    PushReview review()
    {
        client->lookUp();
        EXPECT_TRUE(await([this] { return !client->isLookingUp(); }));
        return client->review().value_or(PushReview {});
    }

    std::unique_ptr<SyncClient> client = std::make_unique<SyncClient>(session, *m_db, m_clock);
};

}

TEST_F(SyncClientTest, whatIsDueArrivesOnceAndInItsShape)
{
    addChat("1@s.whatsapp.net", "shop", 3);
    addChat("2@g.us", "shop", 1);
    addChat("empty", "home", 0);
    m_db->exec("UPDATE unified_conversation SET last_ts=9 WHERE id='empty';");
    EXPECT_EQ(client->statusLine(), "Not synced yet");
    client->syncNow();
    client->syncNow();
    EXPECT_EQ(client->statusLine(), "Syncing…");
    EXPECT_EQ(finished(), "Synced 3 chats to the web");
    EXPECT_EQ(web.counts(), "2 3 4");
    EXPECT_EQ(web.requests("/messages ->"), 4) << "one request a message, and one run at a time";
    EXPECT_EQ(client->lastSyncedMessages(), 4);
    EXPECT_EQ(client->lastSyncedThreads(), 3);
    const SyncClient::Progress& progress = client->progress();
    EXPECT_EQ(progress.chats, 3);
    EXPECT_EQ(progress.allChats, 3);
    EXPECT_EQ(progress.messages, 4);
    EXPECT_EQ(progress.allMessages, 4);
    EXPECT_EQ(cursors(), "9|- 3|1@s.whatsapp.net-3 1|2@g.us-1");
    EXPECT_EQ(health(), "ok|");
    EXPECT_TRUE(cell("SELECT counts_json FROM sync_health").contains(R"("localMessages":4)"));
    EXPECT_EQ(push(), "Synced 0 chats to the web");

    addChat("3", "shop", 1);
    m_defaults.setBoolean("nimb.batchIngest", true);
    EXPECT_EQ(push(), "Synced 1 chat to the web");
    EXPECT_EQ(web.requests("/accounts ->"), 2) << "the web's ids are kept";
    EXPECT_EQ(web.counts(), "2 4 5");
    client->startOver();
    EXPECT_EQ(client->statusLine(), "Not synced yet");
    client->approve();
    EXPECT_EQ(push(), "Synced 4 chats to the web");
    EXPECT_EQ(web.counts(), "2 4 5") << "what comes twice is kept once";
}

TEST_F(SyncClientTest, nothingLeavesBeforeAPersonAgreed)
{
    addChat("1", "shop", 1);
    client->startOver();
    client->syncNow();
    client->pushTheRest();
    EXPECT_FALSE(client->isRunning());
    client->approve();
    m_defaults.setText("nimb.apiBaseUrl", web.base() + "/other");
    client->syncNow();
    EXPECT_FALSE(client->isRunning()) << "another service is another question";
    session.signOut();
    EXPECT_EQ(push(), "Sign in first");
    EXPECT_EQ(health(), "skipped|sign in first");
    EXPECT_EQ(web.counts(), "0 0 0");
}

TEST_F(SyncClientTest, everyFailureEndsTheRunInItsWordsAndTheNextOneGoesOn)
{
    addChat("1", "shop", 3);
    const std::tuple<const char*, QString, QString> cases[] {
        { "accounts=404", "Web Corvane ingest not live yet (accounts 404)", "waiting_for_web" },
        { "accounts=501", "Web Corvane ingest not live yet (accounts 501)", "waiting_for_web" },
        { "accounts=401", "Sync error: accounts -> HTTP 401", "error" },
        { "accounts=nonsense", "Sync error: accounts -> HTTP 200", "error" },
        { "accounts=redirect", "Sync error: accounts -> HTTP 302", "error" },
        { "chats=404", "Web Corvane ingest not live yet (chats 404)", "waiting_for_web" },
        { "chats=500", "Sync error: chats -> HTTP 500", "error" },
        { "chats=nonsense", "Sync error: chats -> HTTP 200", "error" },
        { "chats=half", "Sync error: Connection closed", "error" },
        { "messages=501", "Web message ingest not live yet (501)", "waiting_for_web" },
        { "messages=401x1+1", "Sync error: messages -> HTTP 401", "error" },
        { "messages=drop+1", "Sync error: Connection closed", "error" },
    };
    for (const auto& [fault, words, state] : cases) {
        web.plan(fault);
        EXPECT_EQ(push(), words) << fault;
        EXPECT_TRUE(health().startsWith(state + u'|')) << fault;
        EXPECT_EQ(cursors(), "") << "the chat is due again";
        EXPECT_FALSE(session.webRejected());
    }
    web.plan("messages=500x1");
    push();
    EXPECT_EQ(push(), "Synced 1 chat to the web");
    EXPECT_EQ(web.counts(), "1 1 3");
    addChat("2", "shop", 1);
    m_defaults.setText("nimb.corvaneBase", "/a b");
    client->approve();
    EXPECT_EQ(push(), "Sync error: Bad URL /a b/chats");
}

TEST_F(SyncClientTest, aLongChatLeavesItsRestOutUntilItIsAskedFor)
{
    m_defaults.setBoolean("nimb.batchIngest", true);
    addChat("1", "shop", 1203);
    m_db->exec("UPDATE unified_message SET ts=500 WHERE ts BETWEEN 490 AND 510;");
    EXPECT_EQ(review().threads.value(0).messages, 1203);
    EXPECT_EQ(push(), "Synced 1 chat to the web");
    EXPECT_EQ(web.counts(), "1 1 500");
    EXPECT_EQ(review().leftOutMessages, 703);
    EXPECT_TRUE(review().threads.isEmpty());
    web.plan("messages=500x1+1");
    client->pushTheRest();
    EXPECT_EQ(finished(), "Sync error: messages -> HTTP 500");
    EXPECT_EQ(review().leftOutMessages, 203);
    client->pushTheRest();
    EXPECT_EQ(finished(), "Synced 1 chat to the web");
    EXPECT_EQ(web.counts(), "1 1 1203");
    EXPECT_EQ(review().leftOutMessages, 0);
}

TEST_F(SyncClientTest, aRunThatIsEndedKeepsWhatItReached)
{
    for (const char* chat : { "3", "2", "1" })
        addChat(chat, "shop", 3);
    keepConversationLocal(*m_db, "2");
    const auto inTheMiddle = [this](const char* fault, int requests) {
        const int before = web.requests("/messages");
        web.plan(fault);
        client->syncNow();
        EXPECT_TRUE(await([&] { return web.requests("/messages") == before + requests; }));
    };
    inTheMiddle("messages=stall+4", 5);
    client->cancel();
    EXPECT_EQ(finished(), "Cancelled. Synced 1 chat to the web");
    EXPECT_EQ(health(), "skipped|cancelled");
    EXPECT_EQ(web.counts(), "1 2 4");
    inTheMiddle("messages=stall", 1);
    const QString token = *session.token();
    session.signOut();
    EXPECT_EQ(finished(), "Sign in first");
    session.setAuth(token, "d");
    EXPECT_EQ(table("SELECT COUNT(*) FROM cloud_sync_cursor"), QStringList("1"));
    inTheMiddle("messages=stall", 1);
    client.reset();
    EXPECT_EQ(m_clock.pendingTimers(), 0);
}

TEST_F(SyncClientTest, anotherProgramThatKeepsTheDatabaseIsWaitedForInVain)
{
    addChat("1", "shop", 1);
    OtherProcess other(path());
    other.exec("BEGIN IMMEDIATE;");
    EXPECT_EQ(push(), "Sync error: The progress of the push could not be saved.");
    other.exec("COMMIT;");
    EXPECT_EQ(push(), "Synced 1 chat to the web");
    EXPECT_EQ(web.counts(), "1 1 1");
}

TEST_F(SyncClientTest, aNewServiceOrWorkspaceIsLookedAtAnew)
{
    addChat("1", "shop", 2);
    m_centre.post(notifications::activeWorkspaceChanged);
    EXPECT_FALSE(client->isLookingUp()) << "nobody has looked yet";
    EXPECT_EQ(push(), "Synced 1 chat to the web");
    EXPECT_EQ(client->progress().messages, 2);
    EXPECT_TRUE(review().threads.isEmpty());
    m_centre.post(notifications::activeWorkspaceChanged);
    EXPECT_TRUE(client->isLookingUp());
    EXPECT_TRUE(await([this] { return !client->isLookingUp(); }));

    OtherProcess other(path());
    other.exec("BEGIN IMMEDIATE;");
    client->startOver();
    EXPECT_EQ(client->statusLine(), "Sync error: Another program is writing to the database. Try again.");
    EXPECT_TRUE(client->isApproved()) << "all or nothing";
    other.exec("COMMIT;");

    m_defaults.setText("nimb.corvaneBase", "/other");
    EXPECT_FALSE(client->isApproved());
    EXPECT_EQ(review().threads.size(), 1) << "nothing has been pushed to another service yet";
    EXPECT_EQ(cursors(), "");
    EXPECT_EQ(client->statusLine(), "Not synced yet");
    m_defaults.remove("nimb.corvaneBase");
    EXPECT_FALSE(client->isApproved());
}

TEST_F(SyncClientTest, whatCannotBeReadIsSaid)
{
    addChat("1", "shop", 1);
    m_db->exec("ALTER TABLE cloud_sync_cursor RENAME TO away;");
    EXPECT_EQ(push(), "Sync error: The messages could not be read (SQLite says 1).");
    EXPECT_EQ(health(), "error|The messages could not be read (SQLite says 1).");
    client->pushTheRest();
    EXPECT_EQ(finished(), "Sync error: The messages could not be read (SQLite says 1).");
    client->lookUp();
    EXPECT_TRUE(await([this] { return !client->isLookingUp(); }));
    EXPECT_FALSE(client->review());
    QString error;
    QObject::connect(
        client.get(), &SyncClient::dryRunWritten, [&](const QString&, const QString& words) { error = words; });
    client->writeDryRun(m_home.path("dry.txt"));
    EXPECT_TRUE(client->isWriting());
    client->writeDryRun(m_home.path("other.txt"));
    EXPECT_TRUE(await([&] { return !error.isEmpty(); }));
    EXPECT_EQ(error, "The messages could not be read (SQLite says 1).");
    EXPECT_FALSE(client->isWriting());
    EXPECT_FALSE(QFile::exists(m_home.path("dry.txt")) || QFile::exists(m_home.path("other.txt")));
    m_db->exec("ALTER TABLE away RENAME TO cloud_sync_cursor;");
    EXPECT_EQ(push(), "Synced 1 chat to the web");
    EXPECT_EQ(web.counts(), "1 1 1");
}

TEST_F(SyncClientTest, aDryRunTellsEveryRequestAndSendsNone)
{
    addChat("1@s.whatsapp.net", "shop", 2);
    addChat("kept", "shop", 1);
    keepConversationLocal(*m_db, "kept");
    const QString file = m_home.path("dry.txt");
    QString error = "not yet";
    QObject::connect(
        client.get(), &SyncClient::dryRunWritten, [&](const QString&, const QString& words) { error = words; });
    client->writeDryRun(file);
    EXPECT_TRUE(await([&] { return error != "not yet"; }));
    EXPECT_EQ(error, "");
    const QString text = QString::fromUtf8(m_home.read("dry.txt"));
    EXPECT_EQ(text.count("\nPOST "), 4);
    EXPECT_TRUE(text.contains("1 chats, 2 messages") && text.contains("\"text\": \"hello 2\""));
    EXPECT_FALSE(text.contains("kept"));
    client->writeDryRun(m_home.path("nowhere/dry.txt"));
    EXPECT_TRUE(await([&] { return !error.isEmpty(); }));
    EXPECT_EQ(web.requests("corvane"), 0);
}

TEST(IngestBodies, carryWhatTheContractNames)
{
    const IngestChat person { "a1", "c1", "shop", "7@s.whatsapp.net", false };
    const CloudMessage out { "m", "p", "OUT", "hi", std::nullopt, 1'700'000'000'123, {}, "x", {} };
    QJsonObject mapped = mapMessage(out, person);
    EXPECT_EQ(mapped["timestamp"], "2023-11-14T22:13:20.123Z");
    EXPECT_EQ(mapped["sender_id"], "shop");
    EXPECT_EQ(mapped["reactions"][0]["actor_id"], "7@s.whatsapp.net");
    CloudMessage in = out;
    in.direction = "IN";
    in.ts = std::numeric_limits<qint64>::max();
    mapped = mapMessage(in, person);
    EXPECT_EQ(mapped["sender_id"], "7@s.whatsapp.net");
    EXPECT_EQ(mapped["reactions"][0]["actor_id"], "shop");
    EXPECT_EQ(mapped["timestamp"], "9999-12-31T23:59:59.999Z");
    CloudThread thread { "id", "shop", "8@g.us", {}, 5, 2, true, true, std::nullopt };
    const QJsonObject chat = mapThread(thread, "a1");
    EXPECT_EQ(chat["type"], 1);
    EXPECT_EQ(chat["muted_until"], "9999-12-31T23:59:59Z");
    thread.muted = false;
    EXPECT_TRUE(mapThread(thread, "a1")["muted_until"].isNull());
    for (const QByteArray& answer : QList<QByteArray> {
             R"({"id":"x"})", R"({"data":{"id":"x"}})", R"({"chat":{"id":"x"}})", R"({"data":{"chat":{"id":"x"}}})" })
        EXPECT_EQ(decodeId(answer), "x");
    for (const QByteArray& answer : QList<QByteArray> { "", "<p>", R"({"id":7})", R"({"data":{"id":""}})" })
        EXPECT_EQ(decodeId(answer), std::nullopt);
}

}
