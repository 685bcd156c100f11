#include "Shell/Screens.h"

#include "AI/CLIChatService.h"
#include "AI/ModelChoice.h"
#include "Approvals/ApprovalCommands.h"
#include "Approvals/ApprovalsView.h"
#include "Approvals/PendingDraftsView.h"
#include "Calendar/CalendarServices.h"
#include "Calendar/CalendarSettings.h"
#include "Calendar/CalendarView.h"
#include "Calendar/UpcomingMeetings.h"
#include "Calls/CallServices.h"
#include "Calls/CallSettings.h"
#include "Calls/CallsView.h"
#include "Care/Doctor/DoctorView.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Desk/QuickCapture.h"
#include "Desk/ResourceMonitor.h"
#include "Dev/LumoScreen.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Notifications/Notifier.h"
#include "Platform/AddressBook.h"
#include "Platform/CalendarSource.h"
#include "Presentation/Commands.h"
#include "Settings/Appearance.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Shell/ClosingNotice.h"
#include "Shell/ContentView.h"
#include "Shell/CorvaneApp.h"
#include "Shell/DevHub.h"
#include "Shell/FoundPlaces.h"
#include "Shell/Hubs.h"
#include "Shell/LoginWallView.h"
#include "Shell/Notices.h"
#include "Shell/ProfileMenu.h"
#include "Shell/ShellCommands.h"
#include "Shell/StoreRecovery.h"
#include "Shell/WorkHubs.h"
#include "Store/Core/LocalDB.h"
#include "Terminals/TerminalsView.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"
#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/OpsHub.h"

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
        .parts = { *screens.approvals, *screens.meetings, *screens.calls, screens.callSettings } };
}

}

