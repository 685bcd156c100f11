#include "Browser/BrowserView.h"
#include "Dev/LumoScreen.h"
#include "Dev/TerminalWorkspaceView.h"
#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Platform/ProcessLauncher.h"
#include "Shell/AppShell.h"
#include "Store/Core/LocalDB.h"
#include "Terminals/TerminalsView.h"

#include <QDir>
#include <unistd.h>

namespace corvane {

namespace {

constexpr Milliseconds pause { 500 };

LumoTerminalSession& openTerminal(Gallery& gallery)
{
    // A script stands in for a shell, so that the output is the same on each machine.
    LumoTerminalSession& session = gallery.screens().terminals->createLocalSession(
        u"shell"_s, { "/bin/sh", { "-c", "Gallery/terminal.sh; cat" }, {}, QDir::currentPath().toStdString(), {} });
    session.rename(u"shop-shell-1"_s);
    return session;
}

bool waitFor(Gallery& gallery, const std::function<bool()>& condition)
{
    constexpr int longestWait = 40;
    for (int i = 0; !condition() && i < longestWait; ++i)
        gallery.wait(pause);
    return condition();
}

/// The demo's page in a real browser; skipped if none is installed.
void drawBrowser(Gallery& gallery)
{
    if (chromiumPath().isEmpty())
        return;
    TerminalWorkspaceView& dev = *gallery.screens().dev;
    BrowserView& browser = *gallery.screens().browser;
    QString address;
    ProcessSpec page;
    page.executable = qEnvironmentVariable("CORVANE_NODE");
    page.arguments = { u"demo/page.mjs"_s };
    page.workingDirectory = QDir::currentPath();
    page.environment = QProcessEnvironment::systemEnvironment();
    const auto server = gallery.app().launcher().start(
        page, { [&address](const OutputChunk& chunk) { address = QString::fromUtf8(chunk.lines).trimmed(); }, {} });
    if (!server || !waitFor(gallery, [&] { return !address.isEmpty(); }))
        return;
    dev.setTab(u"browser"_s);
    BrowserOptions& options = browser.browser()->options();
    options.line = BrowserOptions::Line::Pipe;
    options.hasSandbox = ::geteuid() != 0;
    browser.setAddress(address);
    browser.open();
    waitFor(gallery, [&] { return browser.browser()->surface()->hasFrame() && browser.issues()->count() >= 3; });
    const auto save = [&](const QString& name) {
        gallery.wait(pause);
        gallery.save(name, { Look::Light, Look::Dark, Look::LightSmall });
    };
    save(u"dev-browser-page"_s);
    BrowserFieldPicker& picker = *browser.picker()->field();
    picker.open({ .kind = BrowserFieldKind::Date, .label = u"Delivery"_s, .least = u"2026-11-09"_s }, u"2026-11-24"_s,
        { 0.3, 0.3 });
    save(u"dev-browser-date"_s);
    picker.open({ .kind = BrowserFieldKind::Color, .label = u"Glaze"_s }, u"#2f5fe0"_s, { 0.3, 0.3 });
    save(u"dev-browser-color"_s);
    picker.close();
    QMetaObject::invokeMethod(gallery.item(u"browser.issues"_s), "clicked");
    save(u"dev-browser-issues"_s);
    browser.reportBug();
    browser.sheet()->picture()->blackOut({ 0.3, 0.4, 0.4, 0.1 });
    save(u"dev-browser-report"_s);
    browser.sheet()->submit();
    waitFor(gallery, [&] { return !browser.sheet()->busy(); });
    save(u"dev-browser-filed"_s);
    browser.actOnNotice();
    save(u"dev-browser-bug"_s);
    dev.tasks()->item()->close();
    dev.setTab(u"browser"_s);
    browser.display()->setDevice(u"phone"_s);
    save(u"dev-browser-phone"_s);
    browser.display()->setDevice(u"desktop"_s);
    (*server)->terminate();
    waitFor(gallery, [&] { return !(*server)->isRunning(); });
    browser.open();
    waitFor(gallery, [&] { return !browser.notice().isEmpty(); });
    save(u"dev-browser-unreachable"_s);
    browser.browser()->end();
    waitFor(gallery, [&] { return browser.browser()->browserPid() == 0; });
    options.executable = u"/usr/bin/false"_s;
    browser.open();
    waitFor(gallery, [&] { return !browser.problem().isEmpty(); });
    save(u"dev-browser-failed"_s);
}

}

void drawDev(Gallery& gallery)
{
    Screens& screens = gallery.screens();
    TerminalWorkspaceView& dev = *screens.dev;
    screens.shell->selectHub(u"dev"_s);
    waitFor(gallery, [&dev] { // the demo writes its records a few seconds after the start
        dev.refresh();
        return !dev.rail()->projects()->rows().isEmpty();
    });
    dev.rail()->select(u"proj:shop"_s);
    gallery.save(u"dev-no-terminal"_s);
    openTerminal(gallery);
    for (const TabItem& tab : dev.tabs()) {
        dev.setTab(tab.id);
        gallery.wait(pause);
        gallery.save(u"dev-"_s + tab.id, { Look::Light, Look::Dark, Look::LightSmall });
    }
    dev.setTab(u"tasks"_s);
    for (const TabItem& tab : dev.inspector()->tabs()) {
        dev.inspector()->setTab(tab.id);
        gallery.wait(pause);
        gallery.save(u"dev-inspector-"_s + tab.id);
    }
    dev.inspector()->setTab(u"team"_s);
    dev.tasks()->item()->open(u"item:demo:shop:basket"_s);
    gallery.wait(pause);
    gallery.save(u"dev-item"_s);
    dev.tasks()->item()->close();
    dev.tasks()->bugFromTerminal();
    gallery.wait(pause);
    gallery.save(u"dev-bug-from-terminal"_s);
    dev.tasks()->dismissNotice();
    dev.rail()->form()->beginEditProject();
    gallery.wait(pause);
    gallery.save(u"dev-project"_s, { Look::Light, Look::Dark, Look::LightSmall });
    dev.rail()->form()->beginNewProject();
    dev.rail()->form()->field(u"name"_s).type(u"Kiln log"_s);
    dev.rail()->form()->submit();
    gallery.wait(pause);
    gallery.save(u"dev-project-failed"_s);
    dev.rail()->form()->close();
    drawBrowser(gallery);
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
    screens.terminals->closeCurrent();
    screens.terminals->question()->answer(true);
    screens.shell->selectHub(u"lumo"_s);
    screens.lumo->shell()->rail()->setPlace(u"console"_s);
    screens.lumoConsole->setTab(u"assistant"_s);
    gallery.wait(pause);
    gallery.save(u"lumo-console"_s, { Look::Light, Look::Dark, Look::LightSmall });
    screens.lumo->shell()->rail()->setPlace(u"knowledge"_s);
    screens.shell->selectHub(u"inbox"_s);
}

}
