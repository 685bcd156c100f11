#include "Shell/WorkHubs.h"

#include "AI/AIServices.h"
#include "Foundation/Literals.h"
#include "Presentation/BodyText.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "Store/Work/WorkBoardQueries.h"
#include "Terminals/ShellCommand.h"

namespace corvane {

namespace {

constexpr int hitsOfAKind = 5;
const QChar separator(u'\n'); // in no id

QString iconOf(const QString& kind)
{
    static const QHash<QString, QString> icons { { u"context"_s, u"view-list"_s }, { u"item"_s, u"tick"_s },
        { u"decision"_s, u"approvals"_s }, { u"ask"_s, u"dialog-information"_s }, { u"project"_s, u"computer"_s } };
    return icons.value(kind);
}

/// The user's shell behind a text that it is given to print: the text is an argument and never typed, so that nothing
/// in it can be run.
terminal::Command shellThatShows(const QString& text, const QString& home, std::optional<mode_t> umask)
{
    terminal::Command command = shellCommand(resolvedDirectory(u"~/nimb/apps/nimb-local"_s, home), umask);
    const std::string program
        = command.program.empty() ? qEnvironmentVariable("SHELL", u"/bin/sh"_s).toStdString() : command.program;
    std::vector<std::string> arguments { "-c", R"(printf %s "$0"; exec "$@")", BodyText::printable(text).toStdString(),
        program };
    if (command.program.empty())
        arguments.emplace_back("-l");
    else
        arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    command.program = "/bin/sh";
    command.arguments = arguments;
    return command;
}

WorkModuleShell* shellOf(Screens& screens, const QString& module)
{
    if (module == "lumo"_L1)
        return screens.lumo.shell();
    if (module == "gtm"_L1)
        return screens.gtm.shell();
    if (module == "cx"_L1)
        return screens.cx.shell();
    return module == "ops"_L1 ? screens.ops.shell() : nullptr;
}

}

WorkServices workServices(CorvaneApp& app, Screens& screens)
{
    return { app.db(), app.scheduler(), app.ai().ai, app.notifications(),
        [&app, &screens](const QString& name, const QString& text) {
            LumoTerminalSession& session = screens.terminals.createLocalSession(
                u"work"_s, shellThatShows(text, app.paths().home, app.userUmask()));
            screens.terminals.rename(session.id(), name);
        },
        [&screens] {
            screens.shell.selectHub(u"dev"_s);
        } };
}

QList<Command> workCommands()
{
    const CommandPlace place { u"In a workspace"_s, 2 };
    return {
        { u"newWork"_s, u"New work item"_s, u"Ctrl+Shift+N"_s, { u"Ctrl+Shift+N"_s }, place },
        { u"openWork"_s, u"Open an item"_s, u"Return"_s, {}, place },
        { u"moveWork"_s, u"Move it to another lane"_s, u"Alt+Left or Right"_s, {}, place },
    };
}

QList<PaletteItem> foundWork(LocalDB& db, const QString& query)
{
    QList<PaletteItem> items;
    for (const WorkHit& hit : findWork(db, query, hitsOfAKind)) {
        PaletteItem item;
        item.id = QStringList { u"work"_s, hit.kind, hit.module, hit.contextId, hit.id }.join(separator);
        item.label = shownLine(hit.title);
        item.detail = hit.module.isEmpty() ? hit.kind : hit.kind + u", "_s + hit.module;
        item.icon = iconOf(hit.kind);
        items.append(item);
    }
    return items;
}

void openFoundWork(Screens& screens, const QString& id)
{
    const QStringList parts = id.split(separator);
    const QString kind = parts.value(1);
    const QString module = parts.value(2);
    const QString context = parts.value(3);
    const QString row = parts.value(4);
    if (kind == "ask"_L1 || kind == "project"_L1) {
        screens.shell.selectHub(u"ops"_s);
        if (kind == "ask"_L1)
            screens.ops.showAsk(row);
        else
            screens.ops.showProject(row);
        return;
    }
    WorkModuleShell* const shell = shellOf(screens, module);
    if (!shell)
        return kind == "decision"_L1 ? screens.shell.openApprovals() : void();
    screens.shell.selectHub(module);
    if (kind == "item"_L1)
        shell->show(context, row);
    else if (kind == "decision"_L1)
        shell->show(context, {}, u"approvals"_s);
    else
        shell->show(context);
}

}
