#include "Foundation/Literals.h"
#include "Store/Core/StoreWatch.h"
#include "Support/Environment.h"
#include "Work/OpsHub.h"
#include "WorkTest.h"

#include <QSignalSpy>

namespace corvane {

namespace {

class WorkShell : public WorkTest {
protected:
    QStringList lane(int index)
    {
        QStringList titles;
        for (const WorkItemSeed& item : shell.board()->lane(index)->rows())
            titles.append(item.title);
        return titles;
    }

    OpsHub hub { services };
    WorkModuleShell& shell = *hub.shell();
    WorkRail& rail = *shell.rail();
};

}

TEST_F(WorkShell, whatAnotherProgramWritesAppearsWithinFourSecondsAndAnIdleShellReadsNothing)
{
    m_db->watch().start();
    shell.setShown(true);
    EXPECT_EQ(rail.contextsEmpty(), "No processes yet");
    EXPECT_EQ(shell.header()->quickActions().size(), 0);
    EXPECT_EQ(shell.board()->emptyTitle(), "No active ops work");
    const QSignalSpy refreshed(&shell, &WorkModuleShell::refreshed);
    m_clock.advance(Milliseconds(9000));
    EXPECT_EQ(refreshed.size(), 0);
    OtherProcess agent(path());
    agent.exec("INSERT INTO work_context(id, module, slug, title, updated_at) VALUES('c','ops','c','Payroll','x');"
               "INSERT INTO work_item(id, context_id, module, title, status) VALUES('i','c','ops','Count','odd');");
    m_clock.advance(Milliseconds(4000));
    EXPECT_EQ(refreshed.size(), 1);
    ASSERT_EQ(rail.contextRows().size(), 1);
    EXPECT_EQ(shell.board()->laneCount(), 5) << "a status that is not ours stands in a lane of its own";
    EXPECT_EQ(lane(4), QStringList("Count"));
    shell.setShown(false);
    agent.exec("DELETE FROM work_context;");
    m_clock.advance(Milliseconds(9000));
    EXPECT_EQ(refreshed.size(), 1) << "what nobody sees is not read";
    shell.setShown(true);
    EXPECT_EQ(rail.contextRows().size(), 0);
}

TEST_F(WorkShell, aContextKeepsItsTabsLegalAndItsSelectionAlive)
{
    const WorkContextRow kiln = context(u"Kiln"_s);
    const WorkContextRow pay = context(u"Payroll run"_s);
    shell.setShown(true);
    rail.select(pay.id);
    EXPECT_EQ(shell.tab(), "finance");
    EXPECT_EQ(shell.board()->lane(2)->title(), "Approval");
    shell.setTab(u"hiring"_s);
    EXPECT_EQ(shell.tab(), "finance") << "not a tab of this context";
    shell.setTab(u"approvals"_s);
    rail.select(kiln.id);
    EXPECT_EQ(shell.tab(), "approvals") << "a tab that both have stays";
    shell.setTab(u"processes"_s);
    rail.select(pay.id);
    EXPECT_EQ(shell.tab(), "finance") << "and one that this has not gives way to its own";
    rail.select(kiln.id);
    shell.setTab(u"evidence"_s);
    m_db->run("UPDATE work_context SET title='Kiln repair' WHERE id=?;", { kiln.id });
    shell.refresh();
    EXPECT_EQ(shell.header()->title() + ' ' + shell.tab(), "Kiln repair evidence");
    shell.setTab(u"processes"_s);
    m_db->run("UPDATE work_context SET title='Hiring' WHERE id=?;", { kiln.id });
    shell.refresh();
    EXPECT_EQ(shell.tab(), "hiring");
    m_db->run("DELETE FROM work_context WHERE id=?;", { kiln.id });
    shell.refresh();
    EXPECT_EQ(rail.place(), "home") << "what is gone is not selected";
    shell.create()->begin(u"context"_s);
    shell.create()->field(u"title"_s).type(u"Studio rent"_s);
    shell.create()->submit();
    EXPECT_EQ(shell.header()->title(), "Studio rent") << "a new context is opened";
}

TEST_F(WorkShell, itemsAreMovedByHandWithAWayBack)
{
    const WorkContextRow kiln = context(u"Kiln"_s);
    const QString id = item(kiln.id, u"Order shelves"_s);
    item(kiln.id, u"Measure"_s, u"waiting"_s);
    shell.setShown(true);
    rail.select(kiln.id);
    WorkBoard& board = *shell.board();
    EXPECT_EQ(lane(0), QStringList("Order shelves"));
    board.move(id, 1);
    EXPECT_EQ(cell("SELECT status FROM work_item WHERE title='Order shelves';"), "review");
    EXPECT_EQ(board.undoText(), "Moved to Review: Order shelves");
    board.undo();
    EXPECT_EQ(cell("SELECT status FROM work_item WHERE title='Order shelves';"), "open");
    board.moveBy(id, -1);
    EXPECT_EQ(board.undoText(), "") << "it stands at the end";
    board.move(id, 3);
    EXPECT_EQ(fetchWorkItem(*m_db, id)->status, "done");
    updateWorkItemStatus(*m_db, id, u"waiting"_s); // as an agent does
    board.undo();
    EXPECT_EQ(fetchWorkItem(*m_db, id)->status, "waiting") << "whoever moved it on meant it";
    shell.refresh();
    EXPECT_EQ(board.lane(2)->countText(), "2");
    board.setWords(u"meas"_s);
    EXPECT_EQ(lane(2), QStringList("Measure"));
    board.setOwner(u"Nobody"_s);
    EXPECT_EQ(board.emptyTitle(), "Nothing matches these filters");
    board.clearFilters();
    m_db->exec("CREATE TRIGGER full BEFORE UPDATE ON work_item BEGIN SELECT RAISE(ABORT,'full'); END;");
    board.move(id, 0);
    EXPECT_EQ(board.error(), "It could not be moved: the change was not saved.");
    EXPECT_EQ(board.lane(2)->countText(), "2");
}

TEST_F(WorkShell, oneRowThatChangedRepaintsOneCard)
{
    m_db->watch().start();
    const WorkContextRow kiln = context(u"Kiln"_s);
    for (int i = 0; i < 100; ++i)
        item(kiln.id, u"Item %1"_s.arg(i), i % 2 ? u"open"_s : u"waiting"_s);
    shell.setShown(true);
    rail.select(kiln.id);
    QStringList painted;
    int others = 0;
    for (int at = 0; at < shell.board()->laneCount(); ++at) {
        const HoldingListModel* const items = shell.board()->lane(at)->items();
        QObject::connect(items, &QAbstractItemModel::dataChanged, items, [&, at](const QModelIndex& first, auto last) {
            for (int row = first.row(); row <= last.row(); ++row)
                painted.append(lane(at).at(row));
        });
        for (const auto added : { &QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved })
            QObject::connect(items, added, items, [&] { ++others; });
        QObject::connect(items, &QAbstractItemModel::modelReset, items, [&] { ++others; });
    }
    OtherProcess(path()).exec(
        "UPDATE work_item SET owner='Luis', updated_at='2030-01-01T00:00:00Z' WHERE title='Item 7';");
    m_clock.advance(Milliseconds(4000));
    EXPECT_EQ(painted, QStringList("Item 7"));
    EXPECT_EQ(others, 0) << "the rest stays as it is, also where the card moves up";
}

TEST_F(WorkShell, aSheetThatIsOvertakenOffersBothVersions)
{
    const WorkContextRow kiln = context(u"Kiln"_s);
    const QString id = item(kiln.id, u"Order shelves"_s);
    WorkItemSheet& sheet = *shell.item();
    const auto elsewhere = [&](const char* sql) {
        m_db->exec(sql);
        sheet.reload();
    };
    shell.setShown(true);
    shell.show(kiln.id, id);
    elsewhere("UPDATE work_item SET owner='Luis';");
    EXPECT_EQ(sheet.owner(), "Luis");
    EXPECT_FALSE(sheet.notice().isEmpty());
    sheet.setTitle(u"Order six shelves"_s);
    elsewhere("UPDATE work_item SET summary='40 cm';");
    EXPECT_TRUE(sheet.clashes().isEmpty()) << "other fields are no question";
    EXPECT_EQ(sheet.summary(), "40 cm");
    EXPECT_TRUE(sheet.dirty());
    elsewhere("UPDATE work_item SET title='Order four shelves';");
    ASSERT_EQ(sheet.clashes().size(), 1);
    EXPECT_EQ(sheet.clashes().first().theirs, "Order four shelves");
    sheet.save();
    EXPECT_EQ(fetchWorkItem(*m_db, id)->title, "Order four shelves") << "it asks first";
    sheet.keepMine();
    EXPECT_EQ(fetchWorkItem(*m_db, id)->title, "Order six shelves");
    EXPECT_FALSE(sheet.dirty());
    sheet.setTitle(u"Mine"_s);
    m_db->exec("UPDATE work_item SET title='Theirs';");
    sheet.save();
    ASSERT_EQ(sheet.clashes().size(), 1) << "even where the watch has not told yet";
    sheet.takeTheirs();
    EXPECT_EQ(sheet.title(), "Theirs");
    sheet.setTitle(u"  "_s);
    sheet.save();
    EXPECT_EQ(sheet.notice(), "Title is required.");
    sheet.revert();
    m_db->exec("CREATE TRIGGER full BEFORE UPDATE ON work_item BEGIN SELECT RAISE(ABORT,'full'); END;");
    sheet.setTitle(u"Kept"_s);
    sheet.save();
    EXPECT_EQ(sheet.title(), "Kept");
    EXPECT_TRUE(sheet.notice().startsWith("It was not saved"));
    elsewhere("DELETE FROM work_item;");
    EXPECT_TRUE(sheet.notice().startsWith("This item is gone"));
    EXPECT_EQ(sheet.title(), "Kept");
}

TEST_F(WorkShell, aStoryIsToldFromTheFilingToTheDecision)
{
    const WorkContextRow may = context(u"May invoices"_s);
    shell.setShown(true);
    rail.select(may.id);
    shell.create()->beginQuickAction(u"Invoice Check"_s, u"status + evidence"_s);
    EXPECT_FALSE(shell.create()->message().isEmpty());
    shell.create()->submit();
    ASSERT_EQ(shell.board()->lane(0)->rows().size(), 1);
    EXPECT_TRUE(shell.board()->lane(0)->rows().first().waits);
    EXPECT_TRUE(rail.contextRows().first().waits);
    m_clock.advance(Milliseconds(2000));
    shell.decisions()->decide(shell.decisions()->decisionRows().first().id, true);
    EXPECT_FALSE(shell.board()->lane(0)->rows().first().waits);
    EXPECT_EQ(cell("SELECT COUNT(*) FROM approval_record WHERE kind='decision' AND action='approve';"), "1");
    insertWorkMemory(*m_db, { "ops", may.id, "fact", "Invoices come on Fridays", "agent", "medium", "Ana" });
    m_clock.advance(Milliseconds(2000));
    shell.refresh();
    shell.decisions()->decideMemory(shell.decisions()->memoryRows().first().id, false);
    shell.setTab(u"timeline"_s);
    QStringList story;
    for (const OpsTimelineEvent& event : shell.history()->timelineRows())
        story.append(event.label + ": " + event.title + (event.label == "message" ? " " + event.detail : QString()));
    ASSERT_EQ(story.size(), 5);
    EXPECT_TRUE(
        story.at(0).contains("Review Invoice Check for May invoices - approved") || story.at(1).contains("- approved"));
    EXPECT_TRUE(story.contains("decision: Approved by Oskel: Review Invoice Check for May invoices"));
    EXPECT_EQ(story.last(), "message: Corvane Rejected memory proposal locally: Invoices come on Fridays.");
    EXPECT_TRUE(shell.queueDraft(u"Dear Ana, we will pay the invoice"_s));
    EXPECT_EQ(cell("SELECT risk FROM work_decision ORDER BY rowid DESC;"), "money") << "nothing is sent, it waits";
    m_db->exec("UPDATE work_decision SET status='approved';");
    for (int i = 0; i < 51; ++i)
        insertWorkDecision(*m_db, { "ops", may.id, "Pay", "", "", "money" });
    m_db->exec("UPDATE work_decision SET status='rejected' WHERE title='Pay';");
    insertWorkDecision(*m_db, { "ops", may.id, "Rename the folder", "", "", "" });
    shell.refresh();
    EXPECT_EQ(shell.decisions()->decisionRows().first().title, "Rename the folder") << "behind any number of others";
    m_db->exec("DROP TABLE work_decision;");
    EXPECT_FALSE(shell.queueDraft(u"Kept in the field"_s));
    EXPECT_EQ(shell.notice(), "Could not save the item.");
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_item WHERE summary='Kept in the field';"), "0") << "not without its gate";
}

TEST_F(WorkShell, whatIsCreatedAtAPlaceMayChooseItsContext)
{
    const WorkContextRow may = context(u"May invoices"_s);
    shell.setShown(true);
    WorkCreate& create = *shell.create();
    for (const QString& place : { QString(), u"May invoices"_s }) {
        create.begin(u"item"_s);
        create.field(u"title"_s).type(u"Tidy"_s);
        create.chooseContext(place);
        create.submit();
    }
    EXPECT_EQ(table("SELECT context_id, source FROM work_item ORDER BY rowid;"),
        (QStringList { "-|ops-home", may.id + "|ops-home" }));
    create.begin(u"ask"_s);
    create.field(u"title"_s).type(u"Which clay?"_s);
    create.submit();
    EXPECT_EQ(shell.notice(), "Ask saved. There is no context for LumoAI to answer from.");
    rail.select(may.id);
    create.begin(u"item"_s);
    EXPECT_TRUE(create.contexts().isEmpty()) << "the context is no question here";
}

TEST_F(WorkShell, anAgentIsPreparedAndItsSilenceIsSeen)
{
    WorkContextRow may = context(u"O'Brien's invoices"_s);
    shell.setShown(true);
    rail.select(may.id);
    WorkAgents& agents = *shell.agents();
    agents.launch();
    EXPECT_EQ(agents.command(),
        "'scripts/corvane-work-agent.sh' 'ops' 'ctx:ops:o'\"'\"'brien'\"'\"'s-invoices' 'ops-agent' 'ops' 'Do one "
        "bounded "
        "work unit for O'\"'\"'Brien'\"'\"'s invoices, attach evidence, post Terminal Chat update, then stop or ask.'");
    EXPECT_EQ(messages().last(),
        "message|Prepared Ops Agent for O'Brien's invoices. Opened a launch shell with the server-agent command.");
    EXPECT_TRUE(agents.banner().startsWith("\n# Prepared Corvane work agent\n# Module: ops\n"));
    EXPECT_TRUE(shell.shells()->isOpen());
    EXPECT_EQ(shell.shells()->view()->current()->label(), "Launch Ops Agent");
    EXPECT_EQ(agents.rows().first().state, "Ready");
    m_db->exec("UPDATE work_agent SET status='running';");
    m_clock.advance(Milliseconds(1'200'000));
    agents.reload();
    EXPECT_EQ(agents.silent(), 0);
    m_clock.advance(Milliseconds(1000));
    agents.reload();
    EXPECT_EQ(agents.rows().first().state, "Silent");
    m_db->exec("UPDATE work_agent SET heartbeat_at='soon';");
    agents.reload();
    EXPECT_EQ(agents.rows().first().heartbeat, "never seen");
    EXPECT_EQ(agents.silent(), 1);
}

TEST_F(WorkShell, aContextIsFoundSteppedToExportedAndQueued)
{
    const WorkContextRow kiln = context(u"Kiln"_s);
    const WorkContextRow rent = *upsertWorkContext(*m_db, { "ops", "workspace", "rent", "Rent", "For the studio", {} });
    upsertWorkAgent(*m_db, { "ops", kiln.id, "Ops Agent", "codex", "ops", "running", "Heat", "s" });
    shell.setShown(true);
    rail.setPlace(u"nowhere"_s);
    EXPECT_EQ(rail.place(), "home");
    const auto& rows = rail.contextRows();
    ASSERT_EQ(rows.size(), 2);
    const auto row = std::ranges::find(rows, kiln.id, &WorkContextSeed::id);
    EXPECT_TRUE(row->live);
    EXPECT_TRUE(row->aloud.contains("an agent is working"));
    rail.step(1);
    EXPECT_EQ(rail.selectedContextId(), rows.first().id) << "the first where none was";
    rail.step(1);
    rail.step(1);
    EXPECT_EQ(rail.selectedContextId(), rows.last().id) << "no further than the last";
    EXPECT_EQ(rail.place(), "");
    rail.setQuery(u"STUDIO"_s);
    ASSERT_EQ(rail.contextRows().size(), 1);
    EXPECT_EQ(rail.contextRows().first().subtitle, "For the studio");
    rail.setQuery(u"none"_s);
    EXPECT_EQ(rail.contextsEmpty(), "Nothing found");
    EXPECT_NE(rail.selectedContextId(), "") << "a search takes no selection away";
    rail.select(rent.id);
    const Environment home({ { "HOME", m_home.paths().home.toUtf8() } });
    shell.exportContext();
    EXPECT_EQ(shell.notice(), "Saved to " + m_home.paths().home + "/Downloads/Rent.md");
    shell.dismissNotice();
    EXPECT_EQ(shell.notice(), "");
    EXPECT_FALSE(shell.queueDraft(u" "_s));
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_item;"), "0");
    EXPECT_TRUE(shell.queueDraft(u"Dear Ana"_s));
    EXPECT_EQ(table("SELECT kind, title, summary, context_id FROM work_item;"),
        QStringList("reply|Reply for Rent|Dear Ana|" + rent.id));
    EXPECT_EQ(cell("SELECT risk FROM work_decision;"), "external");
}

TEST_F(WorkShell, aTerminalIsShownAndFoldedByItsTab)
{
    WorkShells& shells = *shell.shells();
    const QSignalSpy changed(&shells, &WorkShells::changed);
    const QSignalSpy brought(&shells, &WorkShells::brought);
    shells.setOpen(true);
    EXPECT_FALSE(shells.isOpen()) << "there is none";
    shell.agents()->createLocalShell();
    const QString first = shells.view()->current()->id();
    EXPECT_TRUE(shells.isOpen());
    shells.pick(first);
    EXPECT_FALSE(shells.isOpen()) << "the one in front is folded";
    EXPECT_EQ(brought.size(), 1);
    shells.pick(first);
    EXPECT_TRUE(shells.isOpen());
    shell.agents()->createLocalShell();
    shells.pick(first);
    EXPECT_TRUE(shells.isOpen()) << "another one comes to the front";
    EXPECT_EQ(shells.view()->current()->id(), first);
    EXPECT_EQ(brought.size(), 4);
    shells.setOpen(false);
    const qsizetype before = changed.size();
    shells.view()->select(shells.view()->localSessions().back()->id());
    EXPECT_GT(changed.size(), before) << "the tabs tell of another choice";
    shells.view()->question()->askToClose(*shells.view()->current(), u"make"_s);
    EXPECT_TRUE(shells.isOpen()) << "whoever is asked sees what about";
}

TEST_F(WorkShell, hostileAndHugeRowsDisturbNothing)
{
    const WorkContextRow may = context(u"May"_s);
    for (int i = 0; i < 1000; ++i)
        m_db->run(
            "INSERT INTO work_message(id, context_id, module, speaker, body, created_at) VALUES(?,?,'ops',?,?,?);",
            { i, may.id, u"Ana"_s, i == 999 ? QString(1'000'000, 'x') : u"line %1"_s.arg(i),
                isoTime(m_clock.nowMs()) });
    m_db->run(
        "INSERT INTO work_item(id, context_id, module, title, status, updated_at) VALUES('h',?,'ops',?,'open','?');",
        { may.id, u"a\u202Eb\n\x01"_s + QString(100'000, 'y') });
    m_db->exec("INSERT INTO work_item(id, module, title) VALUES('n','ops','');");
    shell.setShown(true);
    rail.select(may.id);
    const WorkItemSeed hostile = shell.board()->lane(0)->rows().first();
    EXPECT_TRUE(hostile.title.startsWith("ab y"));
    EXPECT_LE(hostile.title.size(), 300);
    EXPECT_EQ(hostile.updatedAt, "");
    shell.setTab(u"terminalChat"_s);
    EXPECT_EQ(shell.chat()->lines()->rowCount(), 100);
    EXPECT_FALSE(shell.chat()->earlierText().isEmpty());
    shell.chat()->showEarlier();
    EXPECT_EQ(shell.chat()->lines()->rowCount(), 200);
    shell.setTab(u"timeline"_s);
    EXPECT_LE(shell.history()->timelineRows().last().detail.size(), 4001);
    rail.setPlace(u"home"_s);
    EXPECT_EQ(lane(4), QStringList("Untitled")) << "a row without a context, a title and a status";
    for (const char* name : { "work_context", "work_item", "work_decision", "work_evidence", "work_message",
             "work_agent", "work_session", "work_memory", "ask", "project" })
        m_db->exec(u"DROP TABLE %1;"_s.arg(QLatin1StringView(name)));
    shell.refresh();
    EXPECT_EQ(rail.contextsEmpty(), "No processes yet");
    EXPECT_EQ(shell.board()->emptyTitle(), "No active ops work");
}

}
