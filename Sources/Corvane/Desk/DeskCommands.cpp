#include "Desk/DeskCommands.h"

#include "Desk/CorvaneMenuBarView.h"
#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"

namespace corvane {

QList<Command> todayCommands(CorvaneMenuBarView& today, NotificationCentre& notifications)
{
    QList<Command> commands { { .id = u"todayTab"_s,
        .label = u"Now, Approvals, RAM, Calendar, Calls"_s,
        .keys = u"1 … 5"_s,
        .place = { u"In Today"_s, 1 } } };
    for (const TabItem& tab : CorvaneMenuBarView::everyTab())
        commands.append({ .id = u"today."_s + tab.id,
            .action = u"Today: "_s + tab.label,
            .canRun = [&today, id = tab.id] { return today.hasTab(id); },
            .run =
                [&today, &notifications, id = tab.id] {
                    today.setTab(id);
                    notifications.post(notifications::openWorkConsole, u"today"_s);
                } });
    return commands;
}

}
