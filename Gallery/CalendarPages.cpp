#include "Calendar/CalendarView.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Calendar/CalendarServices.h"
#include "Presentation/Commands.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"

#include <QCoreApplication>

namespace corvane {

void drawCalendar(Gallery& gallery)
{
    CalendarView& calendar = *gallery.screens().calendar;
    gallery.screens().shell->selectHub(u"calendar"_s);
    gallery.save(u"calendar-not-connected"_s);
    gallery.app().calendar().store.bootstrap();
    while (calendar.tiles()->layout().blocks.isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    gallery.save(u"calendar-week"_s);
    calendar.selectNext(1);
    gallery.save(u"calendar-event"_s);
    gallery.model().says
        = u"Who: Megan Price, who keeps the studio open.\nContext: the second firing is done.\nOpen threads: four of "
          u"the blue ones were sold for cash.\nSuggested goal: choose the bowls for the shop.\nOne risk: nothing is "
          u"agreed for Thursday, so draft a follow-up."_s;
    calendar.prepare(calendar.selected());
    gallery.save(u"calendar-brief"_s);
    gallery.screens().panel->setTab(u"calendar"_s);
    gallery.savePanel(u"panel-brief"_s);
    calendar.prep()->close();
    gallery.savePanel(u"panel-calendar"_s);
    gallery.screens().panel->setTab(u"now"_s);
    calendar.select({});
    calendar.setWeek(false);
    gallery.save(u"calendar-day"_s);
    calendar.setWeek(true);
    gallery.screens().settings->setSection(u"calendar"_s);
    gallery.screens().shell->openSettings();
    gallery.save(u"settings-calendar"_s);
    gallery.screens().settings->setSection(u"accounts"_s);
    gallery.screens().shell->closeSettings();
    Q_EMIT gallery.screens().commands.pageAsked(u"newEvent"_s);
    gallery.save(u"calendar-new-event"_s);
    gallery.screens().shell->selectHub(u"inbox"_s);
}

}
