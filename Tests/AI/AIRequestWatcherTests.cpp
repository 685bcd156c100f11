#include "AI/AIRequestWatcher.h"
#include "Foundation/Literals.h"

#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/FakeLanguageModel.h"
#include "Support/LoopbackWeb.h"
#include "Support/StoreTest.h"

#include <QJsonArray>

namespace corvane {

class AIRequestWatcherTest : public StoreTest {
protected:
    AIRequestWatcherTest() { open(); }

    void ask(const char* id, qint64 ageMs = 0)
    {
        EXPECT_TRUE(m_db->run("INSERT INTO ai_requests(id, instructions, prompt, created_at) VALUES(?,?,?,?);",
            { QString(id), u"be brief"_s, u"prompt "_s + id, m_clock.nowMs() - ageMs }));
    }
    QStringList rows() { return table("SELECT id, status, response, error FROM ai_requests ORDER BY id"); }
    void tick() { m_clock.advance(Milliseconds(1000)); }

    FakeLumo m_lumo;
};

TEST_F(AIRequestWatcherTest, requestsAreAnsweredOldestFirstOneAtATimeFiveInABatch)
{
    for (const char* id : { "7", "6", "5", "4", "3", "2" })
        ask(id, 1000 * (QString(id).toInt()));
    EXPECT_TRUE(m_db->run("UPDATE ai_requests SET instructions='' WHERE id='7';"));
    const auto first = m_lumo.model.willAnswerLater();
    AIRequestWatcher watcher(*m_db, m_lumo.ai, m_clock);
    watcher.start();
    ASSERT_EQ(m_lumo.model.asked.size(), 1);
    EXPECT_EQ(m_lumo.model.asked[0].prompt + m_lumo.model.asked[0].instructions, "prompt 7");
    EXPECT_TRUE(cell("SELECT claimed_by FROM ai_requests WHERE id='7';").startsWith("Corvane:"));
    ask("0", 130'000);
    tick(); // skipped while a request is in flight, including the check for stale rows
    EXPECT_EQ(cell("SELECT status FROM ai_requests WHERE id='0';"), "pending");
    m_lumo.model.willFail("no words today");
    for (const char* text : { "five", "four", "three" })
        m_lumo.model.willAnswer(QString(text));
    first.arrive(FakeLanguageModel::text(" as it came\n"));
    EXPECT_EQ(rows(),
        (QStringList { "0|pending|-|-", "2|pending|-|-", "3|done|three|-", "4|done|four|-", "5|done|five|-",
            "6|error|-|no words today", "7|done| as it came\n|-" }));
    m_lumo.model.willAnswer(u"two"_s);
    tick();
    EXPECT_EQ(rows().first(2),
        (QStringList {
            "0|error|-|LumoAI request expired before the app could complete it. Retry the request.", "2|done|two|-" }));
}

TEST_F(AIRequestWatcherTest, aClosedDatabaseIsLeftAlone)
{
    AIRequestWatcher watcher(*m_db, m_lumo.ai, m_clock);
    watcher.start();
    m_db->close();
    const QStringList logged = m_log.lines();
    m_clock.advance(seconds(60));
    EXPECT_EQ(m_log.lines(), logged);
}

TEST_F(AIRequestWatcherTest, withoutABackendEachRequestFailsInWords)
{
    m_lumo.model.setUnavailable("no server");
    ask("a");
    AIRequestWatcher watcher(*m_db, m_lumo.ai, m_clock);
    watcher.start();
    EXPECT_EQ(rows(), QStringList { "a|error|-|No LumoAI backend available." });
}

TEST_F(AIRequestWatcherTest, aServerThatNobodyHasLookedAtYetAnswersWhatWaitsAtTheStart)
{
    LoopbackWeb web;
    web.answer("/api/version", LoopbackWeb::json({ { "version", "0.5.7" } }));
    web.answer("/api/tags", LoopbackWeb::json({ { "models", QJsonArray { QJsonObject { { "name", "a:1b" } } } } }));
    web.answer("/api/chat",
        LoopbackWeb::json({ { "message", QJsonObject { { "content", "Hello." } } }, { "done_reason", "stop" } }));
    ask("a");
    const auto model = makeLanguageModel(m_clock);
    AIServices services(*model, m_lumo.machine, m_lumo.tools, {}, m_clock);
    model->choose({ web.base(), {} });
    AIRequestWatcher watcher(*m_db, services.ai, m_clock);
    watcher.start();
    EXPECT_EQ(rows(), QStringList { "a|pending|-|-" });
    EXPECT_TRUE(await([&] { return rows() == QStringList { "a|done|Hello.|-" }; }));
}

TEST_F(AIRequestWatcherTest, aRequestThatACrashLeftClaimedRunsOnceMoreAndNoOftener)
{
    ask("crashed", 180'000);
    ask("behind", 170'000);
    ask("limit", 120'000);
    EXPECT_TRUE(m_db->run("UPDATE ai_requests SET status='processing', claimed_at=? WHERE id IN ('crashed','behind');",
        { m_clock.nowMs() - 120'001 }));
    m_lumo.model.willAnswer(u"at last"_s);
    const auto slow = m_lumo.model.willAnswerLater();
    m_lumo.model.willAnswer(u"just in time"_s);
    auto watcher = std::make_unique<AIRequestWatcher>(*m_db, m_lumo.ai, m_clock);
    watcher->start();
    EXPECT_EQ(rows(), (QStringList { "behind|processing|-|-", "crashed|done|at last|-", "limit|pending|-|-" }));
    watcher.reset(); // as when the program exits
    EXPECT_TRUE(slow.hasArrived());
    EXPECT_EQ(rows().first(), "behind|processing|-|-");
}

TEST_F(AIRequestWatcherTest, twoProgramsNeverAnswerOneRequestTwice)
{
    ask("a", 1);
    ask("b");
    FakeLumo otherLumo;
    LocalDB otherDb(path(), { m_home.paths().resources, m_home.paths().home }, m_clock, m_defaults, m_centre);
    AIRequestWatcher watcher(*m_db, m_lumo.ai, m_clock);
    AIRequestWatcher other(otherDb, otherLumo.ai, m_clock);
    const auto mine = m_lumo.model.willAnswerLater();
    otherLumo.model.willAnswer(u"theirs"_s);
    watcher.start();
    other.start();
    EXPECT_EQ(rows(), (QStringList { "a|processing|-|-", "b|done|theirs|-" }));
    EXPECT_TRUE(m_db->run("UPDATE ai_requests SET status='done', response='elsewhere' WHERE id='a';"));
    mine.arrive(FakeLanguageModel::text("late"));
    EXPECT_EQ(rows(), (QStringList { "a|done|elsewhere|-", "b|done|theirs|-" }));
    EXPECT_EQ(m_lumo.model.asked.size() + otherLumo.model.asked.size(), 2);
}

TEST_F(AIRequestWatcherTest, aDatabaseThatAnotherProcessHoldsIsLeftForTheNextTick)
{
    ask("a");
    OtherProcess engine(path());
    engine.exec("BEGIN IMMEDIATE;");
    AIRequestWatcher watcher(*m_db, m_lumo.ai, m_clock);
    watcher.start();
    EXPECT_TRUE(m_lumo.model.asked.isEmpty());
    engine.exec("COMMIT;");
    m_lumo.model.willAnswer(u"yes"_s);
    tick();
    EXPECT_EQ(rows(), QStringList { "a|done|yes|-" });
}

}
