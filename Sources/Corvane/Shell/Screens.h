#pragma once

#include "Approvals/ApprovalsView.h"
#include "Approvals/PendingDraftsView.h"
#include "Calendar/CalendarSettings.h"
#include "Calendar/CalendarView.h"
#include "Calendar/UpcomingMeetings.h"
#include "Calls/CallSettings.h"
#include "Calls/CallsView.h"
#include "Care/Doctor/DoctorView.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Dev/LumoScreen.h"
#include "Inbox/InboxView.h"
#include "Presentation/Commands.h"
#include "Settings/Appearance.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Shell/ClosingNotice.h"
#include "Shell/ContentView.h"
#include "Shell/LoginWallView.h"
#include "Shell/Notices.h"
#include "Shell/ProfileMenu.h"
#include "Shell/StoreRecovery.h"
#include "Terminals/TerminalsView.h"
#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/OpsHub.h"

namespace corvane {

class CorvaneApp;

/// The view models of the main window, connected to each other. They live as long as the program, so that a reopened
/// window shows the same state.
class Screens {
public:
    /// `root` outlives them.
    explicit Screens(CorvaneApp& root);

    CorvaneApp& app; ///< for the factories of the hubs

    Commands& commands;
    Appearance appearance;
    ContentView content;
    LoginWallView wall;
    Notices notices;
    StoreRecovery& recovery;
    AppShell shell;
    ProfileMenu profile;
    Reply reply;
    InboxView inbox;
    DraftActions draftActions;
    ApprovalsView approvals;
    PendingDraftsView drafts;
    AccountsView accounts;
    ControlChatSettings controlChat;
    AssistantSettings assistant;
    VoiceSettings voice;
    DictationSettings dictation;
    CalendarSettings calendarSettings;
    SyncSettings sync;
    WebSettings web;
    PushSettings push;
    ToolServerCard toolServer;
    DoctorView doctor;
    SystemSettings system;
    LocalAccess localAccess;
    IntegrationsView settings;
    CalendarView calendar;
    UpcomingMeetings meetings;
    CallsView calls;
    CallSettings& callSettings;
    CorvaneMenuBarView panel;
    CorvaneMenuBarView today; ///< the same in the main window
    ClosingNotice closingNotice;
    TerminalsView terminals;
    LumoHub lumo;
    GTMHub gtm;
    CXHub cx;
    OpsHub ops;
    BrowserView browser;
    TerminalWorkspaceView dev;
    TerminalWorkspaceView lumoConsole;
    LumoScreen lumoScreen;
};

}
