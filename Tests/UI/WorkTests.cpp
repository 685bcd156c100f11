#include "Approvals/ApprovalsStore.h"
#include "Dev/LumoScreen.h"
#include "Foundation/Literals.h"
#include "Inbox/List/CommandPalette.h"
#include "Support/Await.h"
#include "UI/Terminals/TerminalItem.h"
#include "UI/WindowTest.h"

#include "Store/Work/WorkWrites.h"
#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/OpsHub.h"

#include <QTest>

namespace corvane {

namespace {

class WorkWindow : public WindowTest {
protected:
    void fill(const QString& field, const QString& text)
    {
        click(field + u".text"_s);
        type(text);
    }

    void drag(const QString& card, const QString& lane)
    {
        const auto centre = [this](const QString& name) {
            QQuickItem* const at = item(name);
            return at->mapToScene(QPointF(at->width() / 2, 30)).toPoint();
        };
        const QPoint from = centre(card);
        const QPoint to = centre(lane);
        QTest::mousePress(front(), Qt::LeftButton, {}, from);
        for (int step = 1; step <= 8; ++step)
            QTest::mouseMove(front(), from + (to - from) * step / 8);
        rest();
        QTest::mouseRelease(front(), Qt::LeftButton, {}, to);
        rest();
    }
};

}

TEST_F(WorkWindow, aPersonFilesAnInvoiceCheckDecidesAndReadsTheStory)
{
    showEmptyInbox();
    click(u"topnav.ops"_s);
    click(u"work.newContext"_s);
    fill(u"create.title"_s, u"November invoices"_s);
    click(u"create.submit"_s);
    ASSERT_EQ(screens.ops->shell()->header()->title(), "November invoices");
    click(u"work.newItem"_s);
    click(u"create.submit"_s);
    EXPECT_EQ(item(u"create.message"_s)->property("text"), "Title is required.");
    fill(u"create.title"_s, u"Pay the clay"_s);
    press(Qt::Key_Return, Qt::ControlModifier);
    drag(u"board.card:Pay the clay"_s, u"board.lane:1"_s);
    EXPECT_EQ(cell(u"SELECT status FROM work_item;"_s), "check");
    click(u"work.undo"_s);
    EXPECT_EQ(cell(u"SELECT status FROM work_item;"_s), "open");
    click(u"board.card:Pay the clay"_s);
    fill(u"item.summary"_s, u"340 euros"_s);
    click(u"item.save"_s);
    EXPECT_EQ(cell(u"SELECT summary FROM work_item;"_s), "340 euros");
    click(u"item.close"_s);
    click(u"work.tab:approvals"_s);
    click(u"decision.approve:Review Pay the clay"_s);
    EXPECT_EQ(cell(u"SELECT status FROM work_decision;"_s), "proposed") << "money asks twice";
    click(u"decision.approve:Review Pay the clay"_s);
    EXPECT_EQ(cell(u"SELECT status FROM work_decision;"_s), "approved");
    insertWorkDecision(
        app.db(), { "ops", screens.ops->shell()->rail()->selectedContextId(), "Order glaze", "", "", "" });
    approvals.refresh();
    approvals.decide({ ApprovalKind::Decision, cell(u"SELECT id FROM work_decision WHERE title='Order glaze';"_s) },
        Verdict::Approve, Milliseconds(0));
    clock.advance(seconds(4));
    EXPECT_EQ(screens.ops->shell()->decisions()->decisionRows().size(), 2) << "what is decided elsewhere is shown here";
    for (const TabItem& tab : screens.ops->shell()->tabs())
        click(u"work.tab:"_s + tab.id);
    EXPECT_EQ(screens.ops->shell()->history()->timelineRows().size(), 6)
        << "filed, held, approved, what was said, and the other";
    press(Qt::Key_K, Qt::ControlModifier);
    type(u"clay"_s);
    ASSERT_TRUE(await([&] { // what it found for the first letters stands there until then
        const QModelIndex first = palette.items()->index(0, 0);
        return first.data(palette.items()->roleNames().key("entry")).value<PaletteItem>().label == "Pay the clay";
    }));
    press(Qt::Key_Return);
    EXPECT_EQ(screens.ops->shell()->item()->title(), "Pay the clay") << "the palette finds it";
}

TEST_F(WorkWindow, aLocalShellShowsItsTextAndRunsNothingOfIt)
{
    upsertWorkContext(app.db(), { "ops", "process", "kiln", "Kiln'; echo $((6*7)) '", "", "" });
    showEmptyInbox();
    click(u"topnav.ops"_s);
    click(u"work.context:Kiln'; echo $((6*7)) '"_s);
    click(u"shells.new"_s);
    auto* const terminal = qobject_cast<TerminalItem*>(item(u"terminal"_s));
    ASSERT_TRUE(await([&] {
        rest();
        return terminal->shownText().contains(u"# Risky actions require approval."_s);
    }));
    EXPECT_TRUE(terminal->shownText().contains(u"# ops context: Kiln'; echo $((6*7)) '"_s));
    EXPECT_FALSE(terminal->shownText().contains(u"42"_s));
    EXPECT_TRUE(terminal->hasActiveFocus());
    click(u"shells.fold"_s);
    EXPECT_EQ(findItem(u"terminal"_s), nullptr);
    EXPECT_EQ(screens.ops->shell()->shells()->view()->count(), 1) << "it goes on";
}

TEST_F(WorkWindow, everyPlaceOfEachHubIsDrawn)
{
    LocalDB& db = app.db();
    insertWorkMemory(db, { "lumo", {}, "fact", "Gallery opens late", "agent", "medium", "Ana" });
    insertWorkEvidence(db, { "ops", {}, {}, "runbook", "Firing", "ui", "", "Slowly" });
    upsertWorkAgent(db, { "cx", {}, "QA", "codex", "qa", "running", "Look", "s" });
    db.run(u"INSERT INTO project(id, slug, name, updated_at) VALUES('p','shop','Shop','1');"_s);
    db.run(u"INSERT INTO tab(id, current_project_id, name, created_at) VALUES('t','p','worker','1');"_s);
    db.run(u"INSERT INTO ask(id, project_id, ts, question, urgency) VALUES('a','p','1','Stop?','high');"_s);
    showInbox();
    db.run(u"INSERT INTO crm_deal(id, workspace_id, name, stage, value, updated_at) "
           "VALUES('d','local','Plates','Proposal','€1.8k',1);"_s);
    for (const auto& [hub, workspace] :
        { std::pair(u"lumo"_s, screens.lumo->shell()), std::pair(u"gtm"_s, screens.gtm->shell()),
            std::pair(u"cx"_s, screens.cx->shell()), std::pair(u"ops"_s, screens.ops->shell()) }) {
        click(u"topnav."_s + hub);
        for (const TabItem& place : workspace->rail()->places())
            click(u"work.place:"_s + place.id);
    }
    click(u"work.place:asks"_s);
    click(u"ask.answer:Stop?"_s);
    fill(u"answer.text"_s, u"Go on"_s);
    click(u"answer.save"_s);
    EXPECT_EQ(cell(u"SELECT answer FROM ask;"_s), "Go on");
    click(u"work.place:projects"_s);
    fill(u"order.text"_s, u"Stop after this"_s);
    click(u"order.send"_s);
    EXPECT_EQ(cell(u"SELECT to_tab_id FROM message;"_s), "t");
}

}
