#include "Shell/WorkHubs.h"

#include "AI/AIServices.h"
#include "Dev/LumoScreen.h"
#include "Foundation/Literals.h"
#include "Shell/AppShell.h"
#include "Shell/CorvaneApp.h"
#include "Shell/DevHub.h"
#include "Shell/Screens.h"
#include "Store/Search/RecordQueries.h"
#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/OpsHub.h"

namespace corvane {

namespace {

WorkModuleShell* shellOf(Screens& screens, const QString& module)
{
    if (module == "lumo"_L1)
        return screens.lumo->shell();
    if (module == "gtm"_L1)
        return screens.gtm->shell();
    if (module == "cx"_L1)
        return screens.cx->shell();
    return module == "ops"_L1 ? screens.ops->shell() : nullptr;
}

}

WorkServices workServices(CorvaneApp& app)
{
    return { app.db(), app.scheduler(), app.ai().ai, app.notifications(),
        { app.scheduler(), app.defaults(), app.desktop(), app.paths().home, app.userUmask(), &app.decoder() } };
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

void openWork(Screens& screens, const FoundRecord& record)
{
    if (record.kind == "ask"_L1 || record.kind == "project"_L1) {
        screens.shell->selectHub(u"ops"_s);
        if (record.kind == "ask"_L1)
            screens.ops->showAsk(record.id);
        else
            screens.ops->showProject(record.id);
        return;
    }
    const bool isItem = record.kind == "item"_L1;
    const bool isDecision = record.kind == "decision"_L1;
    if (record.module == "dev"_L1 && !isDecision)
        return showDevWork(screens, record.contextId, isItem ? record.id : QString());
    WorkModuleShell* const shell = shellOf(screens, record.module);
    if (!shell)
        return isDecision ? screens.shell->openApprovals() : void();
    screens.shell->selectHub(record.module);
    if (isItem)
        shell->show(record.contextId, record.id);
    else if (isDecision)
        shell->show(record.contextId, {}, u"approvals"_s);
    else
        shell->show(record.contextId);
}

}
