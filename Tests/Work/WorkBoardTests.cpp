#include "Foundation/Literals.h"
#include "Work/OpsHub.h"
#include "Work/WorkExport.h"
#include "WorkTest.h"

#include <QSignalSpy>

namespace corvane {

namespace {

/// The board of the Ops hub, the sheet of an item beside it, and the agents of a context.
class WorkBoardTest : public WorkTest {
protected:
    void items(const QString& context, int count, const QString& status)
    {
        m_db->run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<?) "
                  "INSERT INTO work_item(id, context_id, module, kind, title, status, priority, owner) "
                  "SELECT ?||i, ?, 'ops', 'task', 'Item '||i, ?, 'normal', 'Ana' FROM n;",
            { count, status, context, status });
    }

    QString statusOf(const QString& id) { return fetchWorkItem(*m_db, id)->status; }

    OpsHub hub { services };
    WorkModuleShell& shell = *hub.shell();
    WorkBoard& board = *shell.board();
    WorkItemSheet& sheet = *shell.item();
};

}

TEST_F(WorkBoardTest, aLaneShowsAPageAndTheNextOnRequest)
{
    const WorkContextRow kiln = context(u"Kiln"_s);
    items(kiln.id, 203, u"open"_s);
    items(kiln.id, 51, u"done"_s);
    shell.setShown(true);
    shell.rail()->select(kiln.id);
    WorkLane& open = *board.lane(0);
    WorkLane& done = *board.lane(3);
    EXPECT_EQ(open.countText() + ": " + open.moreText(), "203: 3 more");
    EXPECT_EQ(done.countText() + ": " + done.moreText(), "51: 1 more");
    const QSignalSpy changed(&open, &WorkLane::changed);
    board.showMore();
    EXPECT_EQ(open.rows().size(), 203);
    EXPECT_EQ(open.moreText() + done.moreText(), "");
    EXPECT_EQ(changed.size(), 1);
    board.reload();
    EXPECT_EQ(changed.size(), 1) << "the same again is no change";
    open.setFolded(true);
    open.setFolded(true);
    EXPECT_TRUE(open.folded());
    EXPECT_EQ(changed.size(), 2);
    m_db->run("UPDATE work_context SET title='Hiring' WHERE id=?;", { kiln.id });
    shell.refresh();
    EXPECT_EQ(board.laneCount(), 5);
    EXPECT_FALSE(board.lane(0)->folded());
    EXPECT_TRUE(board.lane(4)->folded()) << "what is closed";
}

TEST_F(WorkBoardTest, everyFilterNarrowsAndIsTakenBack)
{
    const WorkContextRow kiln = context(u"Kiln"_s);
    for (const auto& [title, kind, priority, owner] : { std::tuple("Heat", "task", "high", "ben"),
             std::tuple("Mend", "bug", "normal", "Ana"), std::tuple("Sweep", "task", "normal", "Cem") })
        insertWorkItem(*m_db, { "ops", kiln.id, kind, title, priority, owner, "ui", "" });
    shell.setShown(true);
    shell.rail()->select(kiln.id);
    EXPECT_EQ(board.owners(), (QStringList { "Ana", "ben", "Cem" })) << "whatever the case";
    EXPECT_EQ(board.priorities() + board.kinds(), (QStringList { "high", "normal", "bug", "task" }));
    const auto shown = [&] {
        QStringList titles;
        for (const WorkItemSeed& each : board.lane(0)->rows())
            titles.append(each.title);
        titles.sort();
        return titles.join(',') + (board.filtered() ? " of a filter" : "");
    };
    EXPECT_EQ(shown() + board.emptyTitle(), "Heat,Mend,Sweep");
    board.setPriority(u"high"_s);
    EXPECT_EQ(shown(), "Heat of a filter");
    board.setPriority({});
    board.setKind(u"task"_s);
    EXPECT_EQ(shown(), "Heat,Sweep of a filter");
    board.setOwner(u"Cem"_s);
    EXPECT_EQ(shown(), "Sweep of a filter");
    board.setWords(u"heat"_s);
    EXPECT_EQ(
        board.emptyTitle() + ". " + board.emptyText(), "Nothing matches these filters. Remove a filter to see more.");
    board.clearFilters();
    EXPECT_EQ(shown() + board.words() + board.owner() + board.kind(), "Heat,Mend,Sweep");
    const QSignalSpy changed(&board, &WorkBoard::changed);
    board.setWords({});
    EXPECT_EQ(changed.size(), 0);
    m_db->exec("DELETE FROM work_item;");
    board.reload();
    EXPECT_EQ(board.emptyTitle() + ": " + board.emptyText(),
        "No active ops work: Work appears when an agent or you create an item.");
}

