#pragma once

#include "Approvals/ApprovalsView.h"
#include "Approvals/PendingDraftsView.h"
#include "Calendar/CalendarSettings.h"
#include "Calendar/CalendarView.h"
#include "Calendar/UpcomingMeetings.h"
#include "Calls/CallSettings.h"
#include "Calls/CallsView.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Inbox/List/InboxView.h"
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

namespace corvane {

class CorvaneApp;
class Desktop;
class QuickCapture;
struct AIServices;
struct CalendarServices;
struct CallServices;

/// The view models of the main window, wired to each other. They live as long as the program, so that a window
/// that is closed and opened again shows what it showed.
class Screens {
public:
    /// What they stand on; all of it outlives them.
    struct Surroundings {
        EngineManager& engine;
        ApprovalsStore& approvals;
        AccountStore& accounts;
        SessionStore& session;
        Keychain& keychain;
        UserDefaults& defaults;
        NotificationCentre& notifications;
        Scheduler& scheduler;
        Desktop& desktop;
        Microphone& microphone;
        AudioPlayer& player;
        const AppPaths& paths;
        AIServices& ai;
        TranslationService& translations;
        VoiceServices& voice;
        StoreRecovery& recovery;
        CalendarServices& calendar;
        CallServices& calls;
        ProcessLauncher& launcher;
        const Tray* tray = nullptr;
        std::optional<mode_t> userUmask {}; ///< of programs that the user starts; none: that of this process
        QuickCapture* capture = nullptr;
    };

    explicit Screens(const Surroundings& at);
    explicit Screens(CorvaneApp& app);

    const Surroundings at; ///< for the factories of the hubs

    Commands commands;
    Appearance appearance;
    ContentView content;
    LoginWallView wall;
    Notices notices;
    StoreRecovery& recovery;
    AppShell shell;
    ProfileMenu profile;
    InboxView inbox;
    DraftActions draftActions;
    ApprovalsView approvals;
    PendingDraftsView drafts;
    IntegrationsView settings;
    CalendarView calendar;
    CalendarSettings calendarSettings;
    UpcomingMeetings meetings;
    CallsView calls;
    CallSettings& callSettings;
    CorvaneMenuBarView panel;
    ClosingNotice closingNotice;
    TerminalsView terminals;
};

}
