#include "Dev/LumoScreen.h"
#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Shell/AppShell.h"
#include "Store/Core/LocalDB.h"
#include "Store/Work/WorkBoardQueries.h"
#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/OpsHub.h"

namespace corvane {

namespace {

constexpr Milliseconds pause { 400 };
const std::initializer_list<Look> everyLook { Look::Light, Look::Dark, Look::LightSmall };

/// Draws each tab of a context.
void drawTabs(Gallery& gallery, WorkModuleShell& shell, const QString& context, const QString& name)
{
    shell.rail()->select(context);
    for (const TabItem& tab : shell.tabs()) {
        shell.setTab(tab.id);
        gallery.wait(pause);
        gallery.save(name + u'-' + tab.id.toLower());
    }
    shell.setTab(shell.tabs().first().id);
}

void drawOps(Gallery& gallery)
{
    OpsHub& ops = *gallery.screens().ops;
    WorkModuleShell& shell = *ops.shell();
    gallery.screens().shell->selectHub(u"ops"_s);
    constexpr int longestWait = 40; // the demo writes its records a few seconds after the start
    for (int i = 0; shell.rail()->contextRows().isEmpty() && i < longestWait; ++i)
        gallery.wait(pause);
    const QList<TabItem> places = shell.rail()->places(); // a copy, since the counts change during iteration
    for (const TabItem& place : places) {
        shell.rail()->setPlace(place.id);
        gallery.wait(pause);
        gallery.save(u"ops-"_s + place.id, everyLook);
    }
    const QString invoices = u"ctx:ops:november-invoices"_s;
    drawTabs(gallery, shell, invoices, u"ops-context"_s);
    shell.show(invoices, u"item:demo:november-invoices:clay"_s);
    gallery.wait(pause);
    gallery.save(u"ops-item"_s, everyLook);
    shell.item()->setTitle(u"Pay Argiles Blanc for the clay"_s);
    gallery.db().run(u"UPDATE work_item SET title='Pay the clay of November', owner='Clerk' WHERE id=?;"_s,
        { shell.item()->itemId() });
    shell.item()->reload();
    gallery.wait(pause);
    gallery.save(u"ops-item-overtaken"_s);
    shell.item()->close();
    shell.agents()->launch();
    gallery.wait(pause);
    gallery.save(u"ops-launch"_s);
    shell.agents()->dismissLaunch();
    shell.shells()->setOpen(false);
    shell.create()->beginQuickAction(u"Invoice Check"_s, u"status + evidence"_s);
    gallery.wait(pause);
    gallery.save(u"ops-create-item"_s);
    shell.create()->field(u"title"_s).fill({});
    shell.create()->submit();
    gallery.wait(pause);
    gallery.save(u"ops-create-failed"_s);
    shell.create()->begin(u"ask"_s);
    gallery.wait(pause);
    gallery.save(u"ops-create-ask"_s);
    shell.create()->close();
    const QString board = shell.tabs().first().id;
    shell.setTab(board);
    shell.board()->moveBy(u"item:demo:november-invoices:vat"_s, 1);
    gallery.wait(pause);
    gallery.save(u"ops-board-undo"_s);
    shell.board()->undo();
    shell.board()->setWords(u"porcelain"_s);
    gallery.wait(pause);
    gallery.save(u"ops-board-nothing-found"_s);
    shell.board()->clearFilters();
    shell.rail()->select(u"ctx:ops:christmas-helper"_s);
    gallery.wait(pause);
    gallery.save(u"ops-hiring"_s);
    ops.showAsk(u"ask:demo:shop:0"_s);
    gallery.wait(pause);
    gallery.save(u"ops-answer"_s);
    ops.asks()->closeAnswer();
    shell.rail()->setPlace(u"home"_s);
}

/// Every hub without any records.
void drawEmpty(Gallery& gallery)
{
    for (const char* table : { "work_context", "work_item", "work_evidence", "work_memory", "work_agent", "project",
             "crm_deal", "unified_conversation", "ask" })
        gallery.db().run(u"ALTER TABLE %1 RENAME TO hidden_%1;"_s.arg(QLatin1StringView(table)));
    const auto draw = [&](const QString& hub, WorkModuleShell& shell) {
        gallery.screens().shell->selectHub(hub);
        shell.refresh();
        gallery.wait(pause);
        gallery.save(hub + u"-empty"_s);
    };
    draw(u"lumo"_s, *gallery.screens().lumo->shell());
    draw(u"gtm"_s, *gallery.screens().gtm->shell());
    draw(u"cx"_s, *gallery.screens().cx->shell());
    draw(u"ops"_s, *gallery.screens().ops->shell());
    for (const char* table : { "work_context", "work_item", "work_evidence", "work_memory", "work_agent", "project",
             "crm_deal", "unified_conversation", "ask" })
        gallery.db().run(u"ALTER TABLE hidden_%1 RENAME TO %1;"_s.arg(QLatin1StringView(table)));
}

}

void drawHubs(Gallery& gallery)
{
    Screens& screens = gallery.screens();
    drawOps(gallery);
    screens.shell->selectHub(u"lumo"_s);
    const QList<TabItem> places = screens.lumo->shell()->rail()->places();
    for (const TabItem& place : places) {
        screens.lumo->shell()->rail()->setPlace(place.id);
        gallery.wait(pause);
        gallery.save(u"lumo-"_s + place.id, everyLook);
    }
    screens.shell->selectHub(u"gtm"_s);
    gallery.wait(pause);
    gallery.save(u"gtm-pipeline"_s, everyLook);
    drawTabs(gallery, *screens.gtm->shell(), u"ctx:gtm:christmas-shop"_s, u"gtm-context"_s);
    screens.shell->selectHub(u"cx"_s);
    gallery.wait(pause);
    gallery.save(u"cx-queue"_s, everyLook);
    drawTabs(gallery, *screens.cx->shell(), u"ctx:cx:okafor"_s, u"cx-context"_s);
    drawEmpty(gallery);
    screens.shell->selectHub(u"inbox"_s);
}

}
