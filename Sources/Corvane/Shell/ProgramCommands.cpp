#include "Shell/ProgramCommands.h"

#include "Calls/CallServices.h"
#include "Desk/QuickCapture.h"
#include "Foundation/Literals.h"
#include "Shell/CorvaneApp.h"
#include "Web/SessionStore.h"

namespace corvane {

QList<Command> programCommands(CorvaneApp& app)
{
    const auto unlessQuitting = [&app](const std::function<void()>& run) {
        return [&app, run] {
            if (!app.isQuitting())
                run();
        };
    };
    const auto inFront = [&app, unlessQuitting](const std::function<void()>& run) {
        return unlessQuitting([&app, run] {
            Q_EMIT app.windowRequested();
            run();
        });
    };
    return {
        { .id = u"openWindow"_s, .run = inFront([] {}), .tray = u"Open Corvane"_s },
        { .id = u"openSettings"_s,
            .keys = u"Ctrl+,"_s,
            .action = u"Open Settings"_s,
            .run = inFront([&app] { Q_EMIT app.settingsRequested(); }),
            .menu = u"Open Settings"_s,
            .tray = u"Settings"_s },
        { .id = u"openApprovals"_s,
            .keys = u"Ctrl+Shift+A"_s,
            .action = u"Open Approvals"_s,
            .run = inFront([&app] { app.notifications().post(notifications::openApprovals); }),
            .tray = u"Approvals"_s },
        { .id = recordCommand,
            .run = unlessQuitting([&app] { app.calls().recording.toggle(); }),
            .tray = u"Record a Call"_s },
        { .id = markCommand, .run = [&app] { app.calls().recording.mark(); }, .tray = u"Mark This Moment"_s },
        { .id = captureCommand,
            .action = u"Capture a task or a note"_s,
            .run = unlessQuitting([&app] { app.capture().toggle(); }),
            .tray = u"Capture a Task"_s },
        { .id = u"signIn"_s, .run = [&app] { app.session().startSignIn(); }, .menu = u"Sign in to Nimb"_s },
        { .id = u"signOut"_s, .run = [&app] { app.session().signOut(); }, .menu = u"Sign Out"_s },
        { .id = u"quit"_s,
            .label = u"Quit"_s,
            .keys = u"Ctrl+Q"_s,
            .place = { u"Everywhere"_s, 0 },
            .run = [&app] { Q_EMIT app.quitRequested(); },
            .menu = u"Quit Corvane"_s,
            .tray = u"Quit"_s },
    };
}

}
