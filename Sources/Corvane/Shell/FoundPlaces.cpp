#include "Shell/FoundPlaces.h"

#include "Calendar/CalendarView.h"
#include "Calls/CallsView.h"
#include "Inbox/InboxView.h"
#include "Shell/AppShell.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "Shell/WorkHubs.h"

namespace corvane {

namespace {

void openCall(Screens& screens, const QString& id, const QString& words)
{
    screens.calls->setQuery(words);
    screens.calls->select(id);
    screens.shell->openCalls();
}

/// A row of the person's contact pane.
void openInPane(Screens& screens, const FoundRecord& record, const QString& section)
{
    if (record.personId.isEmpty())
        return;
    screens.app.notifications().post(notifications::openConversation, record.personId);
    screens.inbox->person()->showInPane(section, record.id);
}

}

void openFound(Screens& screens, const FoundRecord& record, const QString& words)
{
    switch (record.group) {
    case SearchGroup::Calls:
    case SearchGroup::Transcripts:
        return openCall(screens, record.id, words);
    case SearchGroup::Notes:
        return openInPane(screens, record, u"notes"_s);
    case SearchGroup::Deals:
        if (record.personId.isEmpty())
            return screens.shell->selectHub(u"gtm"_s); // shows the pipeline of all deals
        return openInPane(screens, record, u"deals"_s);
    case SearchGroup::Tasks:
        return openInPane(screens, record, u"tasks"_s);
    case SearchGroup::Events:
        screens.shell->selectHub(u"calendar"_s);
        return screens.calendar->show(record.id, record.ts);
    case SearchGroup::Work:
        return openWork(screens, record);
    case SearchGroup::People:
    case SearchGroup::Messages:
        break;
    }
}

}
