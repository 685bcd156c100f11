#include "Foundation/Literals.h"
#include "Work/OpsHub.h"
#include "WorkTest.h"

namespace corvane {

namespace {

/// What is made, decided and read in the Ops hub.
class WorkForms : public WorkTest {
protected:
    OpsHub hub { services };
    WorkModuleShell& shell = *hub.shell();
    WorkRail& rail = *shell.rail();
};

}

TEST_F(WorkForms, aFormSaysWhatItMakesWhereAndWhatItsRiskIs)
{
    const WorkContextRow may = context(u"May"_s);
    shell.setShown(true);
    WorkCreate& create = *shell.create();
    create.begin(u"poem"_s);
    EXPECT_FALSE(create.isOpen());
    create.begin(u"item"_s);
    EXPECT_EQ(
        create.title() + '|' + create.hint() + '|' + create.priorityLabel(), "Create Work Item|In no process|Priority");
    create.submit();
    EXPECT_EQ(create.message() + '|' + create.messageKind(), "Title is required.|bad");
    const QString waits = u": a decision will wait for you in Approvals."_s;
    for (const auto& [title, risk] :
        { std::pair("Pay the clay", "This involves money"), std::pair("Send it", "This goes to somebody outside"),
            std::pair("Show the token", "This involves secrets"), std::pair("Delete it", "This cannot be undone"),
            std::pair("Tidy", "") }) {
        create.field(u"title"_s).type(QString::fromLatin1(title));
        EXPECT_EQ(create.message(), *risk ? risk + waits : QString()) << title;
        EXPECT_EQ(create.messageKind(), "warn");
    }
    create.setPriority(u"high"_s);
    create.field(u"owner"_s).type(u" Luis "_s);
    create.submit();
    EXPECT_FALSE(create.isOpen());
    create.submit();
    EXPECT_EQ(table("SELECT title, priority, owner, source FROM work_item;"), QStringList("Tidy|high|Luis|ops-home"))
        << "a form that is closed makes nothing";

    rail.select(may.id);
    create.begin(u"ask"_s, {}, u"Which clay?"_s);
    EXPECT_EQ(create.title() + '|' + create.hint() + '|' + create.priorityLabel() + '|' + create.message(),
        "Create Ask|In May|Urgency|")
        << "a question has no risk";
    create.setPriority(u"low"_s);
    create.setToLumo(false);
    create.submit();
    EXPECT_TRUE(lumo.model.asked.isEmpty()) << "it is for people";
    lumo.model.willAnswer("The red one.");
    create.begin(u"ask"_s, {}, u"Which glaze?"_s);
    create.submit();
    EXPECT_EQ(table("SELECT question, urgency, status, answer FROM ask ORDER BY rowid;"),
        (QStringList { "Which clay?|low|open|-", "Which glaze?|normal|answered|The red one." }));
    create.begin(u"note"_s, {}, u"Seen"_s);
    EXPECT_EQ(create.title() + create.priorityLabel(), "Create Note");
    create.close();
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_evidence;"), "0");
}

TEST_F(WorkForms, aDecisionSaysItsRiskAndAsksWhereItCannotBeTakenBack)
{
    const WorkContextRow may = context(u"May"_s);
    for (const char* risk : { "money", "credential", "high", "external", "odd" })
        insertWorkDecision(*m_db, { "ops", may.id, QString::fromLatin1(risk), "", "Why", QString::fromLatin1(risk) });
    insertWorkMemory(*m_db, { "ops", may.id, "fact", "Rent is due on Mondays", "agent", "medium", "Ana" });
    const WorkContextRow june = context(u"June"_s);
    shell.setShown(true);
    rail.select(may.id);
    WorkDecisions& decisions = *shell.decisions();
    const QString elsewhere = decisions.memoryRows().first().id;
    rail.select(june.id);
    decisions.decideMemory(elsewhere, true);
    decisions.decide(cell("SELECT id FROM work_decision;"), true);
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_decision WHERE status='proposed';"), "5") << "none that is not shown";
    EXPECT_EQ(cell("SELECT status FROM work_memory;"), "proposed");
    rail.select(may.id);
    QStringList said;
    for (const WorkDecisionSeed& seed : decisions.decisionRows())
        said.append(seed.title + ": " + seed.risk + (seed.question.isEmpty() ? "" : " ?"));
    said.sort();
    EXPECT_EQ(said,
        (QStringList { "credential: Credentials ?", "external: Goes outside", "high: Cannot be undone ?",
            "money: Money ?", "odd: odd" }));
    EXPECT_EQ(decisions.decisionRows().first().proposal, "Decision needs review.");
    EXPECT_EQ(decisions.decisionRows().first().status, "Waits for you");
    EXPECT_EQ(decisions.memoryRows().first().facts.section(" · ", 0, 2), "ops · fact · from agent");
    const auto approvals = [&] {
        const QList<TabItem> tabs = shell.tabs();
        return std::ranges::find(tabs, u"approvals"_s, &TabItem::id)->count;
    };
    EXPECT_EQ(approvals(), 6);
    const auto row = std::ranges::find(rail.contextRows(), may.id, &WorkContextSeed::id);
    EXPECT_TRUE(row->aloud.contains("5 decisions wait"));
    decisions.decideMemory(decisions.memoryRows().first().id, true);
    EXPECT_EQ(cell("SELECT status || owner FROM work_memory;"), "approvedOskel");
    EXPECT_EQ(decisions.memoryRows().first().status, "Approved");
    EXPECT_EQ(approvals(), 5);
    const QString id = cell("SELECT id FROM work_decision WHERE title='money';");
    m_db->exec("UPDATE work_decision SET proposal='Pay twice' WHERE title='money';");
    decisions.decide(id, true);
    EXPECT_TRUE(decisions.error().startsWith("It was not decided:"));
    EXPECT_EQ(cell("SELECT status FROM work_decision WHERE title='money';"), "proposed");
    decisions.decide(id, false);
    EXPECT_EQ(decisions.error() + cell("SELECT status || decided_by FROM work_decision WHERE title='money';"),
        "rejectedOskel");
    const QList<WorkDecisionSeed>& rows = decisions.decisionRows();
    const auto decided = std::ranges::find(rows, id, &WorkDecisionSeed::id);
    EXPECT_EQ(decided->status + decided->facts.section(" · ", 0, 1), "RejectedMoney · by Oskel");
}

TEST_F(WorkForms, anItemIsReadAndDoneInItsSheetAndNamedByItsSources)
{
    const WorkContextRow may = context(u"May"_s);
    const QString id = item(may.id, u"Count the tiles"_s);
    m_db->exec("UPDATE work_item SET priority='someday';");
    shell.setShown(true);
    shell.show(may.id, {}, u"approvals"_s);
    EXPECT_EQ(shell.tab() + shell.item()->itemId(), "approvals");
    shell.openSource("item:" + id);
    WorkItemSheet& sheet = *shell.item();
    EXPECT_EQ(sheet.title() + '|' + sheet.lane(), "Count the tiles|Open");
    EXPECT_EQ(sheet.priorities(), (QStringList { "high", "someday", "normal", "low" })) << "its own stays a choice";
    EXPECT_EQ(sheet.facts().section(" · ", 0, 0), "from ui");
    EXPECT_TRUE(sheet.facts().contains(" · changed "));
    EXPECT_EQ(sheet.eventsText(), "No evidence, decisions or messages about this item yet.");
    insertWorkEvidence(*m_db, { "ops", may.id, id, "note", "Forty", "ui", "", "" });
    shell.refresh();
    EXPECT_EQ(sheet.events()->rowCount(), 1);
    EXPECT_EQ(sheet.eventsText(), "");
    m_db->exec("CREATE TRIGGER full BEFORE UPDATE ON work_item BEGIN SELECT RAISE(ABORT,'full'); END;");
    sheet.markDone();
    EXPECT_TRUE(sheet.notice().startsWith("It was not saved"));
    EXPECT_FALSE(sheet.done());
    m_db->exec("DROP TRIGGER full;");
    sheet.markDone();
    EXPECT_TRUE(sheet.done());
    EXPECT_EQ(sheet.notice() + sheet.lane(), "Done");
    EXPECT_EQ(messages().last(), "status|Marked work item done locally: Count the tiles.");
    m_db->exec("UPDATE work_item SET status='lost_in_post';");
    sheet.reload();
    EXPECT_EQ(sheet.lane(), "lost_in_post");
    shell.openSource(u"evidence:1"_s);
    EXPECT_EQ(shell.tab(), "evidence");
    rail.setPlace(u"home"_s);
    EXPECT_EQ(sheet.itemId(), "") << "another place closes it";
}

}
