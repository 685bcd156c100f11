#include "Foundation/Literals.h"
#include "Work/OpsHub.h"
#include "WorkTest.h"

#include <QSignalSpy>

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

TEST_F(WorkForms, aFormKeepsWhatWasNotSavedAndChoosesWhereItGoes)
{
    const WorkContextRow may = context(u"May"_s);
    shell.setShown(true);
    WorkCreate& create = *shell.create();
    const auto labels = [&] {
        QStringList words;
        for (int at = 0; at < create.fieldCount(); ++at)
            words.append(create.fieldAt(at)->label() + (create.fieldAt(at)->narrow() ? " (narrow)" : ""));
        return words.join(',');
    };
    const QSignalSpy changed(&create, &WorkCreate::changed);
    const QSignalSpy wrote(&create, &WorkCreate::wrote);
    create.close();
    EXPECT_EQ(changed.size(), 0) << "nothing was open";
    create.begin(u"context"_s);
    EXPECT_EQ(create.title() + '|' + create.hint() + '|' + create.buttonLabel() + '|' + create.priorityLabel(),
        "Create process||Create|");
    EXPECT_EQ(labels(), "Title,What it is about,Kind (narrow),Owner (narrow)");
    EXPECT_EQ(create.field(u"kind"_s).text() + create.field(u"owner"_s).text(), "workspaceOskel");
    EXPECT_TRUE(create.contexts().isEmpty());
    create.field(u"title"_s).type(u"June"_s);
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON work_context BEGIN SELECT RAISE(ABORT,'full'); END;");
    create.submit();
    EXPECT_TRUE(create.isOpen());
    EXPECT_EQ(create.message() + create.messageKind(), "Could not save the context.bad");
    create.field(u"summary"_s).type(u"Later"_s);
    EXPECT_EQ(create.message(), "") << "whoever types goes on";
    m_db->exec("DROP TRIGGER full;");
    EXPECT_EQ(wrote.size(), 0);

    create.begin(u"item"_s, u"bug"_s, u"Tidy"_s);
    EXPECT_EQ(labels(), "Title,Summary,Kind (narrow),Owner (narrow)");
    EXPECT_EQ(create.field(u"kind"_s).text() + create.field(u"title"_s).text() + create.priority(), "bugTidynormal");
    EXPECT_EQ(create.priorities(), (QStringList { "high", "normal", "low" }));
    EXPECT_EQ(create.contexts().join(',') + create.noContext() + create.chosenContext(), "MayIn no process");
    create.chooseContext(u"May"_s);
    EXPECT_EQ(create.chosenContext(), "May");
    create.chooseContext(u"None such"_s);
    EXPECT_EQ(create.chosenContext(), "");
    create.chooseContext(u"May"_s);
    create.begin(u"item"_s, {}, u"Sweep"_s);
    EXPECT_EQ(create.chosenContext() + create.field(u"kind"_s).text(), "task") << "a new form begins anew";
    create.chooseContext(u"May"_s);
    create.setPriority(u"low"_s);
    EXPECT_EQ(create.priority(), "low");
    create.submit();
    EXPECT_EQ(table("SELECT title, context_id, priority FROM work_item;"), QStringList("Sweep|" + may.id + "|low"));
    EXPECT_EQ(wrote.size(), 1);

    create.beginQuickAction(u"Invoice Check"_s, u"why"_s);
    EXPECT_EQ(create.field(u"title"_s).text(), "Invoice Check for no process");
    create.begin(u"ask"_s);
    EXPECT_EQ(labels() + create.priority(), "Question,Summarynormal");
    EXPECT_TRUE(create.forLumo() && create.toLumo());
    create.setToLumo(false);
    EXPECT_FALSE(create.toLumo());
    create.setToLumo(true);
    EXPECT_TRUE(create.toLumo());
    create.begin(u"note"_s, {}, u"Seen"_s);
    EXPECT_EQ(labels(), "Title,Summary,Kind");
    EXPECT_FALSE(create.forLumo());
    create.submit();
    EXPECT_EQ(table("SELECT kind, title, source FROM work_evidence;"), QStringList("note|Seen|corvane-ui"));
    EXPECT_TRUE(messages().last().startsWith("status|Created note ev:native:"));
}

