#include "Foundation/Literals.h"
#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/LumoHub.h"
#include "Work/OpsHub.h"
#include "WorkTest.h"

#include "Store/Core/StoreWatch.h"
#include "Store/People/CrmRecords.h"

#include <QSignalSpy>

namespace corvane {

namespace {

class Hubs : public WorkTest {
protected:
    void person(const QString& id, const QString& name, const QString& external = u"1@s.whatsapp.net"_s)
    {
        m_db->run("INSERT INTO contact(id, workspace_id, display_name) VALUES(?,'local',?);", { id, name });
        m_db->run("INSERT INTO unified_conversation(id, workspace_id, channel, external_id, contact_id) "
                  "VALUES(?,'local','WHATSAPP',?,?);",
            { "c" + id, external, id });
    }

    void says(const QString& id, const char* direction, int minutesAgo)
    {
        const qint64 ts = m_clock.nowMs() - minutesAgo * 60'000LL;
        m_db->run("INSERT INTO unified_message(id, workspace_id, conversation_id, direction, body, ts) "
                  "VALUES(?,'local',?,?,'hi',?);",
            { u"m%1%2"_s.arg(id).arg(ts), "c" + id, QString::fromLatin1(direction), ts });
        m_db->run("UPDATE unified_conversation SET last_ts=MAX(last_ts,?) WHERE id=?;", { ts, "c" + id });
    }
};

}

TEST_F(Hubs, theQueueHoldsWhoWaitsLongestFirst)
{
    for (const char* id : { "ana", "ben", "cem", "dora", "eve" })
        person(id, QString::fromLatin1(id));
    person("group", "group", u"1@g.us"_s);
    says("ana", "OUT", 900);
    says("ana", "IN", 800);
    says("ana", "IN", 5);
    says("ben", "IN", 400);
    says("cem", "IN", 100);
    says("cem", "OUT", 50);
    says("dora", "IN", 90);
    says("eve", "IN", 70 * 24 * 60);
    says("group", "IN", 1000);
    person("kiln", "Kiln Monitor");
    for (int minute = 1; minute <= 30; ++minute)
        says("kiln", "IN", minute);
    person("shop", "Shop");
    says("shop", "IN", 600);
    m_db->run("INSERT INTO contact_identity(id, contact_id, channel, handle) "
              "VALUES('i','shop','EMAIL','No-Reply@shop.example');");
    m_db->exec("UPDATE unified_conversation SET muted=1 WHERE id='cdora';");
    const WorkContextRow client = context(u"Ana"_s, u"cx"_s);
    item(client.id, u"Glaze chips"_s, u"open"_s, u"bug"_s, u"cx"_s);
    CXHub hub(services);
    hub.shell()->setShown(true);
    ASSERT_EQ(hub.queueRows().size(), 2);
    EXPECT_EQ(hub.queueRows().at(0).name + ": " + hub.queueRows().at(0).work, "ana: 1 open · 1 ticket");
    EXPECT_EQ(hub.queueRows().at(0).waits, "wrote 13 hours ago") << "since the first message that was not answered";
    EXPECT_EQ(hub.queueRows().at(1).name, "ben");
    EXPECT_EQ(hub.queueText(), "2 people wait · 2 automatic senders left out");
    EXPECT_EQ(hub.thread()->rowCount(), 3);
    QString opened;
    const auto observation
        = m_centre.observe(notifications::openConversation, [&](const Notification& told) { opened = *told.object; });
    hub.step(1);
    hub.reply();
    EXPECT_EQ(opened, "ben");
    hub.newTicket();
    EXPECT_EQ(hub.shell()->create()->field(u"title"_s).text(), "ben: ");
}

TEST_F(Hubs, dealsStandByStageWithTheirSumsAndAreMovedBack)
{
    person("ana", "Ana");
    says("ana", "IN", 20 * 24 * 60);
    const QString id = *insertCRMDeal(*m_db, "ana", { "Plates", "Proposal", "€1.8k", "Taller", {} });
    insertCRMDeal(*m_db, "ana", { "Bowls", "Proposal", "£200", "", {} });
    insertCRMDeal(*m_db, "ana", { "Odd", "", "soon", "", {} });
    GTMHub hub(services);
    hub.shell()->setShown(true);
    ASSERT_EQ(hub.stageCount(), 7);
    EXPECT_EQ(hub.stage(2)->sum(), "£200 + €1,800") << "pounds and euros are no sum";
    EXPECT_EQ(hub.stage(6)->title(), "Unstaged");
    EXPECT_TRUE(hub.stage(2)->rows().first().cold);
    hub.moveDealBy(id, 1);
    EXPECT_EQ(cell("SELECT stage FROM crm_deal WHERE name='Plates';"), "Negotiation");
    EXPECT_EQ(hub.stage(3)->count(), 1);
    hub.undo();
    EXPECT_EQ(hub.stage(2)->count(), 2);
    hub.moveDealBy(cell("SELECT id FROM crm_deal WHERE name='Odd';"), -1);
    hub.undo();
    EXPECT_EQ(cell("SELECT stage FROM crm_deal WHERE name='Odd';"), "") << "as it was, not as it is shown";
}

TEST_F(Hubs, lumoShowsKnowledgeAgentsAndFlowsOfEveryModule)
{
    insertWorkMemory(*m_db, { "cx", {}, "fact", "Gallery opens late", "agent", "medium", "Ana" });
    insertWorkEvidence(*m_db, { "ops", {}, {}, "runbook", "Firing", "ui", "", "Slowly" });
    insertWorkEvidence(*m_db, { "ops", {}, {}, "note", "Other", "ui", "", "" });
    upsertWorkAgent(*m_db, { "gtm", {}, "Researcher", "codex", "research", "running", "Look", "s" });
    insertWorkMessage(*m_db, { "gtm", {}, "Researcher", "assistant", "message", "Found three" });
    LumoHub hub(services);
    hub.shell()->setShown(true);
    EXPECT_EQ(hub.flowRows().size(), 1);
    ASSERT_EQ(hub.agents()->rows().size(), 1);
    EXPECT_EQ(hub.agents()->rows().first().lastWords, "Found three");
    EXPECT_FALSE(hub.propose(u" "_s));
    EXPECT_TRUE(hub.propose(u"We fire on Mondays"_s));
    EXPECT_EQ(hub.shell()->rail()->places().first().count, 2);
    hub.knowledge()->decideMemory(hub.knowledge()->memoryRows().first().id, true);
    EXPECT_EQ(hub.shell()->rail()->places().first().count, 1);
}

TEST_F(Hubs, opsCountsGatesAndOrders)
{
    m_db->run("INSERT INTO project(id, slug, name, updated_at) VALUES('p','shop','Shop','1');");
    m_db->run("INSERT INTO tab(id, current_project_id, name, heartbeat_at, created_at) VALUES('t','p','worker',?,'1');",
        { isoTime(m_clock.nowMs()) });
    item({}, u"Pay invoice 7"_s);
    item({}, u"Sweep"_s, u"in_progress"_s);
    OpsHub hub(services);
    EXPECT_EQ(hub.urgent(), 0);
    createOpsAsk(*m_db, { .projectSlug = "shop", .question = "Stop?", .urgency = "high" });
    hub.shell()->setShown(true);
    EXPECT_EQ(hub.urgent(), 1);
    EXPECT_EQ(hub.activeText(), "1 in progress");
    EXPECT_EQ(hub.shell()->rail()->places().at(2).count, 1);
    hub.shell()->rail()->setPlace(u"finance"_s);
    ASSERT_EQ(hub.finance()->rows().size(), 1);
    hub.finance()->gate();
    EXPECT_EQ(
        table("SELECT title, status, risk FROM work_decision;"), QStringList("Review finance action|proposed|money"));
    EXPECT_EQ(hub.finance()->metrics().at(2).value, "1");
    hub.finance()->setQuery(u"nothing"_s);
    EXPECT_EQ(hub.finance()->emptyText(), "No finance work matches “nothing”.");
    hub.showProject(u"p"_s);
    EXPECT_EQ(hub.projects()->title() + ' ' + hub.projects()->orderTabName(), "Shop worker");
    EXPECT_TRUE(hub.projects()->order(u"Stop after this"_s));
    EXPECT_EQ(cell("SELECT to_tab_id FROM message;"), "t");
    m_db->exec("DROP TABLE message;");
    EXPECT_FALSE(hub.projects()->order(u"Again"_s));
    EXPECT_FALSE(hub.projects()->error().isEmpty());
    m_clock.advance(Milliseconds(1'201'000));
    hub.shell()->refresh();
    EXPECT_FALSE(hub.projects()->tabRows().first().live);
}

TEST_F(Hubs, aPersonInTheQueueIsReadWithTheirWork)
{
    person("ana", "Ana");
    says("ana", "OUT", 5000);
    says("ana", "IN", 24 * 60 + 1);
    says("ana", "IN", 10);
    m_db->exec("UPDATE unified_message SET body='', media_type='image' WHERE rowid=3;"
               "UPDATE unified_message SET body='' WHERE rowid=2;");
    person("ben", "");
    says("ben", "IN", 24 * 60 - 1);
    person("bot", "Kiln", u"kiln_bot"_s);
    m_db->exec(
        "UPDATE unified_conversation SET channel='TELEGRAM' WHERE id='cbot';"
        "INSERT INTO contact_identity(id, contact_id, channel, handle) VALUES('i','bot','TELEGRAM','kiln_Bot');");
    says("bot", "IN", 30);
    person("talker", "Talker");
    for (int minute = 1; minute <= 29; ++minute)
        says("talker", "IN", minute);
    const WorkContextRow client = context(u"ANA"_s, u"cx"_s);
    item(client.id, u"Glaze chips"_s, u"open"_s, u"bug"_s, u"cx"_s);
    item(client.id, u"Hand over"_s, u"open"_s, u"handoff"_s, u"cx"_s);
    item(client.id, u"Visit"_s, u"open"_s, u"task"_s, u"cx"_s);
    CXHub hub(services);
    hub.shell()->setShown(true);
    EXPECT_EQ(hub.queueText(), "3 people wait · 1 for more than a day · 1 automatic sender left out");
    EXPECT_EQ(hub.shell()->rail()->places().first().count, 3);
    EXPECT_EQ(hub.name() + ": " + hub.facts(), "Ana: wrote 24 hours ago · 3 open · 1 ticket");
    QStringList thread;
    for (const QueueMessage& each : static_cast<RowListModel<QueueMessage>*>(hub.thread())->rows())
        thread.append((each.mine ? "me: " : "") + each.body);
    EXPECT_EQ(thread, (QStringList { "me: hi", "(empty)", "(image)" }));
    EXPECT_EQ(hub.items()->rowCount(), 3);
    hub.newTicket();
    EXPECT_EQ(hub.shell()->rail()->selectedContextId(), client.id);
    EXPECT_EQ(
        hub.shell()->create()->field(u"kind"_s).text() + hub.shell()->create()->field(u"title"_s).text(), "ticket");
    const auto shown = [&](const QString& tab) {
        hub.shell()->setTab(tab);
        QStringList titles;
        for (const WorkItemSeed& each : hub.shell()->board()->lane(0)->rows())
            titles.append(each.title);
        titles.sort();
        return titles.join(',');
    };
    EXPECT_EQ(shown(u"tickets"_s) + '|' + shown(u"handoffs"_s) + '|' + shown(u"projects"_s),
        "Glaze chips|Hand over|Hand over,Visit");
    EXPECT_EQ(hub.shell()->tasks()->rowCount(), 2);
    hub.step(1);
    EXPECT_EQ(hub.name() + ": " + hub.itemsText(), "Unknown: No open work about this person.");
    hub.step(9);
    EXPECT_EQ(hub.name(), "Talker") << "29 messages are a person's";
    says("talker", "OUT", 0);
    hub.shell()->refresh();
    EXPECT_EQ(hub.name(), "Ana") << "who was answered waits no more";
}

TEST_F(Hubs, whatThePipelineIsWorthWhatWentQuietAndWhatWasNotSaved)
{
    person("ana", "Ana");
    person("ben", "Ben");
    says("ana", "OUT", 14 * 24 * 60);
    GTMHub hub(services);
    hub.shell()->setShown(true);
    EXPECT_EQ(hub.emptyTitle(), "No deals yet");
    const QString plates = *insertCRMDeal(*m_db, "ana", { "Plates", "Proposal", "€1.8k", "Taller", {} });
    insertCRMDeal(*m_db, "ana", { "Bowls", "Closed Won", "€200", "", {} });
    insertCRMDeal(*m_db, "ben", { "Cups", "Closed Lost", "€5", "", {} });
    item({}, u"Call"_s, u"open"_s, u"task"_s, u"gtm"_s);
    const auto metrics = [&] {
        hub.shell()->refresh();
        QStringList values;
        for (const WorkMetricSeed& each : hub.metrics())
            values.append(each.value);
        return values.join('|');
    };
    EXPECT_EQ(metrics(), "€1,800|€200|0|1") << "fourteen days are not quiet yet, and a closed deal never is";
    EXPECT_EQ(hub.emptyTitle(), "");
    EXPECT_EQ(hub.stage(2)->rows().first().person + ": " + hub.stage(2)->rows().first().touched,
        "Ana · Taller: last message 14 days ago");
    EXPECT_EQ(hub.stage(5)->rows().first().touched, "no message yet");
    m_clock.advance(Milliseconds(60'000));
    EXPECT_EQ(metrics(), "€1,800|€200|1|1");
    QString opened;
    const auto observation
        = m_centre.observe(notifications::openConversation, [&](const Notification& told) { opened = *told.object; });
    hub.openPerson({});
    EXPECT_EQ(opened, "");
    hub.openPerson(u"ana"_s);
    EXPECT_EQ(opened, "ana");
    hub.moveDealBy(plates, 1);
    EXPECT_EQ(hub.undoText(), "Moved to Negotiation: Plates");
    m_db->exec("UPDATE crm_deal SET stage='Closed Won' WHERE name='Plates';");
    hub.shell()->refresh();
    hub.undo();
    EXPECT_EQ(cell("SELECT stage FROM crm_deal WHERE name='Plates';"), "Closed Won") << "whoever moved it on meant it";
    hub.moveDealBy(plates, 99);
    EXPECT_EQ(cell("SELECT stage FROM crm_deal WHERE name='Plates';"), hub.stage(hub.stageCount() - 1)->stage());
    m_db->exec("CREATE TRIGGER full BEFORE UPDATE ON crm_deal BEGIN SELECT RAISE(ABORT,'full'); END;");
    hub.moveDealBy(plates, -1);
    EXPECT_EQ(hub.error(), "It could not be moved: the change was not saved.");
}

TEST_F(Hubs, aProjectShowsWhatItsAgentsReportAskAndWereOrdered)
{
    m_db->run(
        "INSERT INTO project(id, slug, name, category, status, repo_path, exec_host, updated_at) "
        "VALUES('p','shop','Shop','Web','paused','~/shop','Local','1'), ('q','kiln','','','active','','box','0');");
    m_db->run("INSERT INTO tab(id, current_project_id, name, heartbeat_at, created_at) "
              "VALUES('t','p','worker',?,'2'), ('u','p','tester','','1');",
        { isoTime(m_clock.nowMs()) });
    OpsHub hub(services);
    hub.shell()->setShown(true);
    hub.showProject(u"p"_s);
    OpsProjects& projects = *hub.projects();
    EXPECT_EQ(projects.rows().at(0).group + '|' + projects.rows().at(0).facts, "Web|Web · priority 3 · paused");
    EXPECT_EQ(projects.rows().at(1).group + '|' + projects.rows().at(1).name + '|' + projects.rows().at(1).facts,
        "Other|kiln|priority 3");
    EXPECT_TRUE(projects.rows().at(0).aloud.startsWith("Shop, 1 live terminal, 1 down, 0 open questions"));
    EXPECT_EQ(projects.facts(), "~/shop · this computer");
    ASSERT_EQ(projects.tabRows().size(), 2);
    EXPECT_EQ(projects.tabRows().at(0).state + '|' + projects.tabRows().at(1).state,
        "Live · last seen just now|Down · never seen");
    EXPECT_FALSE(projects.order(u" "_s));
    projects.setOrderTab(u"u"_s);
    EXPECT_TRUE(projects.order(u"Fire it"_s));
    EXPECT_EQ(projects.orderTabName(), "tester") << "the choice stays";
    const OpsLine order = static_cast<RowListModel<OpsLine>*>(projects.orders())->rows().first();
    EXPECT_EQ(order.title + '|' + order.detail.section(" · ", 0, 0) + '|' + order.status,
        "Fire it|to tester|Waiting for its agent");
    const auto ask = createOpsAsk(*m_db, { .projectSlug = "shop", .question = "Stop?", .urgency = "high" });
    hub.showAsk(ask->id);
    EXPECT_EQ(hub.shell()->rail()->place() + '|' + hub.asks()->answering(), "asks|Stop?");
    hub.shell()->refresh();
    EXPECT_TRUE(hub.asks()->rows().first().aloud.startsWith("Urgent question, Stop?, shop"));
    hub.asks()->setAnswerText(u"Yes"_s);
    m_db->exec("CREATE TRIGGER full BEFORE UPDATE ON ask BEGIN SELECT RAISE(ABORT,'full'); END;");
    hub.asks()->saveAnswer();
    EXPECT_EQ(hub.asks()->error().section(':', 0, 0) + hub.asks()->answerText(), "It was not savedYes");
    m_db->exec("DROP TRIGGER full;");
    hub.asks()->saveAnswer();
    EXPECT_EQ(hub.urgent(), 0);
    EXPECT_EQ(hub.shell()->rail()->places().at(2).count, 0);
    hub.asks()->setIncludeAnswered(true);
    EXPECT_EQ(hub.asks()->rows().last().answer, "Oskel: Yes");
    hub.asks()->beginAnswer(ask->id);
    EXPECT_EQ(hub.asks()->answerText(), "Yes");
    lumo.model.willFail("no model");
    hub.asks()->answerWithLumo();
    EXPECT_EQ(hub.asks()->error(), "Ask saved; LumoAI could not answer: no model");
    lumo.model.willAnswer("No.");
    hub.asks()->answerWithLumo();
    EXPECT_EQ(hub.asks()->answering() + hub.asks()->rows().last().answer, "LumoAI: No.") << "and the sheet is closed";
    hub.showProject(u"q"_s);
    EXPECT_EQ(projects.title() + projects.orderTabName() + projects.facts(), "kilnbox");
}

TEST_F(Hubs, homeTellsDecisionsFirstAndFinanceCountsItsOwn)
{
    const WorkContextRow pay = context(u"Payroll run"_s);
    const WorkContextRow kiln = context(u"Kiln"_s);
    for (const WorkContextRow* each : { &pay, &kiln })
        insertWorkEvidence(*m_db, { "ops", each->id, {}, "note", "Bill of " + each->title, "ui", "", "" });
    insertWorkMessage(*m_db, { "ops", kiln.id, "Ana", "assistant", "message", "Hot" });
    insertWorkDecision(*m_db, { "ops", pay.id, "Pay Ana", "", "", "money" });
    insertWorkDecision(*m_db, { "ops", kiln.id, "Fire", "", "", "high" });
    insertWorkDecision(*m_db, { "cx", {}, "Refund", "", "", "money" });
    item(pay.id, u"Payment to Ana"_s);
    item(pay.id, u"Invoice of May"_s, u"done"_s);
    OpsHub hub(services);
    hub.shell()->setShown(true);
    QStringList latest;
    for (const OpsTimelineEvent& each : static_cast<RowListModel<OpsTimelineEvent>*>(hub.latest())->rows())
        latest.append(each.label);
    EXPECT_EQ(latest.join(','), "decision,decision,evidence,evidence,message");
    hub.shell()->rail()->setPlace(u"finance"_s);
    OpsFinance& finance = *hub.finance();
    QStringList metrics;
    for (const WorkMetricSeed& each : finance.metrics())
        metrics.append(each.label + ' ' + each.value);
    EXPECT_EQ(metrics.join(", "), "Finance contexts 1, Open work 1, Pending approvals 1, Evidence 1");
    EXPECT_EQ(finance.rows().size(), 2) << "what is finished, too";
    finance.setQuery(u" INVOICE "_s);
    ASSERT_EQ(finance.rows().size(), 1);
    EXPECT_EQ(finance.emptyText(), "");
    EXPECT_EQ(finance.metrics().at(1).value, "1") << "the search narrows the list, not the figures";
    m_db->exec("DROP TABLE work_decision;");
    finance.gate();
    EXPECT_TRUE(finance.notice().startsWith("The decision was not saved"));
    finance.dismissNotice();
    EXPECT_EQ(finance.notice(), "");
    LumoHub lumoHub(services);
    m_db->exec("DROP TABLE work_memory;");
    EXPECT_FALSE(lumoHub.propose(u"Lost?"_s));
    EXPECT_EQ(lumoHub.error(), "It was not saved: the database could not be written.");
}

TEST_F(Hubs, whoIsChosenStaysChosenAndAgesEveryMinute)
{
    CXHub hub(services);
    hub.shell()->setShown(true);
    QString opened;
    const auto observation
        = m_centre.observe(notifications::openConversation, [&](const Notification& told) { opened = *told.object; });
    hub.step(1);
    hub.reply();
    EXPECT_EQ(opened + hub.name() + hub.facts() + hub.queueText(), "") << "nobody waits";
    person("ana", "Ana Ruiz");
    person("ben", "Ben");
    says("ana", "IN", 25 * 60);
    says("ben", "IN", 1);
    m_db->watch().tell(StoreSubject::Messages);
    m_clock.advance(Milliseconds(3000));
    ASSERT_EQ(hub.queueRows().size(), 2) << "messages are read at the next tick";
    const WaitingSeed ana = hub.queueRows().first();
    EXPECT_EQ(ana.initials + '|' + ana.channel + '|' + ana.snippet + '|' + ana.aloud,
        "AR|WHATSAPP|hi|Ana Ruiz, wrote 25 hours ago, , hi");
    EXPECT_TRUE(ana.late);
    EXPECT_FALSE(hub.queueRows().last().late);
    EXPECT_NE(ana.hue, hub.queueRows().last().hue);
    const QSignalSpy changed(&hub, &CXHub::changed);
    hub.select(u"ben"_s);
    hub.select(u"ben"_s);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(hub.selected() + ": " + hub.facts(), "ben: wrote 1 minute ago");
    EXPECT_EQ(hub.thread()->rowCount(), 1);
    hub.step(-5);
    EXPECT_EQ(hub.selected(), "ana");
    hub.select(u"ben"_s);
    m_clock.advance(Milliseconds(60'000));
    EXPECT_EQ(hub.facts(), "wrote 2 minutes ago");
    EXPECT_EQ(hub.selected(), "ben");
}

TEST_F(Hubs, aStageOfAnotherProgramComesAndGoes)
{
    person("ana", "Ana");
    const QString id = *insertCRMDeal(*m_db, "ana", { "Plates", "Prospecting", "1.800 €", "", {} });
    GTMHub hub(services);
    hub.shell()->setShown(true);
    EXPECT_EQ(hub.emptyText(), "To add a deal, open a conversation and use the pane beside it.");
    const QSignalSpy stages(&hub, &GTMHub::stagesChanged);
    EXPECT_EQ(hub.stageCount(), 6);
    m_db->exec("UPDATE crm_deal SET stage='Tasting';");
    m_db->watch().tell(StoreSubject::Messages);
    m_clock.advance(Milliseconds(3000));
    EXPECT_EQ(hub.stageCount(), 7);
    EXPECT_EQ(hub.stage(6)->title() + hub.stage(6)->stage(), "TastingTasting");
    EXPECT_EQ(hub.stage(6)->rows().first().aloud, "Plates, Ana, 1.800 €, no message yet");
    EXPECT_TRUE(hub.stage(6)->rows().first().cold) << "a stage that is not known is open";
    hub.moveDeal(id, 7);
    hub.moveDeal(id, -1);
    hub.moveDeal(id, 6);
    hub.moveDeal(u"nothing"_s, 1);
    hub.moveDealBy(u"nothing"_s, 1);
    EXPECT_EQ(cell("SELECT stage FROM crm_deal;") + hub.undoText(), "Tasting");
    QSignalSpy changed(hub.stage(1), &PipelineStage::changed);
    hub.moveDeal(id, 1);
    EXPECT_EQ(changed.size(), 1);
    hub.shell()->refresh();
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(hub.stageCount(), 6);
    EXPECT_EQ(stages.size(), 2);
    hub.dismissUndo();
    hub.undo();
    EXPECT_EQ(hub.stage(1)->count(), 1);
    hub.shell()->rail()->select(context(u"Fair"_s, u"gtm"_s).id);
    m_db->exec("DELETE FROM crm_deal;");
    hub.shell()->refresh();
    EXPECT_EQ(hub.stage(1)->count(), 1) << "what is not shown is not read";
    hub.shell()->rail()->setPlace(u"pipeline"_s);
    EXPECT_EQ(hub.emptyTitle(), "No deals yet");
}

TEST_F(Hubs, lumoSaysWhatItKnowsAndWhichAgentsAreSilent)
{
    insertWorkEvidence(*m_db, { "ops", {}, {}, "runbook", "Firing", "ui", "", "Slowly" });
    upsertWorkAgent(*m_db, { "gtm", {}, "Researcher", "codex", "research", "running", "Look", "s" });
    LumoHub hub(services);
    hub.shell()->setShown(true);
    EXPECT_EQ(hub.flowRows().first().title + ": " + hub.flowRows().first().summary, "Firing: Slowly");
    EXPECT_TRUE(hub.knowledgeEmpty().startsWith("Facts appear here"));
    EXPECT_TRUE(hub.flowsEmpty().startsWith("Runbooks are notes"));
    EXPECT_EQ(hub.shell()->rail()->places().at(1).count, 0);
    m_clock.advance(Milliseconds(1'260'000));
    EXPECT_EQ(hub.agents()->silent(), 1) << "the minutes tell";
    hub.shell()->refresh();
    EXPECT_EQ(hub.shell()->rail()->places().at(1).count, 1);
    EXPECT_TRUE(hub.propose(u" We fire on Mondays "_s));
    EXPECT_EQ(table("SELECT module, kind, body, source, confidence, status, owner FROM work_memory;"),
        QStringList("lumo|fact|We fire on Mondays|lumo-hub|medium|proposed|Oskel"));
}

TEST_F(Hubs, aSenderIsAProgramByItsAddressOrByItsNumbers)
{
    const auto isProgram
        = [](const QString& channel, const QString& handle, int unanswered = 1, bool answered = false) {
              WaitingPerson person;
              person.channel = channel;
              person.handles = { u"ana@x.example"_s, handle };
              person.unanswered = unanswered;
              person.everAnswered = answered;
              return isAutomatic(person);
          };
    for (const char* handle : { "No-Reply@x.example", "donotreply+1@x.example", "Mailer-Daemon@x.example",
             "alerts@x.example", "notify@x.example", "news.letter@x.example" })
        EXPECT_TRUE(isProgram(u"EMAIL"_s, QString::fromLatin1(handle))) << handle;
    for (const char* handle : { "ana@noreply.example", "alertsandmore@x.example", "robot@x.example", "weatherbot" })
        EXPECT_FALSE(isProgram(u"EMAIL"_s, QString::fromLatin1(handle))) << handle;
    EXPECT_TRUE(isProgram(u"TELEGRAM"_s, u"WeatherBot"_s));
    EXPECT_FALSE(isProgram(u"TELEGRAM"_s, u"botany"_s));
    EXPECT_TRUE(isProgram(u"SMS"_s, u"34"_s, 30));
    EXPECT_FALSE(isProgram(u"SMS"_s, u"34"_s, 29));
    EXPECT_FALSE(isProgram(u"SMS"_s, u"34"_s, 300, true)) << "somebody answered it";
}

}
