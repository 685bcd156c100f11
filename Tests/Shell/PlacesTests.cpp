#include "Calendar/CalendarView.h"
#include "Calls/CallServices.h"
#include "Calls/CallsView.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Dev/TerminalWorkspaceView.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Shell/AppShell.h"
#include "Shell/ClosingNotice.h"
#include "Shell/CorvaneApp.h"
#include "Shell/DevHub.h"
#include "Shell/ProfileMenu.h"
#include "Shell/Screens.h"
#include "Store/Core/Workspaces.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/CrmRecords.h"
#include "Store/Work/OpsRecords.h"
#include "Store/Work/WorkWrites.h"
#include "Support/FakeMachine.h"
#include "Support/Print.h"
#include "Support/Rows.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"
#include "Web/WebSync.h"
#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/OpsHub.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const QString ana = "ct:WHATSAPP:1@x";

FoundRecord record(SearchGroup group, const char* kind, const QString& id, const QString& person = {})
{
    FoundRecord found;
    found.group = group;
    found.kind = QString::fromLatin1(kind);
    found.id = id;
    found.personId = person;
    return found;
}

FoundRecord work(const char* kind, const QString& id, const char* module = "", const QString& context = {})
{
    FoundRecord found = record(SearchGroup::Work, kind, id);
    found.module = QString::fromLatin1(module);
    found.contextId = context;
    return found;
}

class Places : public testing::Test {
protected:
    QString place() const
    {
        const QString cover = shell.settings() ? u"+settings"_s
            : shell.approvals()                ? u"+approvals"_s
            : shell.calls()                    ? u"+calls"_s
                                               : QString();
        return shell.selectedNav() + cover;
    }

    /// Where a record of the search leads, from the hub "today".
    QString found(const FoundRecord& record, const QString& words = {})
    {
        shell.selectHub(u"today"_s);
        Q_EMIT screens.inbox->palette()->foundChosen(record, words);
        return place();
    }

    QString context(const QString& module, const QString& slug)
    {
        return upsertWorkContext(db, { module, u"project"_s, slug, slug, {}, {} })->id;
    }

    QString item(const QString& module, const QString& context)
    {
        return insertWorkItem(db, { module, context, u"task"_s, u"Fire"_s, {}, {}, {}, {} })->id;
    }

    TemporaryHome home;
    VirtualScheduler clock;
    CorvaneApp app { home.paths(), clock, fakeMachine(home.paths(), std::make_unique<FakeLauncher>(clock)) };
    Screens screens { app };
    LocalDB& db = app.db();
    AppShell& shell = *screens.shell;
    Commands& commands = screens.commands;
};

}

TEST_F(Places, whatIsFoundOfAPersonOpensThere)
{
    ensureConversation(db, "WHATSAPP", "first", "1@x", "Ana", 1000);
    const QSignalSpy panes(screens.inbox->person(), &OpenPerson::paneAsked);
    EXPECT_EQ(found(record(SearchGroup::Notes, "note", "n")), "today") << "of nobody";
    EXPECT_EQ(found(record(SearchGroup::Deals, "deal", "d")), "gtm");
    EXPECT_EQ(found(record(SearchGroup::People, "person", ana, ana)), "today");
    EXPECT_EQ(found(record(SearchGroup::Messages, "message", "m", ana)), "today");
    EXPECT_EQ(panes.size(), 0);
    const QList<std::pair<SearchGroup, QString>> sections { { SearchGroup::Notes, "notes" },
        { SearchGroup::Deals, "deals" }, { SearchGroup::Tasks, "tasks" } };
    for (const auto& [group, section] : sections) {
        screens.inbox->person()->select({});
        EXPECT_EQ(found(record(group, "", "id", ana)), "inbox");
        EXPECT_EQ(screens.inbox->person()->selectedId(), ana);
        EXPECT_EQ(panes.last().first(), section);
    }
    EXPECT_EQ(panes.size(), 3);

    const QSignalSpy pages(screens.calls.get(), &CallsView::changed);
    EXPECT_EQ(found(record(SearchGroup::Calls, "call", "c"), "kiln"), "today+calls");
    EXPECT_EQ(screens.calls->query(), "kiln");
    EXPECT_EQ(found(record(SearchGroup::Transcripts, "transcript", "c"), "clay"), "today+calls");
    EXPECT_EQ(screens.calls->query(), "clay");
    EXPECT_GT(pages.size(), 2);
    const qint64 later = clock.nowMs() + 40 * 86'400'000LL;
    const QString title = screens.calendar->title();
    FoundRecord event = record(SearchGroup::Events, "event", "e");
    event.ts = later;
    EXPECT_EQ(found(event), "calendar");
    EXPECT_NE(screens.calendar->title(), title) << "the page of its day";
}

