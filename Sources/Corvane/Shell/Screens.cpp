#include "Shell/Screens.h"

#include "Approvals/ApprovalCommands.h"
#include "Calendar/CalendarServices.h"
#include "Calls/CallServices.h"
#include "Desk/QuickCapture.h"
#include "Desk/ResourceMonitor.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Hubs.h"
#include "Shell/ShellCommands.h"
#include "Shell/WorkHubs.h"
#include "Store/Core/LocalDB.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"

namespace corvane {

Screens::Screens(CorvaneApp& root)
    : app(root)
    , commands(app.commands())
    , appearance(app.desktop(), app.defaults())
    , content(app.session(), app.defaults())
    , wall(app.session(), content)
    , notices({ app.db().health(), app.keychain(), app.session(), app.store(), content, app.paths(), app.calendar() })
    , recovery(app.recovery())
    , shell(app.notifications(), app.defaults())
    , profile(app.session(), commands, app.web().sync, app.notifications())
    , inbox({ app.engine(), app.store(), app.defaults(), app.notifications(), app.scheduler(), app.microphone(),
          app.desktop(), app.player(), app.paths(), app.ai(), app.translations(), app.voice() })
    , draftActions(app.approvals(), app.engine(), app.store())
    , approvals(app.approvals(), draftActions, app.db(), app.scheduler())
    , drafts({ app.approvals(), draftActions, *approvals.editor(), app.db(), app.store(), app.scheduler() })
    , settings({ app.store(), app.engine(), app.session(), app.keychain(), app.defaults(), app.scheduler(), app.paths(),
          app.ai(), app.launcher(), app.notifications(), app.voice(), app.web() })
    , calendar(
          { app.calendar().store, app.calendar().commands, app.calendar().prep, app.desktop(), app.notifications() })
    , calendarSettings(app.calendar().store, app.calendar().commands, app.desktop())
    , localAccess({ app.store(), app.calendar().store, app.addressBook(), app.background(), app.desktop(),
          app.defaults(), app.paths().home })
    , meetings({ app.calendar().store, app.calendar().prep, app.desktop(), app.notifications() })
    , calls(app.calls().recording, app.calls().player)
    , callSettings(app.calls().settings)
    , dictationSettings(app.dictation())
    , panel({ app.engine(), app.store(), app.session(), app.notifications(), app.scheduler(), approvals, meetings,
          calls, callSettings, app.ai(), &app.capture() })
    , today({ app.engine(), app.store(), app.session(), app.notifications(), app.scheduler(), approvals, meetings,
          calls, callSettings, app.ai(), &app.capture() })
    , closingNotice(app.tray(), app.defaults())
    , terminals({ app.scheduler(), app.defaults(), app.desktop(), app.paths().home, app.userUmask() })
    , lumo(workServices(app, *this))
    , gtm(workServices(app, *this))
    , cx(workServices(app, *this))
    , ops(workServices(app, *this))
{
    const auto showUnread = [this] {
        shell.hubs()->setUnreadTotal(app.engine().unreadTotal());
    };
    QObject::connect(&app.engine(), &EngineManager::unreadTotalChanged, &shell, showUnread);
    showUnread();
    QObject::connect(settings.system(), &SystemSettings::changed, inbox.person()->composer(), &Composer::hintsChanged);
    QObject::connect(&notices, &Notices::calendarRequested, &shell, [this] { shell.selectHub(u"calendar"_s); });
    commands.add(shellCommands(shell, inbox, commands));
    commands.add(approvalCommands());
    QList<QObject*> hubScreens;
    for (const Hub& hub : hubTable()) {
        const HubScreen made = hub.make(*this, hub);
        hubScreens.append(made.screen);
        commands.add(made.commands);
    }
    shell.setScreens(hubScreens);
    settings.setCalendar(calendarSettings);
    settings.setDictation(dictationSettings);
    settings.setLocalAccess(localAccess);
    commands.add(callCommands(calls));
    QObject::connect(&calls, &CallsView::shown, &shell, &AppShell::openCalls);
    commands.add(placeCommands(shell));
    QList<HotKey*> hotKeys = app.calls().keys.all();
    hotKeys.prepend(&app.capture().hotKey());
    settings.system()->setHotKeys(hotKeys);
    inbox.palette()->setCommands(commands);
    inbox.palette()->setFinder([this](const QString& query) { return foundWork(app.db(), query); });
    QObject::connect(
        inbox.palette(), &CommandPalette::foundChosen, &shell, [this](const QString& id) { openFoundWork(*this, id); });
    const auto showUrgent = [this] {
        shell.hubs()->setBadge(u"ops"_s, ops.urgent(), u"urgent"_s);
    };
    QObject::connect(&ops, &OpsHub::changed, &shell, showUrgent);
    showUrgent();
    inbox.setDrafts(drafts);
    panel.resources()->setMonitor(app.resources());
    today.resources()->setMonitor(app.resources());
    QObject::connect(&app, &CorvaneApp::settingsRequested, &shell, &AppShell::openSettings);
    QObject::connect(&app, &CorvaneApp::quitRequested, &terminals, [this] {
        if (!terminals.asksBeforeQuit())
            return app.quit();
        shell.selectHub(u"dev"_s);
        Q_EMIT app.windowRequested();
    });
    QObject::connect(&terminals, &TerminalsView::quitConfirmed, &app, &CorvaneApp::quit);
}

}
