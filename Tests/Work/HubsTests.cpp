#include "Foundation/Literals.h"
#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/LumoHub.h"
#include "Work/OpsHub.h"
#include "WorkTest.h"

#include "Store/People/CrmRecords.h"

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

}
