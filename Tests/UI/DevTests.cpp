#include "Browser/BrowserView.h"
#include "Dev/TerminalWorkspaceView.h"
#include "Foundation/Literals.h"
#include "Shell/AppShell.h"
#include "Support/Await.h"
#include "Support/PlayedConnection.h"
#include "Terminals/TerminalsView.h"
#include "UI/WindowTest.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>

namespace corvane {

namespace {

class DevWindow : public WindowTest {
protected:
    DevWindow()
    {
        showEmptyInbox();
        press(Qt::Key_6, Qt::ControlModifier);
    }
    QString selectedTab() const { return screens.dev->tab(); }
};

}

TEST_F(DevWindow, aProjectIsMadeWorkedOnAndHandedToAnAgent)
{
    EXPECT_TRUE(focusWithin(u"terminals.start"_s)) << "without a project it is still a terminal";
    click(u"dev.newProject"_s);
    type(u"Shop site"_s);
    click(u"project.submit"_s);
    EXPECT_EQ(findItem(u"projectSheet"_s), nullptr);
    EXPECT_EQ(cell(u"SELECT slug FROM project;"_s), u"shop-site"_s);
    EXPECT_TRUE(QFile::exists(home.paths().home + u"/nimb/state/projects/shop-site/PROJECT.md"_s));
    EXPECT_NE(item(u"dev.project:Shop site"_s), nullptr);

    for (const TabItem& tab : screens.dev->tabs()) {
        click(u"dev.tab:"_s + tab.id);
        EXPECT_EQ(selectedTab(), tab.id);
    }
    click(u"dev.tab:srs"_s);
    screens.dev->srs()->seed();
    rest();
    click(u"srs:users"_s);
    type(u"Potters"_s);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(cell(u"SELECT users FROM dev_srs;"_s), u"Potters"_s);

    click(u"dev.tab:tasks"_s);
    click(u"dev.quickBug"_s);
    EXPECT_NE(item(u"item.title"_s), nullptr);
    EXPECT_EQ(cell(u"SELECT title FROM work_item;"_s), u"Investigate reported bug"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(screens.dev->tasks()->item()->itemId(), QString());

    click(u"dev.tab:assistant"_s);
    click(u"dev.prompt"_s);
    type(u"Look into it"_s);
    click(u"dev.copyPacket"_s);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(u"- bug: Investigate reported bug [open, Oskel]"_s));
    EXPECT_TRUE(QGuiApplication::clipboard()->text().endsWith(u"User request:\nLook into it"_s));

    click(u"dev.tab:memory"_s);
    click(u"dev.template:lesson"_s);
    click(u"dev.propose"_s);
    EXPECT_EQ(cell(u"SELECT kind FROM work_memory;"_s), u"lesson"_s);
    click(u"dev.tab:team"_s);
    click(u"dev.newAsk"_s);
    type(u"Which card?"_s);
    model->willAnswer(u"The bank's."_s);
    press(Qt::Key_Return, Qt::ControlModifier);
    rest();
    EXPECT_EQ(cell(u"SELECT question || '|' || project_id || '|' || answered_by FROM ask;"_s),
        u"Which card?|pj:shop-site|LumoAI"_s);
    click(u"dev.inspector"_s);
    EXPECT_EQ(findItem(u"dev.side:team"_s), nullptr);
}

TEST_F(DevWindow, aBugIsFiledInTwoClicksAndItsEvidenceIsReadOnTheBoard)
{
    click(u"dev.newProject"_s);
    type(u"Shop site"_s);
    click(u"project.submit"_s);
    click(u"dev.tab:browser"_s);
    EXPECT_NE(item(u"browser.empty"_s), nullptr);
    EXPECT_TRUE(focusWithin(u"browser.address"_s));
    auto* const page = new PlayedConnection;
    screens.browser->browser()->adopt(page);
    page->showFrame(PlayedConnection::jpeg({ 1280, 800 }), 1);
    page->logError(u"The price is missing."_s);
    ASSERT_TRUE(await([this] {
        rest();
        return findItem(u"browser.page"_s) != nullptr;
    }));
    click(u"browser.issues"_s);
    EXPECT_NE(item(u"browser.issue"_s), nullptr);

    click(u"browser.report"_s);
    EXPECT_TRUE(focusWithin(u"browserReport.title"_s));
    click(u"browserReport.submit"_s);
    clock.advance(seconds(3)); // the page never reports its password fields; wait for the time limit
    ASSERT_TRUE(await([this] { return screens.browser->sheet()->purpose() == BrowserReportSheet::Purpose::Closed; }));
    rest();
    click(u"browser.notice.action"_s);
    EXPECT_EQ(selectedTab(), u"tasks"_s);
    EXPECT_NE(item(u"item.title"_s), nullptr);
    click(u"event.report"_s);
    ASSERT_EQ(desktop.openedFiles.size(), 1);
    EXPECT_TRUE(desktop.openedFiles.first().endsWith("/report.html"_L1));
    QFile::remove(desktop.openedFiles.first());
    QFile::remove(cell(u"SELECT uri FROM work_evidence;"_s));
    click(u"event.play"_s);
    EXPECT_NE(item(u"dev.notice"_s), nullptr);
}

TEST_F(DevWindow, lumoHoldsTheConsoleWithTheSameTerminals)
{
    press(Qt::Key_Return);
    EXPECT_EQ(screens.terminals->count(), 1);
    shell.selectHub(u"lumo"_s);
    rest();
    click(u"work.place:console"_s);
    EXPECT_NE(item(u"terminal"_s), nullptr);
    EXPECT_EQ(item(u"dev.projects"_s)->property("count").toInt(), 0);
    app.commands().run(u"dev:health"_s);
    rest();
    EXPECT_EQ(shell.selectedNav() + u' ' + selectedTab(), u"dev health"_s);
    EXPECT_TRUE(await([this] {
        rest();
        return findItem(u"dev.health"_s)->property("count").toInt() > 0;
    }));
}

}