TEST_F(WorkForms, aModuleIsCountedOpenedAndLeftByItsPlaces)
{
    const WorkContextRow may = context(u"May"_s);
    context(u"June"_s);
    const QString id = item(may.id, u"Count"_s);
    item(may.id, u"Crash"_s, u"open"_s, u"bug"_s);
    insertWorkDecision(*m_db, { "ops", may.id, "Pay", "", "", "money" });
    insertWorkEvidence(*m_db, { "ops", may.id, {}, "note", "Bill", "ui", "", "" });
    upsertWorkAgent(*m_db, { "ops", may.id, "Ana", "codex", "ops", "ready", "Count", "s" });
    shell.setShown(true);
    const auto metrics = [&] {
        QStringList words;
        for (const WorkMetricSeed& each : shell.header()->metrics())
            words.append(each.label + ' ' + each.value + each.sub);
        return words.join('|');
    };
    EXPECT_EQ(shell.header()->title() + '|' + shell.header()->subtitle(),
        "No process selected|Processes appear when a person or an agent creates one.");
    shell.show(may.id, id, u"agents"_s);
    EXPECT_EQ(metrics(), "Processes 2|Open work 2|Agents 1|Evidence 11 approval");
    EXPECT_EQ(shell.header()->title() + '|' + shell.header()->subtitle() + '|' + shell.item()->title(), "May||Count");
    EXPECT_EQ(shell.surface(), "agents");
    QStringList surfaces;
    for (const TabItem& tab : shell.tabs()) {
        shell.setTab(tab.id);
        surfaces.append(shell.surface());
        EXPECT_EQ(tab.count, tab.id == "approvals" ? 1 : 0) << tab.id.toStdString();
    }
    EXPECT_EQ(surfaces.join(','), "board,chat,approvals,evidence,agents,timeline");
    EXPECT_EQ(shell.tasks()->rowCount(), 1) << "a bug is a ticket";
    EXPECT_EQ(shell.history()->evidence()->rowCount(), 1);
    EXPECT_EQ(shell.history()->earlierText(), "");
    shell.show({});
    EXPECT_EQ(rail.place() + rail.selectedContextId() + shell.item()->itemId(), "home");
    const QSignalSpy selected(&rail, &WorkRail::selected);
    rail.select({});
    rail.select(u"nothing"_s);
    rail.setPlace(u"home"_s);
    EXPECT_EQ(selected.size(), 0);
    const QSignalSpy changed(&rail, &WorkRail::changed);
    rail.setPlaceCount(u"asks"_s, 0);
    rail.setPlaceCount(u"nowhere"_s, 2);
    EXPECT_EQ(changed.size(), 0);
    rail.setPlaceCount(u"asks"_s, 2);
    EXPECT_EQ(changed.size(), 1);
    rail.setQuery(u"none"_s);
    rail.step(1);
    EXPECT_EQ(selected.size(), 0) << "there is none to step to";
    rail.setQuery({});
    EXPECT_EQ(rail.contextsEmpty(), "");
    rail.select(may.id);
    m_db->run("DELETE FROM work_context WHERE id=?;", { may.id });
    rail.setQuery(u"j"_s);
    EXPECT_EQ(rail.place() + ": " + rail.contextRows().first().title, "home: June");
    EXPECT_EQ(selected.size(), 2) << "the search found that it is gone";
}

TEST_F(WorkForms, aLongStoryIsShownPageByPage)
{
    const WorkContextRow may = context(u"May"_s);
    m_db->run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<250) "
              "INSERT INTO work_message(id, context_id, module, speaker, body, created_at) "
              "SELECT 'm'||i, ?, 'ops', 'Ana', 'Line '||i, '2026-01-01T00:'||(i/60+10)||':'||(i%60+10)||'Z' FROM n;",
        { may.id });
    shell.setShown(true);
    shell.show(may.id, {}, u"timeline"_s);
    WorkHistory& history = *shell.history();
    EXPECT_EQ(history.timelineRows().size(), 200);
    EXPECT_EQ(history.earlierText(), "Show earlier");
    history.showEarlier();
    EXPECT_EQ(history.timelineRows().size(), 250);
    EXPECT_EQ(history.timelineRows().first().detail + history.earlierText(), "Line 1");
    shell.refresh();
    EXPECT_EQ(history.timelineRows().size(), 250) << "what is read again stays as long";
    rail.setPlace(u"home"_s);
    shell.show(may.id, {}, u"timeline"_s);
    EXPECT_EQ(history.timelineRows().size(), 200);
}

}
