#include "Foundation/Literals.h"
#include "Store/Core/StoreWatch.h"
#include "Work/OpsHub.h"
#include "WorkTest.h"

#include <QSignalSpy>

namespace corvane {

namespace {

class OpsProjectsTest : public WorkTest { };

}

TEST_F(OpsProjectsTest, aProjectKeepsItsOrderUntilAnotherOneIsChosen)
{
    m_db->run("INSERT INTO project(id, slug, name, goal, priority, updated_at) "
              "VALUES('p','shop','Shop','Sell plates',1,'1'), ('q','kiln','Kiln','',2,'1');");
    m_db->run("INSERT INTO tab(id, current_project_id, name, role, model, heartbeat_at, created_at) "
              "VALUES('t','p','worker','dev','codex',?,'1');",
        { isoTime(m_clock.nowMs()) });
    m_db->run("INSERT INTO \"update\"(id, project_id, tab_id, ts, kind, body) VALUES('u','p','t',?,'status','Packed');",
        { isoTime(m_clock.nowMs()) });
    OpsHub hub(services);
    hub.shell()->setShown(true);
    EXPECT_EQ(hub.activeText(), "");
    QSignalSpy changed(&hub, &OpsHub::changed);
    createOpsAsk(*m_db, { .projectSlug = "shop", .question = "Stop?", .urgency = "high" });
    m_db->watch().tell(StoreSubject::Work);
    EXPECT_EQ(hub.urgent(), 1);
    EXPECT_EQ(changed.size(), 1);
    m_db->watch().tell(StoreSubject::Work);
    EXPECT_EQ(changed.size(), 1);
    OpsProjects& projects = *hub.projects();
    hub.shell()->rail()->setPlace(u"projects"_s);
    EXPECT_EQ(projects.selected() + '|' + projects.goal(), "p|Sell plates") << "the first is open";
    const OpsProjectSeed row = projects.rows().first();
    EXPECT_EQ(row.goal + '|' + row.facts + '|' + row.latest.section(u" · "_s, 1), "Sell plates|priority 1|Packed");
    EXPECT_EQ(row.liveTabs * 100 + row.downTabs * 10 + row.openAsks, 101);
    const auto lines = [](GadgetListModel* model) {
        return static_cast<RowListModel<OpsLine>*>(model)->rows();
    };
    EXPECT_EQ(
        lines(projects.updates()).first().title + ": " + lines(projects.updates()).first().detail.section(' ', 0, 0),
        "Packed: status");
    EXPECT_EQ(projects.tabRows().first().detail, "dev · codex");
    m_clock.advance(Milliseconds(60'000));
    EXPECT_EQ(projects.tabRows().first().state, "Live · last seen 1 minute ago");
    EXPECT_TRUE(projects.order(u"Pack more"_s));
    m_db->exec("UPDATE message SET status='read';");
    projects.reload();
    EXPECT_EQ(lines(projects.orders()).first().status, "read");
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON message BEGIN SELECT RAISE(ABORT,'full'); END;");
    EXPECT_FALSE(projects.order(u"Again"_s));
    EXPECT_EQ(projects.error(), "Could not save pending message row.");
    projects.select(u"p"_s);
    EXPECT_NE(projects.error(), "");
    projects.select(u"q"_s);
    EXPECT_EQ(projects.error() + projects.orderTab(), "");
    EXPECT_EQ(projects.tabRows().size() + lines(projects.updates()).size() + lines(projects.orders()).size(), 0);
    EXPECT_FALSE(projects.order(u"To nobody"_s));
    EXPECT_EQ(projects.error(), "");
    projects.setArrangement([](const QList<OpsProjectRow>& all) { return all.mid(1); });
    projects.reload();
    EXPECT_EQ(projects.rows().size(), 1);
    projects.select(u"p"_s);
    EXPECT_EQ(projects.title(), "Shop") << "also one that is not listed";
    m_db->exec("DELETE FROM project WHERE id='p';");
    projects.reload();
    EXPECT_EQ(projects.title(), "");
}

}
