#include "Approvals/ApprovalsStore.h"
#include "Approvals/ApprovalsView.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/OpenPerson.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Shell/Notices.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Await.h"
#include "Support/WaitingItems.h"
#include "UI/PanelWindow.h"
#include "UI/WindowTest.h"
#include "Web/SessionStore.h"

namespace corvane {

namespace {

class ApprovalsWindow : public WindowTest {
protected:
    void SetUp() override { showEmptyInbox(); }

    void TearDown() override
    {
        turnTo(nullptr);
        panel.hide();
        WindowTest::TearDown();
    }

    void let(const std::function<void(LocalDB&)>& write)
    {
        write(engines.db());
        delivery.refresh();
        approvals.refresh();
        rest();
    }

    void letOneOfEachWait()
    {
        let([](LocalDB& db) {
            writeDraft(db, u"d1"_s, u"Ana"_s, u"See you at three. "_s.repeated(80));
            writeProposal(db, u"p1"_s, u"task"_s, u"Call back"_s, uR"({"title":"Call Ana"})"_s);
            writeDecision(
                db, u"w1"_s, u"Pay the invoice"_s, u"Transfer 300 EUR to Arcillas."_s, u"It is due"_s, u"money"_s);
        });
    }

    void openPanel(const QPoint& at = {})
    {
        panel.toggle(at);
        rest();
        turnTo(panel.window());
        rest();
    }

    QString state() { return item(u"approval.state"_s)->property("text").toString(); }

    void carryOut()
    {
        clock.advance(seconds(5));
        rest();
    }

    QString draft(const QString& column)
    {
        return cell(u"SELECT "_s + column + u" FROM outbound_draft WHERE id='d1';"_s);
    }

