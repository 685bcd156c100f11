#include "Foundation/Literals.h"
#include "Store/Work/OpsRecords.h"

#include "Store/Search/RecordQueries.h"
#include "Store/Work/BrowserSessions.h"
#include "Store/Work/WorkBoardQueries.h"
#include "Store/Work/WorkWrites.h"
#include "Support/StoreTest.h"

namespace corvane {

class OpsRecordsTest : public StoreTest {
protected:
    OpsRecordsTest() { open(); }

    QString at(int secondsFromNow) { return isoTime(m_clock.nowMs() + secondsFromNow * 1000); }
};

TEST_F(OpsRecordsTest, aTabLivesForTwoIntervalsOfAtLeastHalfAMinute)
{
    const qint64 now = m_clock.nowMs();
    const auto of = [&](const QString& heartbeat, int interval) {
        const Liveness liveness = opsTabLiveness(heartbeat, interval, now);
        return u"%1 %2"_s.arg(liveness.staleSec.value_or(-1)).arg(liveness.isLive);
    };
    EXPECT_EQ(of(at(-59), 10), "59 1");
    EXPECT_EQ(of(at(-61), 10), "61 0");
    EXPECT_EQ(of(at(-1200), 600), "1200 1");
    EXPECT_EQ(of(at(90), 600), "0 1") << "its clock is ahead of ours";
    EXPECT_EQ(of(at(-5).chopped(1) + ".250Z", 600).section(' ', 1), "1");
    for (const char* bad : { "", "yesterday", "2026-99-99T00:00:00Z" })
        EXPECT_EQ(of(bad, 600), "-1 0") << bad;
}

TEST_F(OpsRecordsTest, aProjectShowsItsTabsAsksAndNews)
{
    m_db->run("INSERT INTO project(id, slug, name, priority, updated_at) VALUES('p','shop','Shop',NULL,'1'),"
              "('q','kiln','Kiln',1,'0'),('r','wall','Wall',3,'2');");
    m_db->run("INSERT INTO tab(id, current_project_id, name, heartbeat_at, created_at) VALUES"
              "('t','p','worker',?,'1'),('u','p','tests','long ago','2'),('v',NULL,'alone',?,'3');",
        { at(-10), at(0) });
    m_db->exec("INSERT INTO \"update\"(id, project_id, tab_id, ts, kind, body) VALUES('1','p','t','1','status','old'),"
               "('2','p','t','2','done','new');");
    const auto ask = createOpsAsk(*m_db, { .projectSlug = "shop", .question = " Which clay? ", .urgency = "low" });
    ASSERT_TRUE(ask);
    m_clock.advance(Milliseconds(1000));
    const auto urgent = createOpsAsk(*m_db, { .projectSlug = "none", .question = "Pay now?", .urgency = "high" });
    EXPECT_EQ(urgent->projectId, "");
    EXPECT_EQ(openUrgentAsks(*m_db), 1);
    EXPECT_FALSE(createOpsAsk(*m_db, { .question = " \n", .urgency = "high" }));

    const QList<OpsProjectRow> projects = fetchOpsProjects(*m_db);
    ASSERT_EQ(projects.size(), 3);
    EXPECT_EQ(projects[0].slug, "kiln");
    EXPECT_EQ(projects[1].slug, "shop") << "the ask lifted it";
    EXPECT_EQ(projects[1].priority, 3);
    EXPECT_EQ(projects[1].liveTabs, 1);
    EXPECT_EQ(projects[1].downTabs, 1);
    EXPECT_EQ(projects[1].openAsks, 1);
    EXPECT_EQ(projects[1].latestBody, "new");
    EXPECT_EQ(fetchOpsTabs(*m_db, u"p"_s).first().name, "tests");
    EXPECT_EQ(fetchOpsUpdates(*m_db, {}, 1).first().projectSlug, "shop");

    const auto order = [&](AnsweredAsks answered) {
        QStringList questions;
        for (const OpsAskRow& row : fetchOpsAsks(*m_db, {}, answered, 120))
            questions.append(row.question);
        return questions.join(',');
    };
    EXPECT_EQ(order(AnsweredAsks::Leave), "Pay now?,Which clay?");
    EXPECT_FALSE(answerOpsAsk(*m_db, urgent->id, "  ", "Oskel"));
    EXPECT_EQ(answerOpsAsk(*m_db, urgent->id, "No", "Oskel")->answer, "No");
    EXPECT_EQ(answerOpsAsk(*m_db, urgent->id, "Yes", "LumoAI")->answeredBy, "LumoAI") << "the last answer counts";
    EXPECT_EQ(order(AnsweredAsks::Leave), "Which clay?");
    EXPECT_EQ(order(AnsweredAsks::Include), "Which clay?,Pay now?");

    EXPECT_TRUE(createOpsOrder(*m_db, "p", "t", "Stop after this one", {}));
    EXPECT_FALSE(createOpsOrder(*m_db, "p", "t", " ", {}));
    EXPECT_EQ(fetchOpsOrders(*m_db, "p", 9).first().tabName, "worker");
    EXPECT_EQ(cell("SELECT status FROM message;"), "pending");
}

TEST_F(OpsRecordsTest, aProjectIsWrittenUnderItsSlugAndChangedByItsId)
{
    OpsProjectRow row;
    row.slug = " shop ";
    row.name = " Shop";
    row.priority = 2;
    const auto made = upsertOpsProject(*m_db, row);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->id + '|' + made->slug + '|' + made->name + '|' + made->updatedAt, "pj:shop|shop|Shop|" + at(0));
    EXPECT_FALSE(upsertOpsProject(*m_db, row)) << "the slug is taken";
    m_clock.advance(Milliseconds(1000));
    OpsProjectRow changed = *made;
    changed.goal = "Sell plates ";
    changed.liveTabs = 7;
    const auto kept = upsertOpsProject(*m_db, changed);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->id + '|' + kept->goal + '|' + kept->updatedAt, "pj:shop|Sell plates|" + at(0));
    EXPECT_EQ(kept->liveTabs, 0) << "counts are not written";
    OpsProjectRow given = *made;
    given.id = "given";
    given.slug = "kiln";
    EXPECT_EQ(upsertOpsProject(*m_db, given)->id, "given");
    given.slug = "shop";
    EXPECT_FALSE(upsertOpsProject(*m_db, given)) << "another one has it";
    EXPECT_EQ(table("SELECT id, slug, priority FROM project ORDER BY id;"),
        (QStringList { "given|kiln|2", "pj:shop|shop|2" }));
    const auto ask = createOpsAsk(*m_db, { .projectSlug = "shop", .question = "Fire?", .urgency = "low" });
    EXPECT_EQ(openAsks(*m_db), 1);
    m_clock.advance(Milliseconds(1000));
    answerOpsAsk(*m_db, ask->id, " Yes ", "Oskel");
    EXPECT_EQ(openAsks(*m_db) + openUrgentAsks(*m_db), 0);
    EXPECT_EQ(cell("SELECT updated_at FROM project WHERE id='pj:shop';"), at(0)) << "an answer lifts its project";
    m_clock.advance(Milliseconds(1000));
    EXPECT_TRUE(createOpsOrder(*m_db, "given", "t", " Go ", u"u"_s));
    EXPECT_EQ(table("SELECT from_tab_id, to_tab_id, body FROM message;"), QStringList("u|t|Go"));
    EXPECT_EQ(fetchOpsProjects(*m_db).first().id, "given") << "and so does an order";
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON message BEGIN SELECT RAISE(ABORT, 'full'); END;"
               "CREATE TRIGGER full2 BEFORE INSERT ON ask BEGIN SELECT RAISE(ABORT, 'full'); END;");
    EXPECT_FALSE(createOpsOrder(*m_db, "given", "t", "Go", {}));
    EXPECT_FALSE(createOpsAsk(*m_db, { .projectSlug = "shop", .question = "Lost?", .urgency = "low" }));
}

