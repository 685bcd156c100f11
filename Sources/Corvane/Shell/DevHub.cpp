#include "Shell/DevHub.h"

#include "Browser/BrowserView.h"
#include "Dev/TerminalWorkspaceView.h"
#include "Foundation/Literals.h"
#include "Shell/AppShell.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "Shell/WorkHubs.h"
#include "Terminals/TerminalsView.h"
#include "Web/WebClient.h"

#include <algorithm>

namespace corvane {

namespace {

/// A command of the palette only, which shows the workspace first.
Command devCommand(Screens& screens, const QString& id, const QString& action, const std::function<void()>& run)
{
    Command command { .id = id };
    command.action = action;
    command.run = [&screens, run] {
        screens.shell->selectHub(u"dev"_s);
        run();
    };
    return command;
}

}

DevDesk devDesk(CorvaneApp& app, Screens& screens, const WorkConsoleContext& console)
{
    return { .work = workServices(app),
        .terminals = *screens.terminals,
        .browser = *screens.browser,
        .desktop = app.desktop(),
        .home = app.paths().home,
        .console = console };
}

BrowserView::Surroundings devBrowser(CorvaneApp& app, Screens& screens)
{
    BrowserOptions options = browserOptions();
    options.homeURL = webBase(app.defaults());
    return { app.db(), app.defaults(), app.desktop(),
        { app.scheduler(), app.launcher(), app.portHolders(), app.paths(), options },
        [&screens](const QString& label, const QString& command) {
            screens.dev->openTerminal(label, command);
        } };
}

bool showInBrowser(Screens& screens, const QString& address)
{
    if (chromiumPath().isEmpty())
        return false;
    screens.shell->selectHub(u"dev"_s);
    screens.dev->setWorkspaceTab(DevWorkspaceTab::Browser);
    screens.browser->setAddress(address);
    screens.browser->open();
    return true;
}

QList<Command> devCommands(Screens& screens)
{
    TerminalWorkspaceView& dev = *screens.dev;
    QList<Command> commands;
    for (const TabItem& tab : dev.tabs()) {
        commands.append(devCommand(
            screens, u"dev:"_s + tab.id, u"Workspace: "_s + tab.label, [&dev, id = tab.id] { dev.setTab(id); }));
    }
    commands.append(
        devCommand(screens, u"newProject"_s, u"New project"_s, [&dev] { dev.rail()->form()->beginNewProject(); }));
    commands.append(devCommand(screens, u"projectTerminal"_s, u"Open the project's terminal"_s,
        [&dev] { dev.launcher()->attachOrCreateLocalSession(); }));
    commands.append(devCommand(screens, u"copyPacket"_s, u"Copy the project's packet for an agent"_s, [&dev] {
        dev.setWorkspaceTab(DevWorkspaceTab::Assistant);
        dev.assistant()->copyPacket();
    }));
    commands.append(devCommand(
        screens, u"taskFromTerminal"_s, u"Task from the terminal"_s, [&dev] { dev.tasks()->taskFromTerminal(); }));
    commands.append(devCommand(
        screens, u"bugFromTerminal"_s, u"Bug from the terminal"_s, [&dev] { dev.tasks()->bugFromTerminal(); }));
    return commands;
}

void showDevWork(Screens& screens, const QString& contextId, const QString& itemId)
{
    screens.shell->selectHub(u"dev"_s);
    if (const auto context = fetchWorkContext(screens.app.db(), contextId)) {
        const QList<OpsProjectRow> projects = fetchOpsProjects(screens.app.db());
        const auto project = std::ranges::find(projects, context->slug, &OpsProjectRow::slug);
        if (project != projects.end())
            screens.dev->rail()->select(project->id);
    }
    screens.dev->showItem(itemId);
}

void showTerminals(Screens& screens)
{
    screens.dev->setWorkspaceTab(DevWorkspaceTab::Terminal);
    screens.shell->selectHub(u"dev"_s);
}

}
