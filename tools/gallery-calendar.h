#pragma once

// The pictures of the calendar.

#include "Calendar/CalendarServices.h"
#include "Shell/Screens.h"
#include "gallery-machine.h"

#include <QCoreApplication>

namespace corvane {

using namespace Qt::StringLiterals;

/// `save` draws what is on the screen, or the panel where the name begins with it.
template <typename Save> void drawCalendar(Screens& screens, PictureModel& model, Save save)
{
    CalendarView& calendar = screens.calendar;
    screens.shell.selectHub(u"calendar"_s);
    save(u"calendar-not-connected"_s);
    screens.at.calendar.store.bootstrap();
    while (calendar.blocks().isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    save(u"calendar-week"_s);
    calendar.selectNext(1);
    save(u"calendar-event"_s);
    model.says
        = u"Who: Megan Price, who keeps the studio open.\nContext: the second firing is done.\nOpen threads: four of "
          u"the blue ones were sold for cash.\nSuggested goal: choose the bowls for the shop.\nOne risk: nothing is "
          u"agreed for Thursday, so draft a follow-up."_s;
    calendar.prepare(calendar.selected());
    save(u"calendar-brief"_s);
    screens.panel.setTab(u"calendar"_s);
    save(u"panel-brief"_s);
    calendar.prep()->close();
    save(u"panel-calendar"_s);
    screens.panel.setTab(u"now"_s);
    calendar.select({});
    calendar.setWeek(false);
    save(u"calendar-day"_s);
    calendar.setWeek(true);
    screens.settings.setSection(u"calendar"_s);
    screens.shell.openSettings();
    save(u"settings-calendar"_s);
    screens.settings.setSection(u"accounts"_s);
    screens.shell.closeSettings();
    Q_EMIT screens.commands.pageAsked(u"newEvent"_s);
    save(u"calendar-new-event"_s);
    screens.shell.selectHub(u"inbox"_s);
}

}
