#include "Calendar/CalendarView.h"
#include "Calls/CallServices.h"
#include "Desk/CorvaneMenuBarView.h"
#include "Foundation/Literals.h"
#include "Presentation/Commands.h"
#include "Shell/AppShell.h"
#include "Support/Await.h"
#include "UI/WindowTest.h"

#include <gtest/gtest.h>

namespace corvane {

namespace {

class CalendarWindow : public WindowTest {
protected:
    CalendarWindow()
    {
        showEmptyInbox();
        press(Qt::Key_7, Qt::ControlModifier);
    }

    bool awaitItem(const QString& name)
    {
        return await([&] {
            clock.advance(Milliseconds(250));
            rest();
            return findItem(name) != nullptr;
        });
    }
};

TEST_F(CalendarWindow, aPersonConnectsWritesAnEventAndPreparesForIt)
{
    click(u"calendar.connect"_s);
    ASSERT_TRUE(awaitItem(u"calendar.makeLocal"_s));
    click(u"calendar.makeLocal"_s);
    ASSERT_TRUE(awaitItem(u"calendar.new"_s));
    EXPECT_TRUE(await([&] {
        rest();
        return screens.calendar->canAdd();
    }));
    click(u"calendar.new"_s);
    EXPECT_TRUE(focusWithin(u"newEvent.title"_s));
    press(Qt::Key_Return);
    EXPECT_EQ(item(u"newEvent.message"_s)->property("text"), u"Give the event a title."_s);
    type(u"Call with Ana"_s);
    press(Qt::Key_Return);
    ASSERT_TRUE(awaitItem(u"calendar.event"_s));
    EXPECT_EQ(item(u"event.title"_s)->property("text"), u"Call with Ana"_s);

    model->willAnswer(u"Who: Ana"_s);
    click(u"event.prepare"_s);
    ASSERT_TRUE(awaitItem(u"prep.summary"_s));
    EXPECT_EQ(item(u"prep.summary"_s)->property("text"), u"Who: Ana"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(item(u"event.title"_s)->property("text"), u"Call with Ana"_s);
    press(Qt::Key_Escape);
    EXPECT_FALSE(findItem(u"event.title"_s));
    click(u"calendar.event"_s);
    press(Qt::Key_Right);
    EXPECT_FALSE(findItem(u"calendar.event"_s)) << "the next week";
    press(Qt::Key_T);
    press(Qt::Key_D);
    EXPECT_FALSE(screens.calendar->isWeek());
}

TEST_F(CalendarWindow, theDayStandsInTheWindowTooWithItsTabsUnderKeysAndInThePalette)
{
    press(Qt::Key_8, Qt::ControlModifier);
    EXPECT_TRUE(focusWithin(u"panel.line.approvals"_s));
    EXPECT_TRUE(screens.today->isVisible());
    press(Qt::Key_4);
    EXPECT_EQ(screens.today->tab(), u"calendar"_s);
    EXPECT_EQ(screens.panel->tab(), u"now"_s) << "the panel at the tray keeps its own";
    press(Qt::Key_5);
    click(u"panel.autoRecord"_s);
    ASSERT_TRUE(awaitItem(u"panel.requireApp"_s));
    click(u"panel.requireApp"_s);
    click(u"panel.systemAudio"_s);
    EXPECT_TRUE(calls.settings.requireMeetingApp() && calls.settings.systemAudio());
    press(Qt::Key_5, Qt::ControlModifier);
    EXPECT_FALSE(screens.today->isVisible()) << "nothing is read for it any more";
    screens.commands.run(u"today.ram"_s);
    rest();
    EXPECT_EQ(screens.shell->selectedNav(), u"today"_s);
    item(u"ram.processes"_s);
}

}

}
