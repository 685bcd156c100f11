#include "Shell/WorkHubs.h"

#include "AI/AIServices.h"
#include "Foundation/Literals.h"
#include "Shell/CorvaneApp.h"
#include "Shell/DevHub.h"
#include "Shell/Screens.h"
#include "Store/Work/WorkBoardQueries.h"

namespace corvane {

namespace {

constexpr int hitsOfAKind = 5;
const QStringList workspaceModules { u"lumo"_s, u"gtm"_s, u"cx"_s, u"ops"_s };
const QChar separator(u'\n'); // does not occur in ids

QString iconOf(const QString& kind)
{
    static const QHash<QString, QString> icons { { u"context"_s, u"view-list"_s }, { u"item"_s, u"tick"_s },
        { u"decision"_s, u"approvals"_s }, { u"ask"_s, u"dialog-information"_s }, { u"project"_s, u"computer"_s } };
    return icons.value(kind);
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

WorkServices workServices(CorvaneApp& app)
{
    return { app.db(), app.scheduler(), app.ai().ai, app.notifications(),
        { app.scheduler(), app.defaults(), app.desktop(), app.paths().home, app.userUmask() } };
}

QList<Command> workCommands()
{
    return at({ u"In a workspace"_s, 2 },
        {
            shortcut(u"newWork"_s, u"New work item"_s, u"Ctrl+Shift+N"_s),
            { u"openWork"_s, u"Open an item"_s, u"Return"_s },
            { u"moveWork"_s, u"Move it to another lane"_s, u"Alt+Left or Right"_s },
        });
}

QList<PaletteItem> foundWork(LocalDB& db, const QString& query)
{
    QList<PaletteItem> items;
    for (const WorkHit& hit : findWork(db, query, hitsOfAKind)) {
        // An item of a module without a workspace cannot be shown.
        if ((hit.kind == "context"_L1 || hit.kind == "item"_L1) && !workspaceModules.contains(hit.module))
            continue;
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
    if (module == "dev"_L1 && kind != "decision"_L1)
        return showDevWork(screens, context, kind == "item"_L1 ? row : QString());
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
