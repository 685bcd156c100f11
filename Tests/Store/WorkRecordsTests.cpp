#include "Foundation/Literals.h"
#include "Store/Work/WorkWrites.h"

#include "Store/Work/DigestQueries.h"
#include "Support/StoreTest.h"

namespace corvane {

class WorkRecordsTest : public StoreTest {
protected:
    WorkRecordsTest() { open(); }

    template <typename Record> static QStringList ids(const QList<Record>& records)
    {
        QStringList ids;
        for (const Record& record : records)
            ids.append(record.id);
        return ids;
    }
};

TEST_F(WorkRecordsTest, decisionsThatWaitComeByRiskOverAllModules)
{
    m_db->exec("INSERT INTO work_decision(id, context_id, module, title, status, proposal, risk, updated_at) VALUES"
               "('odd', NULL, 'ops', 't', 'proposed', 'p', 'cosmic', '2026-01-09T00:00:00Z'),"
               "('high', 'ctx', 'cx', 't', 'proposed', 'p', 'high', '2026-01-01T00:00:00Z'),"
               "('external', NULL, 'gtm', 't', 'proposed', 'p', 'external', '2026-01-01T00:00:00Z'),"
               "('credential', NULL, 'gtm', 't', 'proposed', 'p', 'credential', '2026-01-01T00:00:00Z'),"
               "('money-old', NULL, 'ops', 't', 'proposed', 'p', 'money', '2026-01-01T00:00:00Z'),"
               "('money-new', NULL, 'dev', 't', 'proposed', 'p', 'money', '2026-01-02T00:00:00Z'),"
               "('gone', NULL, 'dev', 't', 'rejected', 'p', 'money', '2026-01-03T00:00:00Z');");
    EXPECT_EQ(ids(fetchPendingWorkDecisions(*m_db, 50)),
        (QStringList { "money-new", "money-old", "credential", "external", "high", "odd" }));
    EXPECT_EQ(ids(fetchPendingWorkDecisions(*m_db, 2)), (QStringList { "money-new", "money-old" }));
    EXPECT_EQ(ids(fetchWorkDecisions(*m_db, "dev", {}, 50)), (QStringList { "gone", "money-new" }));
    EXPECT_EQ(fetchWorkDecision(*m_db, "odd"),
        (WorkDecisionRecord { "odd", "", "ops", "t", "proposed", "p", "", "cosmic", "", "2026-01-09T00:00:00Z" }));
    EXPECT_EQ(fetchWorkDecision(*m_db, "none"), std::nullopt);
}

TEST_F(WorkRecordsTest, eachListHasItsOrderItsContextAndItsLimit)
{
    m_db->exec(
        "INSERT INTO work_item(id, context_id, module, priority, updated_at) VALUES('low',NULL,'ops','low','9'),"
        "('old','c','ops','normal','1'),('new',NULL,'ops','normal','2'),('high','c','ops','high','0'),"
        "('other','c','dev','high','9');"
        "INSERT INTO work_memory(id, context_id, module, status, updated_at) VALUES('r',NULL,'ops','rejected','9'),"
        "('a','c','ops','approved','8'),('p','c','ops','proposed','1'),('q','c','ops','proposed','2');"
        "INSERT INTO work_message(id, context_id, module, created_at) VALUES('2','c','ops','2'),('1',NULL,'ops','1');"
        "INSERT INTO work_evidence(id, context_id, module, created_at) VALUES('1','c','ops','1'),('2',NULL,'ops','2');"
        "INSERT INTO work_session(id, context_id, module, updated_at) VALUES('1','c','ops','1'),('2',NULL,'ops','2');"
        "INSERT INTO work_agent(id, context_id, module, name, status, heartbeat_at, updated_at) VALUES"
        "('ready','c','ops','r','ready','9','1'),('live','','dev','l','live','1','2'),"
        "('run','','ops','u','running','2','3'),('mute','','ops','m','asleep',NULL,'0');");
    const std::optional<QString> c = u"c"_s;
    EXPECT_EQ(ids(fetchWorkItems(*m_db, "ops", {}, 50)), (QStringList { "high", "new", "old", "low" }));
    EXPECT_EQ(ids(fetchWorkItems(*m_db, "ops", c, 1)), QStringList("high"));
    EXPECT_EQ(ids(fetchWorkMemory(*m_db, "ops", {}, 50)), (QStringList { "q", "p", "a", "r" }));
    EXPECT_EQ(ids(fetchWorkMessages(*m_db, "ops", {}, 1)), QStringList("1")) << "the limit keeps the oldest";
    EXPECT_EQ(ids(fetchWorkEvidence(*m_db, "ops", {}, 50)), (QStringList { "2", "1" }));
    EXPECT_EQ(ids(fetchWorkSessions(*m_db, "ops", c, 50)), QStringList("1"));
    EXPECT_EQ(ids(fetchWorkAgents(*m_db, "ops", {}, 50)), (QStringList { "run", "ready", "mute" }));
    EXPECT_EQ(ids(fetchAgentRoster(*m_db, 50)), (QStringList { "run", "live", "ready", "mute" }));
}

TEST_F(WorkRecordsTest, whatIsWrittenIsReadBackAndLiftsItsContext)
{
    const auto context = upsertWorkContext(*m_db, { "ops", "workspace", "may", "May", "Invoices", "Oskel" });
    ASSERT_TRUE(context);
    EXPECT_EQ(context->id, "ctx:ops:may");
    EXPECT_EQ(context->updatedAt, isoTime(m_clock.nowMs()));
    upsertWorkContext(*m_db, { "ops", "workspace", "june", "June", "", "Oskel" });
    const WorkContextId id = context->id;
    const auto first = [&] {
        return fetchWorkContexts(*m_db, "ops", 100).first();
    };
    const auto lifts = [&](const auto& write) {
        m_clock.advance(Milliseconds(1000));
        m_db->run("UPDATE work_context SET updated_at=? WHERE slug='june';", { isoTime(m_clock.nowMs()) });
        m_clock.advance(Milliseconds(1000));
        const auto written = write();
        return static_cast<bool>(written) && first().slug == "may" && first().updatedAt == isoTime(m_clock.nowMs());
    };
    std::optional<WorkItemRecord> item;
    std::optional<WorkDecisionRecord> decision;
    std::optional<WorkMemoryRecord> memory;
    EXPECT_TRUE(lifts([&] {
        return item = insertWorkItem(*m_db, { "ops", id, "task", "Pay", "high", "Oskel", "corvane-ui", "now" });
    }));
    EXPECT_TRUE(lifts(
        [&] { return decision = insertWorkDecision(*m_db, { "ops", id, "Review Pay", "Hold", "Why", "money" }); }));
    EXPECT_TRUE(
        lifts([&] { return insertWorkEvidence(*m_db, { "ops", id, {}, "note", "Seen", "corvane-ui", "", "s" }); }));
    EXPECT_TRUE(lifts([&] { return insertWorkMessage(*m_db, { "ops", id, "Corvane", "system", "status", "Made" }); }));
    EXPECT_TRUE(lifts([&] { return insertWorkSession(*m_db, { "ops", id, "work", "Worker", "codex", "ready" }); }));
    EXPECT_TRUE(
        lifts([&] { return memory = insertWorkMemory(*m_db, { "ops", id, "fact", "b", "DEV", "medium", "Oskel" }); }));
    const auto agent = upsertWorkAgent(*m_db, { "ops", id, "QA", "codex", "qa", "ready", "look", "s1" });
    EXPECT_TRUE(
        lifts([&] { return upsertWorkAgent(*m_db, { "ops", id, "QA", "codex", "qa", "running", "look", "s2" }); }));
    EXPECT_EQ(fetchWorkAgents(*m_db, "ops", id, 50).first().id, agent->id) << "an agent keeps its id";
    const auto homeless = upsertWorkAgent(*m_db, { "ops", {}, "QA", "codex", "qa", "ready", "", "" });
    EXPECT_EQ(upsertWorkAgent(*m_db, { "ops", {}, "QA", "codex", "qa", "live", "", "" })->id, homeless->id);

    const QString at = isoTime(m_clock.nowMs());
    EXPECT_EQ(*item,
        (WorkItemRecord {
            item->id, *id, "ops", "task", "Pay", "open", "high", "Oskel", "corvane-ui", "now", item->updatedAt }));
    EXPECT_TRUE(item->id.startsWith("item:native:"));
    EXPECT_EQ(*decision,
        (WorkDecisionRecord {
            decision->id, *id, "ops", "Review Pay", "proposed", "Hold", "Why", "money", "", decision->updatedAt }));
    EXPECT_EQ(first().openItems, 1);
    EXPECT_EQ(first().liveAgents, 1);
    EXPECT_EQ(first().liveSessions, 0);

    EXPECT_TRUE(lifts([&] { return updateWorkItemStatus(*m_db, u' ' + item->id, "closed "); }));
    EXPECT_EQ(first().openItems, 1) << "closed is not done";
    EXPECT_TRUE(lifts([&] { return updateWorkDecisionStatus(*m_db, decision->id, "approved", "Oskel"); }));
    EXPECT_EQ(fetchWorkDecision(*m_db, decision->id)->decidedBy, "Oskel");
    EXPECT_TRUE(lifts([&] { return updateWorkMemoryStatus(*m_db, memory->id, "approved", "Oskel"); }));
    EXPECT_EQ(cell("SELECT verified_at FROM work_memory;"), isoTime(m_clock.nowMs()));
    EXPECT_TRUE(updateWorkMemoryStatus(*m_db, memory->id, "rejected", "Oskel"));
    EXPECT_EQ(cell("SELECT verified_at FROM work_memory;"), "");
    for (const auto& [row, status] : { std::pair("gone", "done"), std::pair(" ", "done"), std::pair("gone", "\n") })
        EXPECT_FALSE(updateWorkItemStatus(*m_db, row, status));

    EXPECT_FALSE(insertWorkMessage(*m_db, { "ops", id, "Corvane", "system", "status", " \n\t" }));
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_message;"), "1");
    const QString createdAt = cell("SELECT created_at FROM work_context WHERE slug='may';");
    EXPECT_EQ(upsertWorkContext(*m_db, { "ops", "client", "may", "May!", "", "Ana" })->id, *id);
    EXPECT_EQ(table("SELECT title, kind, created_at FROM work_context WHERE slug='may';"),
        QStringList("May!|client|" + createdAt));
}

TEST_F(WorkRecordsTest, aRowThatCannotBeReadBackIsNotSaved)
{
    for (int row = 0; row < 200; ++row)
        m_db->run("INSERT INTO work_message(id, module, created_at) VALUES(?,'ops','2000');", { row });
    EXPECT_TRUE(insertWorkMessage(*m_db, { "ops", {}, "Corvane", "system", "status", "the 201st" }));
    EXPECT_EQ(fetchNewestWorkMessages(*m_db, "ops", {}, 2).last().body, "the 201st");
    m_db->exec("CREATE TRIGGER replaced AFTER INSERT ON work_item BEGIN DELETE FROM work_item WHERE id=NEW.id; END;");
    EXPECT_FALSE(insertWorkItem(*m_db, { "ops", {}, "task", "Gone", "normal", "", "", "" }));
}

/// Every call on a store whose work tables are missing or have only an id column.
TEST_F(WorkRecordsTest, tablesThatAreMissingOrLackColumnsAreEmptyAndTakeNothing)
{
    const char* tables[] = { "work_context", "work_item", "work_decision", "work_evidence", "work_message",
        "work_session", "work_agent", "work_memory", "calendar_event", "\"update\"" };
    for (const bool replaced : { false, true }) {
        for (const char* name : tables) {
            m_db->exec(u"DROP TABLE IF EXISTS %1;"_s.arg(name));
            if (replaced)
                m_db->exec(u"CREATE TABLE %1(id TEXT); INSERT INTO %1 VALUES('x');"_s.arg(name));
        }
        const WorkContextId c = u"c"_s;
        EXPECT_TRUE(fetchWorkContexts(*m_db, "ops", 9).isEmpty());
        EXPECT_TRUE(fetchWorkItems(*m_db, "ops", c, 9).isEmpty());
        EXPECT_TRUE(fetchWorkDecisions(*m_db, "ops", {}, 9).isEmpty());
        EXPECT_TRUE(fetchPendingWorkDecisions(*m_db, 9).isEmpty());
        EXPECT_FALSE(fetchWorkDecision(*m_db, "x"));
        EXPECT_TRUE(fetchWorkEvidence(*m_db, "ops", {}, 9).isEmpty());
        EXPECT_TRUE(fetchWorkMessages(*m_db, "ops", {}, 9).isEmpty());
        EXPECT_TRUE(fetchWorkSessions(*m_db, "ops", {}, 9).isEmpty());
        EXPECT_TRUE(fetchWorkAgents(*m_db, "ops", {}, 9).isEmpty());
        EXPECT_TRUE(fetchAgentRoster(*m_db, 9).isEmpty());
        EXPECT_TRUE(fetchWorkMemory(*m_db, "ops", {}, 9).isEmpty());
        EXPECT_FALSE(upsertWorkContext(*m_db, { "ops", "k", "s", "t", "", "" }));
        EXPECT_FALSE(insertWorkItem(*m_db, { "ops", c, "k", "t", "normal", "", "", "" }));
        EXPECT_FALSE(insertWorkDecision(*m_db, { "ops", c, "t", "p", "r", "money" }));
        EXPECT_FALSE(insertWorkEvidence(*m_db, { "ops", c, {}, "note", "t", "", "", "" }));
        EXPECT_FALSE(insertWorkMessage(*m_db, { "ops", c, "s", "system", "status", "b" }));
        EXPECT_FALSE(insertWorkSession(*m_db, { "ops", c, "p", "o", "codex", "ready" }));
        EXPECT_FALSE(upsertWorkAgent(*m_db, { "ops", c, "n", "codex", "qa", "ready", "", "" }));
        EXPECT_FALSE(insertWorkMemory(*m_db, { "ops", c, "fact", "b", "s", "medium", "o" }));
        EXPECT_FALSE(updateWorkItemStatus(*m_db, "x", "done"));
        EXPECT_FALSE(updateWorkDecisionStatus(*m_db, "x", "approved", "Oskel"));
        EXPECT_FALSE(updateWorkMemoryStatus(*m_db, "x", "approved", "Oskel"));
        EXPECT_EQ(todayDigest(*m_db, 0, 1, isoTime(0)), TodayDigest());
    }
    // Tables that are created while the program runs are used from then on, each independently.
    for (const char* name : tables)
        m_db->exec(u"DROP TABLE IF EXISTS %1;"_s.arg(name));
    open();
    EXPECT_TRUE(insertWorkItem(*m_db, { "ops", {}, "task", "t", "normal", "", "", "" }));
    m_db->exec("DROP TABLE work_session; DROP TABLE work_agent;");
    EXPECT_TRUE(upsertWorkContext(*m_db, { "ops", "k", "s", "t", "", "" })) << "what is missing counts nothing";
}

TEST_F(WorkRecordsTest, theDigestCountsTheDay)
{
    const qint64 start = startOfTodayMs(m_clock.nowMs());
    const qint64 now = m_clock.nowMs();
    const auto meeting = [&](const char* title, qint64 at, int allDay) {
        m_db->run("INSERT INTO calendar_event(id, workspace_id, title, start_ms, end_ms, all_day, updated_at) "
                  "VALUES(?,'local',?,?,?,?,0);",
            { QString::fromUtf8(title), QString::fromUtf8(title), at, at + 1, allDay });
    };
    EXPECT_FALSE(hasCalendar(*m_db));
    meeting("before", now - 1, 0);
    EXPECT_TRUE(hasCalendar(*m_db));
    meeting("next", now + 1, 0);
    meeting("later", now + 2, 0);
    meeting("holiday", start, 1);
    meeting("tomorrow", start + 86'400'000, 0);
    for (const char* status : { "open", "odd", "done", "closed", "rejected" })
        m_db->run("INSERT INTO work_item(id, module, status) VALUES(?,'cx',?);",
            { QString::fromUtf8(status), QString::fromUtf8(status) });
    const QString today = isoTime(start);
    const QString yesterday = isoTime(start - 1000);
    for (const QString& at : { yesterday, today }) {
        m_db->run("INSERT INTO work_evidence(id, created_at) VALUES(?,?);", { at, at });
        m_db->run("INSERT INTO work_message(id, created_at) VALUES(?,?);", { at, at });
        m_db->run("INSERT INTO \"update\"(id, body, created_at) VALUES(?,?,?);", { at, "said " + at, at });
    }
    EXPECT_EQ(
        todayDigest(*m_db, start, start + 86'400'000, today), (TodayDigest { 3, u"next"_s, 2, 2, "said " + today }));
    EXPECT_EQ(
        todayDigest(*m_db, start + 2 * 86'400'000, start + 3 * 86'400'000, "9999"), (TodayDigest { 0, {}, 2, 0, {} }));
}

}
