#include "UI/WindowTest.h"

#include "Store/Work/WorkWrites.h"

#include <QTest>

namespace corvane {

namespace {

class WorkWindow : public WindowTest {
protected:
    void fill(const QString& field, const QString& text)
    {
        click(field + u".text"_s);
        type(text);
        rest();
    }

    void dragCard(const QString& card, const QString& lane)
    {
        const auto centre = [this](const QString& name) {
            QQuickItem* const at = item(name);
            return at->mapToScene(QPointF(at->width() / 2, 30)).toPoint();
        };
        const QPoint from = centre(card);
        const QPoint to = centre(lane);
        QTest::mousePress(front(), Qt::LeftButton, {}, from);
        for (int step = 1; step <= 8; ++step) {
            QTest::mouseMove(front(), from + (to - from) * step / 8);
            rest();
        }
        QTest::mouseRelease(front(), Qt::LeftButton, {}, to);
        rest();
    }
};

}

TEST_F(WorkWindow, aPersonFilesAnInvoiceCheckDecidesAndReadsTheStory)
{
    showEmptyInbox();
    click(u"topnav.ops"_s);
    rest();
    click(u"work.newContext"_s);
    rest();
    fill(u"create.title"_s, u"November invoices"_s);
    click(u"create.save"_s);
    rest();
    ASSERT_EQ(screens.ops.shell()->title(), "November invoices");
    click(u"work.newItem"_s);
    rest();
    click(u"create.save"_s);
    EXPECT_EQ(item(u"create.error"_s)->property("text"), "Title is required.");
    fill(u"create.title"_s, u"Pay the clay"_s);
    press(Qt::Key_Return, Qt::ControlModifier);
    rest();
    EXPECT_EQ(cell(u"SELECT status FROM work_item;"_s), "open");
    dragCard(u"board.card:Pay the clay"_s, u"board.lane:1"_s);
    EXPECT_EQ(cell(u"SELECT status FROM work_item;"_s), "check");
    click(u"work.undo"_s);
    rest();
    EXPECT_EQ(cell(u"SELECT status FROM work_item;"_s), "open");
    click(u"board.card:Pay the clay"_s);
    rest();
    EXPECT_NE(findItem(u"item.title"_s), nullptr);
    fill(u"item.summary"_s, u"340 euros"_s);
    click(u"item.save"_s);
    EXPECT_EQ(cell(u"SELECT summary FROM work_item;"_s), "340 euros");
    click(u"item.close"_s);
    rest();
    click(u"work.tab:approvals"_s);
    rest();
    click(u"decision.approve:Review Pay the clay"_s);
    rest();
    EXPECT_EQ(cell(u"SELECT status FROM work_decision;"_s), "proposed") << "money asks twice";
    click(u"decision.approve:Review Pay the clay"_s);
    rest();
    EXPECT_EQ(cell(u"SELECT status FROM work_decision;"_s), "approved");
    for (const TabItem& tab : screens.ops.shell()->tabs()) {
        click(u"work.tab:"_s + tab.id);
        rest();
    }
    EXPECT_EQ(screens.ops.shell()->timelineRows().size(), 4);
    press(Qt::Key_K, Qt::ControlModifier);
    type(u"clay"_s);
    rest();
    press(Qt::Key_Return);
    rest();
    EXPECT_EQ(screens.ops.shell()->item()->title(), "Pay the clay") << "the palette finds it";
}

TEST_F(WorkWindow, everyHubIsThereWithItsPlaces)
{
    LocalDB& db = app.db();
    const auto context = upsertWorkContext(db, { "cx", "client", "ana", "Ana", "", "" });
    insertWorkMemory(db, { "lumo", {}, "fact", "Gallery opens late", "agent", "medium", "Ana" });
    insertWorkEvidence(db, { "ops", {}, {}, "runbook", "Firing", "ui", "", "Slowly" });
    upsertWorkAgent(db, { "cx", context->id, "QA", "codex", "qa", "running", "Look", "s" });
    db.run(u"INSERT INTO project(id, slug, name, updated_at) VALUES('p','shop','Shop','1');"_s);
    db.run(u"INSERT INTO tab(id, current_project_id, name, created_at) VALUES('t','p','worker','1');"_s);
    db.run(u"INSERT INTO ask(id, project_id, ts, question, urgency) VALUES('a','p','1','Stop?','high');"_s);
    showInbox();
    db.run(u"INSERT INTO crm_deal(id, workspace_id, name, stage, value, updated_at) "
           "VALUES('d','local','Plates','Proposal','€1.8k',1);"_s);
    for (const auto& [hub, shell] :
        { std::pair(u"lumo"_s, screens.lumo.shell()), std::pair(u"gtm"_s, screens.gtm.shell()),
            std::pair(u"cx"_s, screens.cx.shell()), std::pair(u"ops"_s, screens.ops.shell()) }) {
        click(u"topnav."_s + hub);
        rest();
        for (const TabItem& place : shell->places()) {
            click(u"work.place:"_s + place.id);
            rest();
        }
    }
    click(u"work.place:asks"_s);
    rest();
    click(u"ask.answer:Stop?"_s);
    rest();
    fill(u"answer.text"_s, u"Go on"_s);
    click(u"answer.save"_s);
    rest();
    EXPECT_EQ(cell(u"SELECT answer FROM ask;"_s), "Go on");
    click(u"work.place:projects"_s);
    rest();
    fill(u"order.text"_s, u"Stop after this"_s);
    click(u"order.send"_s);
    EXPECT_EQ(cell(u"SELECT to_tab_id FROM message;"_s), "t");
    click(u"work.place:finance"_s);
    rest();
    click(u"finance.gate"_s);
    EXPECT_EQ(cell(u"SELECT risk FROM work_decision;"_s), "money");
    click(u"topnav.cx"_s);
    rest();
    click(u"work.context:Ana"_s);
    rest();
    click(u"work.tab:agents"_s);
    rest();
    click(u"agents.launch"_s);
    rest();
    EXPECT_TRUE(item(u"agents.command"_s)->property("text").toString().startsWith(u"'scripts/"_s));
    click(u"work.tab:terminalChat"_s);
    rest();
    model->willAnswer(u"One agent is ready."_s);
    fill(u"chat.field"_s, u"Who works here?"_s);
    press(Qt::Key_Return);
    rest();
    EXPECT_EQ(cell(u"SELECT body FROM work_message WHERE role='assistant';"_s), "One agent is ready.");
    click(u"topnav.gtm"_s);
    rest();
    item(u"pipeline.deal:Plates"_s)->parentItem()->parentItem()->forceActiveFocus();
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(cell(u"SELECT stage FROM crm_deal;"_s), "Negotiation");
}

}