TEST_F(OpsRecordsTest, aBrowserSessionKeepsItsLastCapture)
{
    DevBrowserSessionRow row { "browser:1", "p", "Shop", "https://shop.example", "web", "live", "", "" };
    EXPECT_TRUE(upsertDevBrowserSession(*m_db, row));
    const QString began = at(0);
    m_clock.advance(Milliseconds(1000));
    row.lastCapturePath = "/shots/1";
    row.status = "captured";
    EXPECT_TRUE(upsertDevBrowserSession(*m_db, row));
    row.lastCapturePath = "";
    row.lastError = "gone";
    EXPECT_TRUE(upsertDevBrowserSession(*m_db, row));
    row.lastCapturePath = "/shots/1";
    row.createdAt = began;
    row.updatedAt = at(0);
    EXPECT_EQ(fetchDevBrowserSessions(*m_db, "p", 9), QList<DevBrowserSessionRow> { row });
    EXPECT_TRUE(fetchDevBrowserSessions(*m_db, "q", 9).isEmpty());
    m_db->exec("DROP TABLE dev_browser_session; DROP TABLE project;");
    EXPECT_FALSE(upsertDevBrowserSession(*m_db, row));
    EXPECT_TRUE(fetchDevBrowserSessions(*m_db, "p", 9).isEmpty());
    EXPECT_FALSE(upsertOpsProject(*m_db, {}));
}