Screens::Screens(CorvaneApp& root)
    : app(root)
    , commands(app.commands())
    , appearance(std::make_unique<Appearance>(app.desktop(), app.defaults()))
    , content(std::make_unique<ContentView>(app.session(), app.defaults()))
    , wall(std::make_unique<LoginWallView>(app.session(), *content))
    , notices(std::make_unique<Notices>(Notices::Surroundings {
          app.db().health(), app.keychain(), app.session(), app.store(), *content, app.paths(), app.calendar() }))
    , recovery(app.recovery())
    , shell(std::make_unique<AppShell>(app.notifications(), app.defaults()))
    , profile(std::make_unique<ProfileMenu>(app.session(), commands, app.web().sync, app.notifications()))
    , reply(std::make_unique<Reply>(Composer::Surroundings { app.engine(), app.store(), app.defaults(), app.scheduler(),
                                        app.microphone(), app.desktop(), app.voice(), app.paths().applicationSupport },
          app.ai()))
    , inbox(std::make_unique<InboxView>(
          InboxView::Surroundings { app.engine(), app.store(), app.defaults(), app.notifications(), app.scheduler(),
              app.desktop(), app.player(), app.voice() },
          *reply))
    , draftActions(std::make_unique<DraftActions>(app.approvals(), app.engine(), app.store()))
    , approvals(std::make_unique<ApprovalsView>(app.approvals(), *draftActions, app.db(), app.scheduler()))
    , drafts(std::make_unique<PendingDraftsView>(PendingDraftsView::Surroundings {
          app.approvals(), *draftActions, *approvals->editor(), app.db(), app.store(), app.scheduler() }))
    , accounts(std::make_unique<AccountsView>(
          AccountSetup { app.store(), app.engine(), app.keychain() }, app.paths(), app.launcher(), app.scheduler()))
    , controlChat(std::make_unique<ControlChatSettings>(app.db()))
    , assistant(std::make_unique<AssistantSettings>(app.ai(), app.defaults(), app.db(), app.scheduler()))
    , voice(std::make_unique<VoiceSettings>(app.voice(), app.defaults()))
    , dictation(std::make_unique<DictationSettings>(app.dictation()))
    , calendarSettings(std::make_unique<CalendarSettings>(app.calendar().store, app.calendar().commands, app.desktop()))
    , sync(std::make_unique<SyncSettings>(app.session(), app.db()))
    , web(std::make_unique<WebSettings>(app.session(), app.web().sync, app.scheduler()))
    , push(std::make_unique<PushSettings>(
          PushSheet::Surroundings { app.web().push, app.session(), app.store(), app.db() }))
    , toolServer(std::make_unique<ToolServerCard>(app.engine()))
    , doctor(std::make_unique<DoctorView>(
          DoctorView::Surroundings { [this] { return profileToCheck(app); }, app.background(), app.scheduler() }))
    , system(std::make_unique<SystemSettings>(app.defaults(), app.keychain(), app.paths(), app.autostart()))
    , localAccess(std::make_unique<LocalAccess>(LocalAccess::Surroundings { app.store(), app.calendar().store,
          app.addressBook(), app.background(), app.desktop(), app.defaults(), app.paths().home }))
    , settings(std::make_unique<IntegrationsView>(
          IntegrationsView::Cards { *accounts, *controlChat, *assistant, *voice, *dictation, *calendarSettings, *sync,
              *web, *push, *toolServer, app.backups(), *doctor, *system, *localAccess },
          app.notifications()))
    , calendar(std::make_unique<CalendarView>(CalendarView::Surroundings {
          app.calendar().store, app.calendar().commands, app.calendar().prep, app.desktop(), app.notifications() }))
    , meetings(std::make_unique<UpcomingMeetings>(UpcomingMeetings::Surroundings {
          app.calendar().store, app.calendar().prep, app.desktop(), app.notifications() }))
    , calls(std::make_unique<CallsView>(app.calls().recording, app.calls().player))
    , callSettings(app.calls().settings)
    , panel(std::make_unique<CorvaneMenuBarView>(panelSurroundings(*this)))
    , today(std::make_unique<CorvaneMenuBarView>(panelSurroundings(*this)))
    , closingNotice(std::make_unique<ClosingNotice>(app.tray(), app.defaults()))
    , terminals(std::make_unique<TerminalsView>(TerminalsView::Surroundings {
          app.scheduler(), app.defaults(), app.desktop(), app.paths().home, app.userUmask(), &app.decoder() }))
    , lumo(std::make_unique<LumoHub>(workServices(app)))
    , gtm(std::make_unique<GTMHub>(workServices(app)))
    , cx(std::make_unique<CXHub>(workServices(app)))
    , ops(std::make_unique<OpsHub>(workServices(app)))
    , browser(std::make_unique<BrowserView>(devBrowser(app, *this)))
    , dev(std::make_unique<TerminalWorkspaceView>(devDesk(app, *this, WorkConsoleContext::dev())))
    , lumoConsole(std::make_unique<TerminalWorkspaceView>(devDesk(app, *this, WorkConsoleContext::lumo())))
    , lumoScreen(std::make_unique<LumoScreen>(*lumo, *lumoConsole))
{
    const auto showUnread = [this] {
        shell->hubs()->setUnreadTotal(app.engine().unreadTotal());
    };
    QObject::connect(&app.engine(), &EngineManager::unreadTotalChanged, shell.get(), showUnread);
    showUnread();
    QObject::connect(system.get(), &SystemSettings::changed, reply->composer()->hints(), &ComposerHints::changed);
    QObject::connect(
        notices.get(), &Notices::calendarRequested, shell.get(), [this] { shell->selectHub(u"calendar"_s); });
    commands.add(shellCommands(*shell, *inbox, commands));
    commands.add(approvalCommands());
    QList<QObject*> hubScreens;
    for (const Hub& hub : hubTable()) {
        const HubScreen made = hub.make(*this, hub);
        hubScreens.append(made.screen);
        commands.add(made.commands);
    }
    shell->setScreens(hubScreens);
    shell->setHelp(readHelp(app.paths().resources));
    terminals->setBrowser([this](const QString& address) { return showInBrowser(*this, address); });
    lumoConsole->inspector()->setCollapsed(true); // it stands beside the hub's own rail
    commands.add(callCommands(*calls));
    QObject::connect(calls.get(), &CallsView::shown, shell.get(), &AppShell::openCalls);
    commands.add(placeCommands(*shell));
    QList<HotKey*> hotKeys = app.calls().keys.all();
    hotKeys.prepend(&app.capture().hotKey());
    system->setHotKeys(hotKeys);
    inbox->palette()->setCommands(commands);
    const auto open = [this](const FoundRecord& record, const QString& words) {
        openFound(*this, record, words);
    };
    QObject::connect(inbox->palette(), &CommandPalette::foundChosen, shell.get(), open);
    QObject::connect(inbox->list()->results(), &SearchResults::recordChosen, shell.get(), open);
    const auto showUrgent = [this] {
        shell->hubs()->setBadge(u"ops"_s, ops->urgent(), u"urgent"_s);
    };
    QObject::connect(ops.get(), &OpsHub::changed, shell.get(), showUrgent);
    showUrgent();
    inbox->setDrafts(*drafts);
    panel->resources()->setMonitor(app.resources());
    today->resources()->setMonitor(app.resources());
    QObject::connect(&app, &CorvaneApp::settingsRequested, shell.get(), &AppShell::openSettings);
    const QList<std::pair<QString, TerminalsView*>> shells { { u"dev"_s, terminals.get() },
        { u"lumo"_s, lumo->shell()->shells()->view() }, { u"gtm"_s, gtm->shell()->shells()->view() },
        { u"cx"_s, cx->shell()->shells()->view() }, { u"ops"_s, ops->shell()->shells()->view() } };
    QObject::connect(&app, &CorvaneApp::quitRequested, shell.get(), [this, shells] {
        for (const auto& [hub, view] : shells) {
            if (!view->asksBeforeQuit())
                continue;
            shell->selectHub(hub);
            if (view == terminals.get())
                dev->setWorkspaceTab(DevWorkspaceTab::Terminal); // where the question is shown
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
    for (WorkModuleShell* const hub : { gtm->shell(), cx->shell() })
        QObject::connect(&app.engine(), &EngineManager::inboxRevisionChanged, hub, &WorkModuleShell::setStale);
}

Screens::~Screens() = default;

}
