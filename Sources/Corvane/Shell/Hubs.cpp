#include "Shell/Hubs.h"

#include "Browser/BrowserCommands.h"
#include "Calendar/CalendarKeys.h"
#include "Calendar/CalendarView.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Desk/DeskCommands.h"
#include "Dev/LumoScreen.h"
#include "Dev/TerminalWorkspaceView.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxCommands.h"
#include "Inbox/InboxView.h"
#include "Shell/CorvaneApp.h"
#include "Shell/DevHub.h"
#include "Shell/Screens.h"
#include "Shell/WorkHubs.h"
#include "Terminals/TerminalCommands.h"
#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/OpsHub.h"

#include <algorithm>

namespace corvane {

namespace {

QUrl page(const QString& file)
{
    return QUrl(u"qrc:/qt/qml/Corvane/"_s + file);
}

HubScreen lumo(Screens& screens, const Hub&)
{
    return { screens.lumoScreen.get() };
}

HubScreen gtm(Screens& screens, const Hub&)
{
    return { screens.gtm.get() };
}

HubScreen cx(Screens& screens, const Hub&)
{
    return { screens.cx.get() };
}

HubScreen ops(Screens& screens, const Hub&)
{
    return { screens.ops.get(), workCommands() };
}

HubScreen inbox(Screens& screens, const Hub&)
{
    return { screens.inbox.get(), inboxCommands(*screens.inbox) };
}

HubScreen dev(Screens& screens, const Hub&)
{
    return { screens.dev.get(), terminalCommands() + browserCommands() + devCommands(screens) };
}

HubScreen calendar(Screens& screens, const Hub&)
{
    return { screens.calendar.get(), calendarCommands() };
}

HubScreen today(Screens& screens, const Hub&)
{
    return { screens.today.get(), todayCommands(*screens.today, screens.app.notifications()) };
}

}

const QList<Hub>& hubTable()
{
    static const QList<Hub> hubs {
        { u"lumo"_s, u"Lumo"_s, u"hub-lumo"_s, page(u"Dev/LumoHubPage.qml"_s), lumo },
        { u"gtm"_s, u"GTM"_s, u"hub-gtm"_s, page(u"Work/GtmPage.qml"_s), gtm },
        { u"cx"_s, u"CX"_s, u"hub-cx"_s, page(u"Work/CxPage.qml"_s), cx },
        { u"ops"_s, u"Ops"_s, u"hub-ops"_s, page(u"Work/OpsPage.qml"_s), ops },
        { u"inbox"_s, u"Inbox"_s, u"hub-inbox"_s, page(u"Inbox/InboxPage.qml"_s), inbox },
        { u"dev"_s, u"Dev"_s, u"hub-dev"_s, page(u"Dev/DevPage.qml"_s), dev },
        { u"calendar"_s, u"Calendar"_s, u"view-calendar"_s, page(u"Calendar/CalendarPage.qml"_s), calendar },
        { u"today"_s, u"Today"_s, u"view-list"_s, page(u"Panel/TodayPage.qml"_s), today },
    };
    return hubs;
}

int hubIndex(const QString& id)
{
    const auto found = std::ranges::find(hubTable(), id, &Hub::id);
    return found == hubTable().end() ? -1 : int(found - hubTable().begin());
}

QString hubShortcut(int index)
{
    return u"Ctrl+%1"_s.arg(index + 1);
}

}