TEST_F(OpsRecordsTest, missingTablesAreEmptyAndTakeNothing)
{
    m_db->exec("DROP TABLE project; DROP TABLE tab; DROP TABLE \"update\";");
    EXPECT_TRUE(fetchOpsProjects(*m_db).isEmpty());
    EXPECT_TRUE(createOpsAsk(*m_db, { .projectSlug = "x", .question = "Alone?", .urgency = "normal" }));
    EXPECT_EQ(fetchOpsAsks(*m_db, {}, AnsweredAsks::Leave, 9).size(), 1) << "asks need no projects";
    m_db->exec("DROP TABLE ask; DROP TABLE message;");
    EXPECT_TRUE(fetchOpsTabs(*m_db, {}).isEmpty());
    EXPECT_TRUE(fetchOpsUpdates(*m_db, {}, 9).isEmpty());
    EXPECT_TRUE(fetchOpsAsks(*m_db, {}, AnsweredAsks::Include, 9).isEmpty());
    EXPECT_FALSE(createOpsAsk(*m_db, { .question = "Here?", .urgency = "high" }));
    EXPECT_FALSE(answerOpsAsk(*m_db, "x", "y", "Oskel"));
    EXPECT_FALSE(createOpsOrder(*m_db, "p", "t", "b", {}));
    EXPECT_TRUE(fetchOpsOrders(*m_db, "p", 9).isEmpty());
    EXPECT_EQ(openUrgentAsks(*m_db), 0);
    EXPECT_TRUE(findRecords(*m_db, u"a"_s, { {}, 0, 5 }).records.isEmpty());
}