TEST_F(WorkBoardTest, whatCannotBeMovedStaysAndAWayBackEnds)
{
    const WorkContextRow kiln = context(u"Kiln"_s);
    const QString id = item(kiln.id, u"Heat"_s);
    const QString odd = item(kiln.id, u"Odd"_s, u"on_hold"_s);
    shell.setShown(true);
    shell.rail()->select(kiln.id);
    const QSignalSpy wrote(&board, &WorkBoard::wrote);
    board.move(u"nothing"_s, 1);
    board.moveBy(u"nothing"_s, 1);
    board.move(id, -1);
    board.move(id, 4);
    board.move(id, 0);
    EXPECT_EQ(statusOf(id) + board.undoText() + board.error(), "open");
    EXPECT_EQ(wrote.size(), 0);
    board.moveBy(odd, -1);
    EXPECT_EQ(statusOf(odd), "done") << "from the lane of what is not ours";
    EXPECT_EQ(board.laneCount(), 4);
    board.moveBy(odd, 1);
    EXPECT_EQ(statusOf(odd), "done");
    board.moveBy(id, 2);
    EXPECT_EQ(statusOf(id) + ": " + board.undoText(), "waiting: Moved to Waiting: Heat");
    EXPECT_EQ(wrote.size(), 2);
    m_clock.advance(Milliseconds(10'000));
    EXPECT_EQ(board.undoText(), "");
    board.undo();
    EXPECT_EQ(statusOf(id), "waiting");
    board.move(id, 1);
    shell.setTab(u"approvals"_s);
    EXPECT_EQ(board.undoText(), "") << "another tab shows no way back";
    m_db->exec("CREATE TRIGGER full BEFORE UPDATE ON work_item BEGIN SELECT RAISE(ABORT,'full'); END;");
    board.move(id, 0);
    EXPECT_NE(board.error(), "");
    EXPECT_EQ(board.undoText(), "");
    shell.setTab(u"processes"_s);
    EXPECT_EQ(board.error(), "");
    m_db->exec("DROP TRIGGER full;");
    insertWorkDecision(*m_db, { "ops", kiln.id, "Review Heat", "", "", "high" });
    board.move(id, 0);
    ASSERT_EQ(board.lane(0)->rows().size(), 1);
    EXPECT_TRUE(board.lane(0)->rows().first().waits);
}

TEST_F(WorkBoardTest, aSheetFollowsWhatOthersTakeBackAndWritesOnlyWhatItHolds)
{
    const QString id = item(context(u"Kiln"_s).id, u"Heat"_s);
    const QSignalSpy wrote(&sheet, &WorkItemSheet::wrote);
    sheet.setTitle(u"Nothing is open"_s);
    sheet.save();
    EXPECT_EQ(sheet.title(), "");
    sheet.open(id);
    sheet.save();
    sheet.keepMine();
    sheet.takeTheirs();
    EXPECT_EQ(wrote.size(), 0) << "there is nothing to write";
    const auto elsewhere = [&](const QString& title) {
        m_db->run("UPDATE work_item SET title=? WHERE id=?;", { title, id });
        sheet.reload();
    };
    sheet.setTitle(u"Mine"_s);
    EXPECT_TRUE(sheet.dirty());
    elsewhere(u"Theirs"_s);
    EXPECT_EQ(sheet.notice(), "Somebody changed it while you were typing.");
    ASSERT_EQ(sheet.clashes().size(), 1);
    EXPECT_EQ(sheet.clashes().first().label + sheet.clashes().first().mine, "TitleMine");
    elsewhere(u"Heat"_s);
    EXPECT_EQ(sheet.clashes().size(), 0) << "they took it back";
    EXPECT_EQ(sheet.notice() + sheet.title(), "Mine");
    elsewhere(u"Theirs"_s);
    sheet.setTitle(u"Theirs"_s);
    EXPECT_EQ(sheet.notice(), "Somebody changed other fields in the meantime; your changes are kept.");
    EXPECT_FALSE(sheet.dirty());
    EXPECT_EQ(sheet.clashes().size(), 0);
    sheet.setOwner(u"Luis"_s);
    EXPECT_EQ(sheet.notice(), "");
    sheet.setKind(u"bug"_s);
    sheet.setPriority(u"low"_s);
    sheet.setSummary(u"At 900 degrees"_s);
    sheet.save();
    EXPECT_EQ(wrote.size(), 1);
    EXPECT_EQ(table("SELECT title, kind, priority, owner, summary, status FROM work_item;"),
        QStringList("Theirs|bug|low|Luis|At 900 degrees|open"));
    EXPECT_FALSE(sheet.dirty());
    EXPECT_EQ(sheet.priorities(), (QStringList { "high", "normal", "low" }));
    sheet.setTitle(u"Lost"_s);
    sheet.revert();
    EXPECT_EQ(sheet.title(), "Theirs");
    sheet.markDone();
    EXPECT_EQ(wrote.size(), 2);
    sheet.open(u"nothing"_s);
    EXPECT_EQ(sheet.itemId() + sheet.title() + sheet.notice(), "");
    EXPECT_EQ(sheet.events()->rowCount(), 0);
    EXPECT_FALSE(sheet.dirty());
}

TEST_F(WorkBoardTest, aContextIsExportedWithEveryRow)
{
    const WorkContextRow may = *upsertWorkContext(*m_db, { "ops", "workspace", "may", "May", "Two\nlines", u"Ana"_s });
    insertWorkItem(*m_db, { "ops", may.id, "task", "Pay", "high", "Ana", "ui", "at once" });
    insertWorkDecision(*m_db, { "ops", may.id, "Review Pay", "Hold", "Why", "money" });
    insertWorkEvidence(*m_db, { "ops", may.id, {}, "note", "Bill", "mail", "file:///b", "340" });
    insertWorkMessage(*m_db, { "ops", may.id, "Ben", "agent", "message", "Hot" });
    insertWorkSession(*m_db, { "ops", may.id, "Count", "Ben", "", "live" });
    const QString at = isoTime(m_clock.nowMs());
    EXPECT_EQ(contextAsMarkdown(*m_db, may),
        "# May\n\nTwo\n  lines\n\nops · workspace · " + at
            + "\n\n## Items\n\n- **Pay** · open · task · high · Ana\n\n  at once\n\n"
              "\n## Decisions\n\n- **Review Pay** · proposed · money · "
            + at + "\n\n  Hold\n  \n  Why\n\n\n## Evidence\n\n- **Bill** · note · mail · file:///b · " + at
            + "\n\n  340\n\n\n## Messages\n\n- **Ben** · " + at + "\n\n  Hot\n\n");
    EXPECT_EQ(terminalLines(*m_db, u"ops"_s, may),
        (QStringList { "ops:May work_context selected", "work_session list --module ops --context current",
            "session Count · - · live", "work_item  Pay · open · Ana", "decision  Review Pay · proposed · money",
            "evidence  Bill · note · mail", "$ work_agent_heartbeat --context current --status running" }));
    EXPECT_TRUE(terminalLines(*m_db, u"ops"_s, {}).isEmpty());
}

TEST_F(WorkBoardTest, anAgentThatCannotBeSavedIsNotLaunched)
{
    WorkAgents& agents = *shell.agents();
    const WorkContextRow kiln = context(u"Kiln"_s);
    const WorkContextRow rent = context(u"Rent"_s);
    shell.setShown(true);
    agents.launch();
    EXPECT_FALSE(agents.canLaunch());
    EXPECT_EQ(agents.emptyText(), "Agents appear when one starts a session.");
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_session;"), "0");
    shell.rail()->select(kiln.id);
    EXPECT_TRUE(agents.emptyText().startsWith("No agent is working here."));
    const QSignalSpy wrote(&agents, &WorkAgents::wrote);
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON work_agent BEGIN SELECT RAISE(ABORT,'full'); END;");
    agents.launch();
    EXPECT_EQ(agents.error() + agents.banner() + agents.command(),
        "The agent could not be saved: the database could not be written.");
    EXPECT_FALSE(shell.shells()->isOpen());
    EXPECT_EQ(wrote.size(), 0);
    EXPECT_TRUE(messages().isEmpty());
    m_db->exec("DROP TRIGGER full; DELETE FROM work_session;");
    agents.launch(u" Ada B. "_s);
    EXPECT_EQ(agents.error(), "");
    EXPECT_EQ(table("SELECT name, tool, role, status, session_id=(SELECT id FROM work_session) FROM work_agent;"),
        QStringList("Ada B.|codex-server|worker|ready|1"));
    EXPECT_EQ(table("SELECT owner, status FROM work_session;"), QStringList("Ada B.|ready"));
    EXPECT_TRUE(agents.command().contains("'ada-b-'"));
    EXPECT_EQ(wrote.size(), 1);
    shell.refresh();
    EXPECT_NE(agents.banner(), "");
    shell.rail()->select(rent.id);
    EXPECT_EQ(agents.banner() + agents.command(), "") << "it was for the other context";
    EXPECT_EQ(agents.rows().size(), 0);
    ASSERT_EQ(agents.safety().size(), 4);
    EXPECT_EQ(agents.safety().first().label, "Draft or approval-gated only");
}

TEST_F(WorkBoardTest, aScreenThatIsShownIsReadEveryHourAndAgesEveryMinute)
{
    const WorkContextRow kiln = context(u"Kiln"_s);
    upsertWorkAgent(*m_db, { "ops", kiln.id, "Ana", "codex", "ops", "running", "Heat", "s" });
    shell.setShown(true);
    shell.rail()->select(kiln.id);
    const QSignalSpy refreshed(&shell, &WorkModuleShell::refreshed);
    const QSignalSpy aged(&shell, &WorkModuleShell::aged);
    shell.setShown(true);
    EXPECT_EQ(refreshed.size(), 0) << "it was shown";
    m_clock.advance(Milliseconds(57'000));
    EXPECT_EQ(aged.size(), 0);
    m_clock.advance(Milliseconds(3000));
    EXPECT_EQ(aged.size(), 1);
    EXPECT_EQ(shell.agents()->rows().first().heartbeat, "last seen 1 minute ago");
    m_clock.advance(Milliseconds(3600'000 - 63'000));
    EXPECT_EQ(aged.size(), 59);
    EXPECT_EQ(refreshed.size(), 0);
    m_clock.advance(Milliseconds(3000));
    EXPECT_EQ(refreshed.size(), 1);
    EXPECT_EQ(aged.size(), 59);
    shell.setShown(false);
    m_clock.advance(Milliseconds(7200'000));
    EXPECT_EQ(aged.size() + refreshed.size(), 60);
}

}
