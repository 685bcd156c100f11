#pragma once

#include <memory>

namespace corvane {

class AccountsView;
class AppShell;
class Appearance;
class ApprovalsView;
class AssistantSettings;
class BrowserView;
class CXHub;
class CalendarSettings;
class CalendarView;
class CallSettings;
class CallsView;
class ClosingNotice;
class Commands;
class ContentView;
class ControlChatSettings;
class CorvaneApp;
class CorvaneMenuBarView;
class DictationSettings;
class DoctorView;
class DraftActions;
class GTMHub;
class InboxView;
class IntegrationsView;
class LocalAccess;
class LoginWallView;
class LumoHub;
class LumoScreen;
class Notices;
class OpsHub;
class PendingDraftsView;
class ProfileMenu;
class PushSettings;
class Reply;
class StoreRecovery;
class SyncSettings;
class SystemSettings;
class TerminalWorkspaceView;
class TerminalsView;
class ToolServerCard;
class UpcomingMeetings;
class VoiceSettings;
class WebSettings;

/// The view models of the main window, connected to each other. They live as long as the program, so that a reopened
/// window shows the same state.
class Screens {
public:
    /// `root` outlives them.
    explicit Screens(CorvaneApp& root);
    ~Screens();
    Screens(const Screens&) = delete;
    Screens& operator=(const Screens&) = delete;

    CorvaneApp& app; ///< for the factories of the hubs

    Commands& commands;
    const std::unique_ptr<Appearance> appearance;
    const std::unique_ptr<ContentView> content;
    const std::unique_ptr<LoginWallView> wall;
    const std::unique_ptr<Notices> notices;
    StoreRecovery& recovery;
    const std::unique_ptr<AppShell> shell;
    const std::unique_ptr<ProfileMenu> profile;
    const std::unique_ptr<Reply> reply;
    const std::unique_ptr<InboxView> inbox;
    const std::unique_ptr<DraftActions> draftActions;
    const std::unique_ptr<ApprovalsView> approvals;
    const std::unique_ptr<PendingDraftsView> drafts;
    const std::unique_ptr<AccountsView> accounts;
    const std::unique_ptr<ControlChatSettings> controlChat;
    const std::unique_ptr<AssistantSettings> assistant;
    const std::unique_ptr<VoiceSettings> voice;
    const std::unique_ptr<DictationSettings> dictation;
    const std::unique_ptr<CalendarSettings> calendarSettings;
    const std::unique_ptr<SyncSettings> sync;
    const std::unique_ptr<WebSettings> web;
    const std::unique_ptr<PushSettings> push;
    const std::unique_ptr<ToolServerCard> toolServer;
    const std::unique_ptr<DoctorView> doctor;
    const std::unique_ptr<SystemSettings> system;
    const std::unique_ptr<LocalAccess> localAccess;
    const std::unique_ptr<IntegrationsView> settings;
    const std::unique_ptr<CalendarView> calendar;
    const std::unique_ptr<UpcomingMeetings> meetings;
    const std::unique_ptr<CallsView> calls;
    CallSettings& callSettings;
    const std::unique_ptr<CorvaneMenuBarView> panel;
    const std::unique_ptr<CorvaneMenuBarView> today; ///< the same in the main window
    const std::unique_ptr<ClosingNotice> closingNotice;
    const std::unique_ptr<TerminalsView> terminals;
    const std::unique_ptr<LumoHub> lumo;
    const std::unique_ptr<GTMHub> gtm;
    const std::unique_ptr<CXHub> cx;
    const std::unique_ptr<OpsHub> ops;
    const std::unique_ptr<BrowserView> browser;
    const std::unique_ptr<TerminalWorkspaceView> dev;
    const std::unique_ptr<TerminalWorkspaceView> lumoConsole;
    const std::unique_ptr<LumoScreen> lumoScreen;
};

}