TEST_F(OpsRecordsTest, aBoardCountsFiltersAndTellsTheStory)
{
    const auto context = upsertWorkContext(*m_db, { "ops", "process", "may", "May invoices", "", "Oskel" });
    const WorkContextId id = context->id;
    const auto pay = insertWorkItem(*m_db, { "ops", id, "finance", "Pay_the 100% clay", "high", "Oskel", "ui", "" });
    insertWorkItem(*m_db, { "ops", id, "task", "Payxthe 100 clay", "normal", "Ana", "ui", QString(900, u'x') });
    insertWorkItem(*m_db, { "cx", {}, "bug", "Pay_the", "normal", "Ana", "ui", "" });
    updateWorkItemStatus(*m_db, insertWorkItem(*m_db, { "ops", {}, "task", "Old", "low", "", "ui", "" })->id, "Closed");
    WorkItemFilter filter { .module = "ops", .context = {} };
    ASSERT_EQ(fetchWorkItems(*m_db, filter, WorkItems::Open, 9).size(), 2);
    EXPECT_EQ(fetchWorkItems(*m_db, filter, WorkItems::Finished, 9).first().title, "Old");
    EXPECT_EQ(fetchWorkItems(*m_db, filter, WorkItems::Open, 9).last().summary.size(), 400);
    EXPECT_EQ(countWorkItems(*m_db, filter).size(), 2);
    EXPECT_EQ(workItemWords(*m_db, "ops", {}).owners, (QStringList { "Ana", "Oskel" }));
    const auto titles = [&](const WorkItemFilter& which) {
        QStringList titles;
        for (const WorkItemRecord& each : fetchWorkItems(*m_db, which, WorkItems::Open, 9))
            titles.append(each.title);
        return titles.join(',');
    };
    EXPECT_EQ(titles({ .module = "ops", .context = {}, .priority = "high" }), "Pay_the 100% clay");
    EXPECT_EQ(titles({ .module = "ops", .context = {}, .kind = "task" }), "Payxthe 100 clay");
    EXPECT_EQ(titles({ .module = "ops", .context = {}, .owner = "Ana" }), "Payxthe 100 clay");
    EXPECT_EQ(titles({ .module = "ops", .context = {}, .kindSigns = { "nance", "x" } }), "Pay_the 100% clay");
    EXPECT_EQ(
        titles({ .module = "ops", .context = {}, .kindSigns = { "nance" }, .otherKinds = true }), "Payxthe 100 clay");
    EXPECT_EQ(titles({ .module = "ops", .context = {}, .textSigns = { "FINANCE pay" } }), "Pay_the 100% clay");
    EXPECT_EQ(workItemWords(*m_db, "ops", {}).priorities + workItemWords(*m_db, "ops", id).kinds,
        (QStringList { "high", "low", "normal", "finance", "task" }));
    EXPECT_TRUE(isFinishedStatus("REJECTED") && isFinishedStatus("done") && isFinishedStatus("closed"));
    EXPECT_FALSE(isFinishedStatus("open"));
    filter.words = "y_the 100%";
    EXPECT_EQ(fetchWorkItems(*m_db, filter, WorkItems::Open, 9).size(), 1) << "signs of LIKE are letters";
    EXPECT_EQ(findRecords(*m_db, u"pay_the"_s, { {}, 0, 5 }).records.size(), 2);
    insertWorkDecision(*m_db, { "ops", id, "Pay", "", "", "money" });
    insertWorkDecision(*m_db, { "ops", {}, "Fire", "", "", "high" });
    insertWorkMemory(*m_db, { "ops", id, "fact", "Mondays", "agent", "medium", "Ana" });
    insertWorkEvidence(*m_db, { "ops", id, {}, "runbook", "Firing", "ui", "", "" });
    upsertWorkAgent(*m_db, { "ops", id, "Ana", "codex", "ops", "running", "Heat", "s" });
    const WorkCounts counts {
        .contexts = 1, .openItems = 2, .agents = 1, .evidence = 1, .waitingDecisions = 1, .proposedMemory = 1
    };
    EXPECT_EQ(countWork(*m_db, "ops", id), counts);
    EXPECT_EQ(countWork(*m_db, "ops", {}).waitingDecisions, 2);
    EXPECT_EQ(waitingDecisionsByContext(*m_db, "ops").value(*id), 1);
    EXPECT_EQ(titlesOfWaitingDecisions(*m_db, "ops", id), QStringList("Pay"));
    EXPECT_EQ(fetchWaitingDecisions(*m_db, "ops", {}, 9).first().title, "Pay") << "money first";
    EXPECT_EQ(fetchWaitingDecisions(*m_db, "ops", {}, 1).size(), 1);
    EXPECT_EQ(fetchMemoryOfAllModules(*m_db, 9).first().body, "Mondays");
    EXPECT_EQ(
        fetchEvidenceOfKind(*m_db, "runbook", 9).first().title + fetchAgentRoster(*m_db, 9).first().name, "FiringAna");
    EXPECT_TRUE(fetchEvidenceOfKind(*m_db, "note", 9).isEmpty());
    m_db->exec("DELETE FROM work_decision; DELETE FROM work_evidence;");

    WorkItemRecord edited = *pay;
    edited.title = "Pay the clay";
    EXPECT_EQ(updateWorkItem(*m_db, *pay, edited), WorkItemSaved::Saved);
    EXPECT_EQ(updateWorkItem(*m_db, *pay, edited), WorkItemSaved::Changed) << "it is not as it was seen";
    edited.status = " ";
    EXPECT_EQ(updateWorkItem(*m_db, *fetchWorkItem(*m_db, pay->id), edited), WorkItemSaved::Failed);

    const auto tick = [&] {
        m_clock.advance(Milliseconds(1000));
    };
    insertWorkDecision(*m_db, { "ops", id, "Review Pay the clay", "Hold", "Why", "money" });
    tick();
    insertWorkEvidence(*m_db, { "ops", id, pay->id, "note", "Invoice 340", "mail", "", "s" });
    tick();
    insertWorkMessage(*m_db, { "ops", id, "Corvane", "system", "status", "Created item " + pay->id });
    insertWorkMessage(*m_db, { "ops", id, "Ana", "assistant", "message", "Something else" });
    const auto kinds = [](const QList<WorkEvent>& events) {
        QStringList kinds;
        for (const WorkEvent& event : events)
            kinds.append(event.kind);
        return kinds.join(' ');
    };
    EXPECT_EQ(kinds(fetchWorkEvents(*m_db, "ops", id, 50)), "decision evidence message message");
    EXPECT_EQ(kinds(fetchItemEvents(*m_db, *fetchWorkItem(*m_db, pay->id), 50)), "decision evidence message");
    EXPECT_EQ(lastWordsOf(*m_db, "ops", "Ana"), "Something else");
    EXPECT_EQ(lastWordsOf(*m_db, "ops", "Ben") + lastWordsOf(*m_db, "cx", "Ana"), "");
    m_db->exec("DROP TABLE work_message; DROP TABLE work_item; DROP TABLE work_decision;");
    EXPECT_EQ(lastWordsOf(*m_db, "ops", "Ana"), "");
    EXPECT_TRUE(countWorkItems(*m_db, filter).isEmpty());
    EXPECT_EQ(workItemWords(*m_db, "ops", {}), WorkItemWords());
    EXPECT_TRUE(waitingDecisionsByContext(*m_db, "ops").isEmpty());
    EXPECT_TRUE(titlesOfWaitingDecisions(*m_db, "ops", {}).isEmpty());
}

}