    PanelWindow panel { window.engine(), *screens.panel, *screens.notices, clock };
};

}

TEST_F(ApprovalsWindow, aPersonDecidesOnThePageWithKeysAlone)
{
    letOneOfEachWait();
    press(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(shell.approvals());
    ASSERT_TRUE(focusWithin(u"approvals.list"_s));

    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(state().startsWith(u"Sending…"_s));
    EXPECT_TRUE(focusWithin(u"approval.undo"_s));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(findItem(u"approval.undo"_s), nullptr);
    clock.advance(seconds(8));
    EXPECT_EQ(draft(u"status"_s), u"pending"_s);

    press(Qt::Key_F2);
    ASSERT_TRUE(focusWithin(u"approval.words"_s));
    press(Qt::Key_A, Qt::ControlModifier);
    type(u"jk no"_s);
    press(Qt::Key_Escape);
    EXPECT_TRUE(shell.approvals()) << "the first Esc leaves the text alone";
    EXPECT_EQ(screens.approvals->editor()->draftId(), QString());
    press(Qt::Key_F2);
    press(Qt::Key_A, Qt::ControlModifier);
    type(u"Friday"_s);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(draft(u"body"_s), u"Friday"_s);
    EXPECT_TRUE(focusWithin(u"approvals.list"_s));
    press(Qt::Key_Delete);
    EXPECT_EQ(draft(u"status"_s), u"pending"_s);
    carryOut();
    EXPECT_EQ(draft(u"status"_s), u"rejected"_s);

    EXPECT_TRUE(focusWithin(u"approvals.list"_s));
    press(Qt::Key_J);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(item(u"approval.question"_s)->property("text"), u"Approve this payment: 300 EUR to Arcillas?"_s);
    ASSERT_TRUE(focusWithin(u"approval.doubt"_s));
    press(Qt::Key_Escape);
    EXPECT_EQ(findItem(u"approval.question"_s), nullptr);
    press(Qt::Key_Return, Qt::ControlModifier);
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    carryOut();
    EXPECT_EQ(cell(u"SELECT status FROM work_decision;"_s), u"approved"_s);
    let([](LocalDB& db) { ensureConversation(db, u"EMAIL"_s, u"main"_s, u"bo@x.y"_s, u"Bo"_s, 1); });
    click(u"approval.link"_s);
    ASSERT_TRUE(focusWithin(u"contactPicker.search"_s));
    type(u"jk"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(findItem(u"contactPicker.search"_s), nullptr);
    click(u"approval.link"_s);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(findItem(u"contactPicker.search"_s), nullptr);
    EXPECT_TRUE(focusWithin(u"approval:proposal:p1"_s));
    press(Qt::Key_Return, Qt::ControlModifier);
    carryOut();
    EXPECT_EQ(cell(u"SELECT status || contact_id FROM crm_update_proposal;"_s), u"appliedct:EMAIL:bo@x.y"_s);
    EXPECT_TRUE(item(u"approval:proposal:p1"_s)) << "the pointer rests on it";
    clock.advance(seconds(2));
    rest();
    item(u"approvals.empty"_s);
    click(u"approvals.decidedTab"_s);
    const QString newest = cell(u"SELECT 'decided:' || MAX(seq) FROM approval_record;"_s);
    item(newest);
    press(Qt::Key_Escape);
    EXPECT_FALSE(shell.approvals());
    EXPECT_EQ(shell.selectedNav(), u"inbox"_s);
}

TEST_F(ApprovalsWindow, whatWaitsShowsInTheBarTheSettingsAndThePaletteWithTheSameRows)
{
    letOneOfEachWait();
    EXPECT_TRUE(item(u"topnav.approvals"_s)->property("checkable").isValid());
    press(Qt::Key_K, Qt::ControlModifier);
    type(u"open approvals"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(shell.approvals());
    item(u"approval:decision:w1"_s);
    EXPECT_EQ(item(u"approval.wholeText"_s)->property("text"), u"Show all of it"_s);
    press(Qt::Key_Space);
    EXPECT_EQ(item(u"approval.wholeText"_s)->property("text"), u"Show less"_s);

    shell.openSettings();
    settings.setSection(u"approvals"_s);
    rest();
    click(u"approval.approve"_s);
    EXPECT_TRUE(state().startsWith(u"Sending…"_s));
    click(u"settings.reviewApprovals"_s);
    EXPECT_TRUE(shell.approvals());
    EXPECT_TRUE(state().startsWith(u"Sending…"_s));
    click(u"approval.undo"_s);
    EXPECT_EQ(screens.approvals->waiting(), 3);
    shell.selectHub(u"inbox"_s);
    EXPECT_FALSE(shell.approvals());
    centre.post(notifications::approvalAction, {},
        { { u"kind"_s, u"decision"_s }, { u"id"_s, u"w1"_s }, { u"action"_s, u"open"_s } });
    EXPECT_TRUE(shell.approvals()) << "a press on the banner itself";
    EXPECT_EQ(screens.approvals->waiting(), 3);
    shell.selectHub(u"inbox"_s);
    centre.post(notifications::approvalAction, {},
        { { u"kind"_s, u"decision"_s }, { u"id"_s, u"w1"_s }, { u"action"_s, u"approve"_s } });
    rest();
    EXPECT_TRUE(focusWithin(u"approval.doubt"_s)) << "its Approve asks, as it is a payment";
}

TEST_F(ApprovalsWindow, thePanelAtTheTrayIsWorkedWithKeysAndClosesWhenDone)
{
    letOneOfEachWait();
    openPanel({ 400, 1 });
    ASSERT_TRUE(panel.isShown());
    EXPECT_EQ(panel.window()->size(), QSize(380, 560));
    EXPECT_EQ(item(u"panel.line.approvals"_s)->property("text"), u"3 waiting for your approval"_s);
    EXPECT_TRUE(focusWithin(u"panel.line.approvals"_s));
    item(u"panel.notice"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(screens.panel->tab(), u"approvals"_s);
    ASSERT_TRUE(focusWithin(u"approvals.list"_s));
    press(Qt::Key_Return, Qt::ControlModifier);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(screens.approvals->waiting(), 3);
    press(Qt::Key_Return, Qt::ControlModifier);
    clock.advance(seconds(6));
    EXPECT_NE(draft(u"status"_s), u"pending"_s);
    rest();
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel.isShown());

    turnTo(nullptr);
    clock.advance(seconds(1));
    openPanel();
    window.window()->requestActivate();
    EXPECT_TRUE(await([this] { return !panel.isShown(); })) << "who turns to something else is done with it";
    panel.toggle({});
    EXPECT_FALSE(panel.isShown()) << "the press that took the focus away";

    turnTo(nullptr);
    clock.advance(seconds(1));
    openPanel();
    click(u"panel.review"_s);
    EXPECT_FALSE(panel.isShown());
    EXPECT_TRUE(shell.approvals());
}

TEST_F(ApprovalsWindow, thePanelTellsTheDayAndWhatIsWrongWithTheWebAccount)
{
    showInbox();
    openPanel();
    const auto lines = [&] {
        QStringList told;
        for (const auto& line : screens.panel->today())
            told.append(line.text);
        return told;
    };
    EXPECT_EQ(lines(),
        QStringList({ u"0 waiting for your approval"_s, u"%1 unread messages"_s.arg(engines.unreadTotal()),
            u"0 open work items"_s, u"No agent activity yet today"_s, u"3 engines running"_s,
            u"Quick capture — task or note"_s }));
    engines.db().exec(u"INSERT INTO calendar_event(id, workspace_id, title, start_ms, end_ms, updated_at) "
                      "VALUES('e', 'local', 'Fair', 1, 2, 1);"_s);
    screens.panel->setVisible(true);
    EXPECT_TRUE(lines().contains(u"No meetings today"_s)) << "a calendar is connected";
    EXPECT_EQ(
        screens.panel->noticeText(), u"Sign in to link this computer to your Nimb workspace and start syncing."_s);
    session.setAuth(u"header.e30.signature"_s, u"device"_s);
    rest();
    EXPECT_EQ(findItem(u"panel.notice"_s), nullptr);
    session.setWebRejected(true);
    rest();
    EXPECT_EQ(screens.panel->noticeTitle(), u"Web session expired — sync is down"_s);
    item(u"panel.notice"_s);
    ASSERT_FALSE(screens.panel->glance().isEmpty());
    QMetaObject::invokeMethod(item(u"panel.glance"_s), "clicked");
    EXPECT_FALSE(panel.isShown());
    EXPECT_NE(person.selectedId(), QString());
}

TEST(PanelPlace, itStandsBesideThePressAndInsideTheScreen)
{
    const QRect screen(0, 30, 1000, 700);
    const QSize size(380, 560);
    struct Case {
        QPoint at;
        QPoint corner;
    };
    for (const auto& [at, corner] : { Case { { 500, 20 }, { 310, 38 } }, Case { { 990, 32 }, { 612, 40 } },
             Case { { 2, 725 }, { 8, 157 } }, Case { { 990, 728 }, { 612, 160 } }, Case { {}, { 612, 38 } } })
        EXPECT_EQ(panelPlace(screen, at, size), QRect(corner, size)) << at.x() << ',' << at.y();
}

}