TEST_F(Places, whatIsFoundOfWorkOpensInItsHub)
{
    const auto ask = createOpsAsk(db, { .projectSlug = "shop", .question = "Stop?", .urgency = "high" });
    OpsProjectRow row;
    row.slug = row.name = "shop";
    row.status = "active";
    const QString project = upsertOpsProject(db, row)->id;
    screens.ops->shell()->setShown(true);
    EXPECT_EQ(found(work("ask", ask->id)), "ops");
    EXPECT_EQ(screens.ops->shell()->rail()->place(), "asks");
    EXPECT_EQ(screens.ops->asks()->answering(), "Stop?");
    EXPECT_EQ(found(work("project", project)), "ops");
    EXPECT_EQ(screens.ops->shell()->rail()->place(), "projects");
    EXPECT_EQ(screens.ops->projects()->selected(), project);

    const QList<std::pair<const char*, WorkModuleShell*>> shells { { "gtm", screens.gtm->shell() },
        { "cx", screens.cx->shell() }, { "ops", screens.ops->shell() } };
    for (const auto& [module, view] : shells) {
        const QString name = QString::fromLatin1(module);
        const QString one = context(name, "one");
        const QString two = context(name, "two");
        const QString fire = item(name, one);
        view->setShown(true);
        EXPECT_EQ(found(work("item", fire, module, one)), name);
        EXPECT_EQ(view->rail()->selectedContextId(), one);
        EXPECT_EQ(view->item()->itemId(), fire);
        EXPECT_EQ(found(work("context", two, module, two)), name);
        EXPECT_EQ(view->rail()->selectedContextId(), two);
        EXPECT_NE(view->tab(), "approvals");
        EXPECT_EQ(found(work("decision", "d", module, one)), name);
        EXPECT_EQ(view->rail()->selectedContextId() + view->tab(), one + "approvals");
    }
    EXPECT_EQ(found(work("decision", "d")), "today+approvals");
    shell.toggleApprovals();
    EXPECT_EQ(found(work("item", "i", "elsewhere")), "today");

    const QString other = context("dev", "other");
    const QString shop = context("dev", "shop");
    const QString fix = item("dev", shop);
    screens.dev->setShown(true);
    EXPECT_EQ(found(work("item", fix, "dev", shop)), "dev");
    EXPECT_EQ(screens.dev->tab(), "tasks");
    EXPECT_EQ(screens.dev->tasks()->item()->itemId(), fix);
    EXPECT_EQ(screens.dev->desk().project.id, project);
    EXPECT_EQ(found(work("context", other, "dev", other)), "dev");
    EXPECT_EQ(screens.dev->tasks()->item()->itemId(), "");
    EXPECT_EQ(found(work("decision", "d", "dev", shop)), "today+approvals");
}

TEST_F(Places, aCommandLeadsToItsScreen)
{
    const QSignalSpy pages(&commands, &Commands::pageAsked);
    const auto ran = [&](const char* id) {
        shell.selectHub(u"cx"_s);
        commands.run(QString::fromLatin1(id));
        return place();
    };
    EXPECT_EQ(ran("search"), "inbox");
    EXPECT_EQ(pages.last().first(), "search");
    EXPECT_EQ(ran("settings"), "cx+settings");
    EXPECT_EQ(ran("approvals"), "cx+approvals");
    commands.run(u"approvals"_s);
    EXPECT_EQ(place(), "cx");
    EXPECT_EQ(ran("calls"), "cx+calls");
    commands.run(u"calls"_s);
    EXPECT_EQ(place(), "cx");
    EXPECT_EQ(ran("openCalls"), "cx+calls");
    commands.run(u"openCalls"_s);
    EXPECT_EQ(place(), "cx+calls");
    EXPECT_EQ(ran("newMessage"), "inbox");
    EXPECT_TRUE(screens.inbox->composeSheet()->shown());
    screens.inbox->composeSheet()->close();
    EXPECT_FALSE(screens.inbox->composeSheet()->shown());
    EXPECT_EQ(ran("compose"), "inbox");
    EXPECT_TRUE(screens.inbox->composeSheet()->shown());
    EXPECT_FALSE(screens.inbox->showPalette());
    EXPECT_EQ(ran("palette"), "cx");
    EXPECT_TRUE(screens.inbox->showPalette());
    QStringList palette;
    for (const Command& command : commands.all()) {
        if (command.action.startsWith(u"Go to "_s))
            palette.append(command.keys + u' ' + command.action + u' ' + ran(command.id.toLatin1().constData()));
    }
    EXPECT_EQ(palette,
        (QStringList { "Ctrl+1 Go to Lumo lumo", "Ctrl+2 Go to GTM gtm", "Ctrl+3 Go to CX cx", "Ctrl+4 Go to Ops ops",
            "Ctrl+5 Go to Inbox inbox", "Ctrl+6 Go to Dev dev", "Ctrl+7 Go to Calendar calendar",
            "Ctrl+8 Go to Today today" }));
    EXPECT_EQ(ran("today.calls"), "today");
    EXPECT_EQ(screens.today->tab(), "calls");
    EXPECT_EQ(ran("today.now"), "today");
    EXPECT_EQ(screens.today->tab(), "now");
    EXPECT_EQ(ran("recordCall"), "cx+calls");
}

