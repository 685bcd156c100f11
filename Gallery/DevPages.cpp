#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Store/Core/LocalDB.h"

#include <QDir>

namespace corvane {

namespace {

constexpr Milliseconds pause { 500 };

LumoTerminalSession& openTerminal(Gallery& gallery)
{
    // The script's output stands for a shell's: the gallery draws the same on each machine.
    LumoTerminalSession& session = gallery.screens().terminals.createLocalSession(
        u"shell"_s, { "/bin/sh", { "-c", "Gallery/terminal.sh; cat" }, {}, QDir::currentPath().toStdString(), {} });
    session.rename(u"shop-shell-1"_s);
    return session;
}

}

void drawDev(Gallery& gallery)
{
    Screens& screens = gallery.screens();
    TerminalWorkspaceView& dev = screens.dev;
    screens.shell.selectHub(u"dev"_s);
    constexpr int longestWait = 40; // the demonstration writes its records a few seconds after the start
    for (int i = 0; dev.rail()->projects()->rows().isEmpty() && i < longestWait; ++i) {
        gallery.wait(pause);
        dev.refresh();
    }
    dev.rail()->select(u"proj:shop"_s);
    gallery.save(u"dev-no-terminal"_s);
    openTerminal(gallery);
    for (const TabItem& tab : dev.tabs()) {
        dev.setTab(tab.id);
        gallery.wait(pause);
        gallery.save(u"dev-"_s + tab.id, { Look::Light, Look::Dark, Look::LightSmall });
    }
    dev.setTab(u"tasks"_s);
    for (const TabItem& tab : dev.inspectorTabs()) {
        dev.setInspectorTabId(tab.id);
        gallery.wait(pause);
        gallery.save(u"dev-inspector-"_s + tab.id);
    }
    dev.setInspectorTabId(u"team"_s);
    dev.tasks()->item()->open(u"item:demo:shop:basket"_s);
    gallery.wait(pause);
    gallery.save(u"dev-item"_s);
    dev.tasks()->item()->close();
    dev.tasks()->bugFromTerminal();
    gallery.wait(pause);
    gallery.save(u"dev-bug-from-terminal"_s);
    dev.tasks()->dismissNotice();
    dev.rail()->sheet()->beginEditProject();
    gallery.wait(pause);
    gallery.save(u"dev-project"_s);
    dev.rail()->sheet()->setProjectDraftName({});
    dev.rail()->sheet()->save();
    gallery.wait(pause);
    gallery.save(u"dev-project-failed"_s);
    dev.rail()->sheet()->cancel();
    dev.setTab(u"memory"_s);
    dev.memory()->stageMemoryDraft(u"lesson"_s);
    gallery.wait(pause);
    gallery.save(u"dev-memory-draft"_s);
    dev.memory()->setMemoryDraft({});
    dev.rail()->select(u"proj:kiln-log"_s);
    for (const QString& tab : { u"srs"_s, u"tasks"_s, u"memory"_s }) {
        dev.setTab(tab);
        gallery.wait(pause);
        gallery.save(u"dev-empty-"_s + tab);
    }
    dev.rail()->setSearch(u"porcelain"_s);
    gallery.wait(pause);
    gallery.save(u"dev-nothing-found"_s);
    dev.rail()->setSearch({});
    dev.setTab(u"terminal"_s);
    screens.terminals.closeCurrent();
    screens.terminals.answer(true);
    screens.shell.selectHub(u"lumo"_s);
    screens.lumo.shell()->setPlace(u"console"_s);
    screens.lumoConsole.setTab(u"assistant"_s);
    gallery.wait(pause);
    gallery.save(u"lumo-console"_s, { Look::Light, Look::Dark, Look::LightSmall });
    screens.lumo.shell()->setPlace(u"knowledge"_s);
    screens.shell.selectHub(u"inbox"_s);
}

}
