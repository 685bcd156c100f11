#include "Shell/Screens.h"

#include "AI/CLIChatService.h"
#include "AI/ModelChoice.h"
#include "Approvals/ApprovalCommands.h"
#include "Calendar/CalendarServices.h"
#include "Calls/CallServices.h"
#include "Desk/QuickCapture.h"
#include "Desk/ResourceMonitor.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Notifications/Notifier.h"
#include "Platform/AddressBook.h"
#include "Platform/CalendarSource.h"
#include "Shell/CorvaneApp.h"
#include "Shell/DevHub.h"
#include "Shell/FoundPlaces.h"
#include "Shell/Hubs.h"
#include "Shell/ShellCommands.h"
#include "Shell/WorkHubs.h"
#include "Store/Core/LocalDB.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"

namespace corvane {

namespace {

/// What the checks examine; of the secrets only those of mailboxes, which contain their servers.
CheckedProfile profileToCheck(CorvaneApp& app)
{
    CheckedProfile profile = checkedProfile(app.paths(), app.defaults(), app.scheduler().nowMs());
    for (const Account& account : app.store().accounts()) {
        if (const auto secret = app.keychain().get(account.slug); secret && account.channel() == Channel::Email)
            profile.secrets.insert(account.slug, *secret);
    }
    profile.modelServer = modelChoice(app.defaults()).serverUrl;
    profile.codexPlaces = codexCandidates(app.paths().home);
    const CalendarStore& calendar = app.calendar().store;
    profile.hasCalendars = calendar.surroundings().source.access(calendar.places()) == CalendarAccess::Full;
    profile.hasContacts = app.addressBook().requestAccess(addressBookFolders(app.defaults()));
    return profile;
}

CorvaneMenuBarView::Surroundings panelSurroundings(Screens& screens)
{
    CorvaneApp& app = screens.app;
    return { .engine = app.engine(),
        .accounts = app.store(),
        .session = app.session(),
        .notifications = app.notifications(),
        .ai = app.ai(),
        .capture = &app.capture(),
        .parts = { screens.approvals, screens.meetings, screens.calls, screens.callSettings } };
}

}

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
    , reply({ app.engine(), app.store(), app.defaults(), app.scheduler(), app.microphone(), app.desktop(), app.voice(),
                app.paths().applicationSupport },
          app.ai())
    , inbox({ app.engine(), app.store(), app.defaults(), app.notifications(), app.scheduler(), app.desktop(),
                app.player(), app.voice() },
          reply)
    , draftActions(app.approvals(), app.engine(), app.store())
    , approvals(app.approvals(), draftActions, app.db(), app.scheduler())
    , drafts({ app.approvals(), draftActions, *approvals.editor(), app.db(), app.store(), app.scheduler() })
    , accounts({ app.store(), app.engine(), app.keychain() }, app.paths(), app.launcher(), app.scheduler())
    , controlChat(app.db())
    , assistant(app.ai(), app.defaults(), app.db(), app.scheduler())
    , voice(app.voice(), app.defaults())
    , dictation(app.dictation())
    , calendarSettings(app.calendar().store, app.calendar().commands, app.desktop())
    , sync(app.session(), app.db())
    , web(app.session(), app.web().sync, app.scheduler())
    , push({ app.web().push, app.session(), app.store(), app.db() })
    , toolServer(app.engine())
    , doctor({ [this] { return profileToCheck(app); }, app.background(), app.scheduler() })
    , system(app.defaults(), app.keychain(), app.paths(), app.autostart())
    , localAccess({ app.store(), app.calendar().store, app.addressBook(), app.background(), app.desktop(),
          app.defaults(), app.paths().home })
    , settings({ accounts, controlChat, assistant, voice, dictation, calendarSettings, sync, web, push, toolServer,
                   app.backups(), doctor, system, localAccess },
          app.notifications())
    , calendar(
          { app.calendar().store, app.calendar().commands, app.calendar().prep, app.desktop(), app.notifications() })
    , meetings({ app.calendar().store, app.calendar().prep, app.desktop(), app.notifications() })
    , calls(app.calls().recording, app.calls().player)
    , callSettings(app.calls().settings)
    , panel(panelSurroundings(*this))
    , today(panelSurroundings(*this))
    , closingNotice(app.tray(), app.defaults())
    , terminals({ app.scheduler(), app.defaults(), app.desktop(), app.paths().home, app.userUmask(), &app.decoder() })
    , lumo(workServices(app))
    , gtm(workServices(app))
    , cx(workServices(app))
    , ops(workServices(app))
    , browser(devBrowser(app, *this))
    , dev(devDesk(app, *this, WorkConsoleContext::dev()))
    , lumoConsole(devDesk(app, *this, WorkConsoleContext::lumo()))
    , lumoScreen(lumo, lumoConsole)
{
    const auto showUnread = [this] {
        shell.hubs()->setUnreadTotal(app.engine().unreadTotal());
    };
    QObject::connect(&app.engine(), &EngineManager::unreadTotalChanged, &shell, showUnread);
    showUnread();
    QObject::connect(&system, &SystemSettings::changed, reply.composer()->hints(), &ComposerHints::changed);
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
    shell.setHelp(readHelp(app.paths().resources));
    terminals.setBrowser([this](const QString& address) { return showInBrowser(*this, address); });
    lumoConsole.inspector()->setCollapsed(true); // it stands beside the hub's own rail
    commands.add(callCommands(calls));
    QObject::connect(&calls, &CallsView::shown, &shell, &AppShell::openCalls);
    commands.add(placeCommands(shell));
    QList<HotKey*> hotKeys = app.calls().keys.all();
    hotKeys.prepend(&app.capture().hotKey());
    system.setHotKeys(hotKeys);
    inbox.palette()->setCommands(commands);
    const auto open = [this](const FoundRecord& record, const QString& words) {
        openFound(*this, record, words);
    };
    QObject::connect(inbox.palette(), &CommandPalette::foundChosen, &shell, open);
    QObject::connect(inbox.list()->results(), &SearchResults::recordChosen, &shell, open);
    const auto showUrgent = [this] {
        shell.hubs()->setBadge(u"ops"_s, ops.urgent(), u"urgent"_s);
    };
    QObject::connect(&ops, &OpsHub::changed, &shell, showUrgent);
    showUrgent();
    inbox.setDrafts(drafts);
    panel.resources()->setMonitor(app.resources());
    today.resources()->setMonitor(app.resources());
    QObject::connect(&app, &CorvaneApp::settingsRequested, &shell, &AppShell::openSettings);
    const QList<std::pair<QString, TerminalsView*>> shells { { u"dev"_s, &terminals },
        { u"lumo"_s, lumo.shell()->shells()->view() }, { u"gtm"_s, gtm.shell()->shells()->view() },
        { u"cx"_s, cx.shell()->shells()->view() }, { u"ops"_s, ops.shell()->shells()->view() } };
    QObject::connect(&app, &CorvaneApp::quitRequested, &shell, [this, shells] {
        for (const auto& [hub, view] : shells) {
            if (!view->asksBeforeQuit())
                continue;
            shell.selectHub(hub);
            if (view == &terminals)
                dev.setWorkspaceTab(DevWorkspaceTab::Terminal); // where the question is shown
            return Q_EMIT app.windowRequested();
        }
        app.quit();
    });
    for (const auto& [hub, view] : shells) {
        QObject::connect(view->question(), &TerminalQuestion::quitConfirmed, &app, &CorvaneApp::quit);
        QObject::connect(view, &TerminalsView::notified, &app,
            [this](const QString& title, const QString& body) { app.notifier().notifyTerminal(title, body); });
    }
    // Messages that arrive here are not changes by another program.
    for (WorkModuleShell* const hub : { gtm.shell(), cx.shell() })
        QObject::connect(&app.engine(), &EngineManager::inboxRevisionChanged, hub, &WorkModuleShell::setStale);
}

}