TEST_F(Places, theCommandsOfDevOpenItsTabs)
{
    const auto ran = [&](const char* id) {
        shell.selectHub(u"cx"_s);
        commands.run(QString::fromLatin1(id));
        return place() + u' ' + screens.dev->tab();
    };
    for (const TabItem& tab : screens.dev->tabs()) {
        const Command* const command = commands.find(u"dev:"_s + tab.id);
        ASSERT_TRUE(command);
        EXPECT_EQ(command->action, u"Workspace: "_s + tab.label);
        EXPECT_EQ(ran(command->id.toLatin1().constData()), u"dev "_s + tab.id);
    }
    const QSignalSpy copies(screens.dev->assistant(), &DevAssistant::copyRequested);
    EXPECT_EQ(ran("copyPacket"), "dev assistant");
    EXPECT_EQ(copies.size(), 1);
    EXPECT_TRUE(ran("newProject").startsWith("dev "));
    EXPECT_TRUE(screens.dev->rail()->form()->isOpen());
    shell.selectHub(u"cx"_s);
    showTerminals(screens);
    EXPECT_EQ(place() + u' ' + screens.dev->tab(), "dev terminal");
}

TEST_F(Places, aCommandOnThePersonNeedsOne)
{
    ensureConversation(db, "WHATSAPP", "first", "1@x", "Ana", 1000);
    screens.inbox->appear();
    OpenPerson& person = *screens.inbox->person();
    const auto flags = [&] {
        return db.scalar("SELECT (archived_at IS NOT NULL) || coalesce(muted, 0) FROM unified_conversation;");
    };
    for (const char* id : { "archiveCurrent", "muteCurrent", "toggleCRM" })
        commands.run(QString::fromLatin1(id));
    EXPECT_EQ(flags(), "00");
    EXPECT_TRUE(person.showCRM());
    person.select(ana);
    commands.run(u"toggleCRM"_s);
    EXPECT_FALSE(person.showCRM());
    commands.run(u"toggleCRM"_s);
    EXPECT_TRUE(person.showCRM());
    commands.run(u"muteCurrent"_s);
    EXPECT_EQ(flags(), "01");
    db.run("UPDATE unified_conversation SET unread=2;");
    commands.run(u"markAllRead"_s);
    EXPECT_EQ(db.scalar("SELECT unread FROM unified_conversation;"), "0");
    commands.run(u"archiveCurrent"_s);
    EXPECT_EQ(flags(), "11");
}

TEST_F(Places, theBarCountsUrgentQuestions)
{
    TopHubBar& hubs = *shell.hubs();
    const auto ops = [&] {
        return column(hubs, "badge")[3] + u'|' + column(hubs, "badgeAloud")[3];
    };
    EXPECT_EQ(ops(), "|");
    createOpsAsk(db, { .projectSlug = "shop", .question = "Stop?", .urgency = "high" });
    screens.ops->shell()->setShown(true);
    EXPECT_EQ(ops(), "1|1 urgent");
    EXPECT_EQ(column(hubs, "badge")[4], "");
    ASSERT_FALSE(shell.help().isEmpty());
    EXPECT_FALSE(shell.help().first().title.isEmpty() || shell.help().first().text.isEmpty());
    EXPECT_EQ(shell.page().fileName(), "InboxPage.qml");
    shell.selectHub(u"dev"_s);
    EXPECT_EQ(shell.page().fileName(), "DevPage.qml");
}

TEST_F(Places, theMenuShowsTwentyWorkspacesAndTheChosenOne)
{
    ProfileMenu& menu = *screens.profile;
    QList<WorkspaceRow> rows;
    for (int n = 10; n < 32; ++n) {
        WorkspaceRow row;
        row.workspaceId = row.workspaceName = u"w%1"_s.arg(n);
        rows.append(row);
    }
    storeWorkspaceRows(db, rows, "w31");
    const auto actions = [&] {
        QStringList labels;
        for (const Choice& action : menu.workspaceActions())
            labels.append(action.label);
        return labels;
    };
    EXPECT_EQ(actions(), QStringList("Ask the web again"));
    app.session().setAuth("token", "d");
    app.web().sync.takeUp();
    ASSERT_EQ(menu.workspaces().size(), 21);
    EXPECT_EQ(menu.workspaces().last().id, "w31");
    EXPECT_TRUE(menu.workspaces().last().selected);
    EXPECT_EQ(actions().last(), "All workspaces…");
    shell.selectHub(u"cx"_s);
    menu.perform(menu.workspaceActions().last().id);
    EXPECT_EQ(place(), "inbox+settings");
    menu.perform(menu.workspaceActions().first().id);
    EXPECT_EQ(actions().first(), "Asking the web…");
    app.session().signOut();
    EXPECT_TRUE(menu.workspaces().isEmpty());
}

TEST_F(Places, aWindowThatClosesWithoutATrayIconSaysSoOnce)
{
    EXPECT_TRUE(screens.closingNotice->due());
    EXPECT_TRUE(screens.closingNotice->text().contains("Start Corvane again to bring the window back."));
    screens.closingNotice->said();
    EXPECT_FALSE(screens.closingNotice->due());
    EXPECT_FALSE(ClosingNotice(nullptr, app.defaults()).due());
}
