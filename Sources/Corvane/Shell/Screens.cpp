#include "Shell/Screens.h"

#include "Approvals/ApprovalCommands.h"
#include "Calendar/CalendarServices.h"
#include "Calls/CallServices.h"
#include "Desk/CaptureCommands.h"
#include "Desk/QuickCapture.h"
#include "Desk/ResourceMonitor.h"
#include "Engines/EngineManager.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Hubs.h"
#include "Shell/ShellCommands.h"
#include "Store/Core/LocalDB.h"
#include "Web/SessionStore.h"

namespace corvane {

Screens::Screens(const Surroundings& surroundings)
    : at(surroundings)
    , appearance(at.desktop, at.defaults)
    , content(at.session, at.defaults)
    , wall(at.session, content)
    , notices({ at.engine.db().health(), at.keychain, at.session, at.accounts, content, at.paths, at.calendar })
    , recovery(at.recovery)
    , shell(at.notifications, at.defaults)
    , profile(at.session, shell, at.engine.db(), at.notifications)
    , inbox({ at.engine, at.accounts, at.defaults, at.notifications, at.scheduler, at.microphone, at.desktop, at.player,
          at.paths, at.ai, at.translations, at.voice })
    , draftActions(at.approvals, at.engine, at.accounts)
    , approvals(at.approvals, draftActions, at.engine.db(), at.scheduler)
    , drafts({ at.approvals, draftActions, *approvals.editor(), at.engine, at.accounts, at.scheduler })
    , settings({ at.accounts, at.engine, at.session, at.keychain, at.defaults, at.scheduler, at.paths, at.ai,
          at.launcher, at.notifications, at.voice })
    , calendar({ at.calendar.store, at.calendar.commands, at.calendar.prep, at.desktop, at.notifications })
    , calendarSettings(at.calendar.store, at.calendar.commands)
    , meetings({ at.calendar.store, at.calendar.prep, at.desktop, at.notifications })
    , calls(at.calls.recording, at.calls.player)
    , callSettings(at.calls.settings)
    , panel({ at.engine, at.accounts, at.session, at.notifications, at.scheduler, approvals, meetings, calls, at.ai,
          at.capture })
    , closingNotice(at.tray, at.defaults)
    , terminals({ at.scheduler, at.defaults, at.desktop, at.paths.home, at.userUmask })
{
    const auto showUnread = [this] {
        shell.hubs()->setUnreadTotal(at.engine.unreadTotal());
    };
    QObject::connect(&at.engine, &EngineManager::unreadTotalChanged, &shell, showUnread);
    showUnread();
    QObject::connect(settings.system(), &SystemSettings::changed, inbox.composer(), &Composer::hintsChanged);
    QObject::connect(
        &notices, &Notices::calendarRequested, &shell, [this] { shell.selectHub(QStringLiteral("calendar")); });
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
    commands.add(callCommands(calls));
    QObject::connect(&calls, &CallsView::shown, &shell, &AppShell::openCalls);
    commands.add(placeCommands(shell));
    QList<HotKey*> hotKeys = at.calls.keys.all();
    if (at.capture) {
        commands.add(captureCommands(*at.capture));
        hotKeys.prepend(&at.capture->hotKey());
    }
    settings.system()->setHotKeys(hotKeys);
    inbox.palette()->setCommands(commands);
    inbox.setDrafts(drafts);
}

Screens::Screens(CorvaneApp& app)
    : Screens(Surroundings { app.engine(), app.approvals(), app.store(), app.session(), app.keychain(), app.defaults(),
          app.notifications(), app.scheduler(), app.desktop(), app.microphone(), app.player(), app.paths(), app.ai(),
          app.translations(), app.voice(), app.recovery(), app.calendar(), app.calls(), app.launcher(), app.tray(),
          app.userUmask(), &app.capture() })
{
    panel.resources()->setMonitor(app.resources());
    QObject::connect(&shell, &AppShell::quitRequested, &app, &CorvaneApp::quitRequested);
    QObject::connect(&app, &CorvaneApp::quitRequested, &terminals, [this, &app] {
        if (!terminals.asksBeforeQuit())
            return app.quit();
        shell.selectHub(QStringLiteral("dev"));
        Q_EMIT app.windowRequested();
    });
    QObject::connect(&terminals, &TerminalsView::quitConfirmed, &app, &CorvaneApp::quit);
}

}
