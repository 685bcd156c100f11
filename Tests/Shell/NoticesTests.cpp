#include "Calendar/CalendarServices.h"
#include "Calls/CallServices.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Shell/AppShell.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Notices.h"
#include "Shell/Screens.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreHealth.h"
#include "Support/AccountNamed.h"
#include "Support/Await.h"
#include "Support/FakeCalendarSource.h"
#include "Support/FakeMachine.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"

#include <QDir>
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <sqlite3.h>

using namespace corvane;

namespace {

class MenuTray final : public Tray {
public:
    bool isShown() const override { return true; }
    void setUnread(int count) override { unread = count; }
    void setWaiting(int) override { }
    void setRecording(bool recording) override { isRecording = recording; }
    void setLabel(const QString&) override { }
    void setMenu(const QList<Item>& items) override
    {
        labels.clear();
        for (const Item& item : items)
            labels.append(item.label);
    }

    QStringList labels;
    int unread = 0;
    bool isRecording = false;
};

class NoticesTest : public testing::Test {
protected:
    NoticesTest()
    {
        Account account = accountNamed(u"mail"_s, Channel::Email);
        account.email = u"me@x.example"_s;
        home.write("share/Corvane/accounts.json", encodeAccounts({ account }));
        machine.tray = std::make_unique<MenuTray>();
        tray = dynamic_cast<MenuTray*>(machine.tray.get());
        played<FakeLanguageModel>(machine.languageModel).setUnavailable(u"no server"_s);
    }

    void start()
    {
        app = std::make_unique<CorvaneApp>(home.paths(), clock, std::move(machine));
        screens = std::make_unique<Screens>(*app);
    }

    QStringList shown() const
    {
        QStringList lines;
        for (const Notice& notice : screens->notices->items()) {
            QStringList parts { notice.id, notice.tone, notice.text };
            for (const Choice& action : notice.actions)
                parts.append(action.id + u'=' + action.label);
            lines.append(parts.join(u'|'));
        }
        return lines;
    }

    TemporaryHome home;
    VirtualScheduler clock;
    Machine machine = fakeMachine(home.paths(), std::make_unique<FakeLauncher>(clock));
    MenuTray* tray = nullptr;
    std::unique_ptr<CorvaneApp> app;
    std::unique_ptr<Screens> screens;
};

}

TEST_F(NoticesTest, aLockedKeyringIsTheNoticeOfTheAccountsThatWaitForIt)
{
    auto& keyring = played<FakeKeyring>(machine.keyring);
    keyring.failure = Keyring::Failure::Locked;
    start();
    EXPECT_EQ(shown(),
        QStringList("keyring|warn|The desktop's keyring is locked. Accounts wait for their passwords.|"
                    "unlock=Unlock…"));
    keyring.failure.reset();
    const int asked = keyring.asked;
    const QSignalSpy changes(screens->notices.get(), &Notices::changed);
    screens->notices->perform(u"keyring"_s, u"unlock"_s);
    EXPECT_GT(keyring.asked, asked);
    EXPECT_GT(changes.size(), 0);
    EXPECT_EQ(shown(), QStringList());
}

TEST_F(NoticesTest, aLockedKeyringThatNobodyWaitsForIsNone)
{
    played<FakeKeyring>(machine.keyring).failure = Keyring::Failure::Locked;
    home.write("share/Corvane/accounts.json", "[]");
    start();
    EXPECT_EQ(shown(), QStringList());
}

TEST_F(NoticesTest, theNextMeetingIsPreparedOrLetGo)
{
    auto owned = std::make_unique<FakeCalendarSource>();
    CalendarEntry entry;
    entry.calendarId = u"work"_s;
    entry.uid = entry.title = u"Weekly"_s;
    entry.startMs = clock.nowMs() + 300'000;
    entry.endMs = entry.startMs + 1'800'000;
    entry.people = { { u"Me"_s, u"me@x.example"_s }, { u"Ana"_s, u"ana@x.example"_s } };
    CalendarEntry next = entry;
    next.uid = next.title = u"Review"_s;
    next.startMs += 60'000;
    owned->set({ { { .id = u"work"_s, .title = u"Work"_s } }, { entry, next }, {} });
    machine.calendars = std::move(owned);
    start();
    CalendarStore& store = app->calendar().store;
    store.requestAccess();
    store.refresh();
    ASSERT_TRUE(await([&] { return store.events().size() == 2; }));
    ASSERT_EQ(shown().size(), 1);
    EXPECT_TRUE(shown().first().startsWith(u"meeting|plain|Ready for the next meeting: Weekly, "_s));
    EXPECT_TRUE(shown().first().endsWith(u"|prepare=Open brief|dismiss=Dismiss"_s));
    screens->shell->selectHub(u"cx"_s);
    screens->notices->perform(u"meeting"_s, u"prepare"_s);
    EXPECT_EQ(screens->shell->selectedNav(), "calendar");
    EXPECT_EQ(app->calendar().prep.title(), "Weekly");
    ASSERT_EQ(shown().size(), 1);
    EXPECT_TRUE(shown().first().contains(u"next meeting: Review, "_s));
    screens->shell->selectHub(u"cx"_s);
    screens->notices->perform(u"meeting"_s, u"dismiss"_s);
    EXPECT_EQ(screens->shell->selectedNav() + app->calendar().prep.title(), "cxWeekly");
    EXPECT_EQ(shown(), QStringList());
}

TEST_F(NoticesTest, anEventThatAnAgentAddedIsTakenBackOrKept)
{
    QDir().mkpath(QFileInfo(home.paths().applicationSupport).path() + u"/calendars/work"_s);
    start();
    app->defaults().setBoolean(u"nimb.calendarConnected"_s, true);
    app->calendar().store.bootstrap();
    ASSERT_TRUE(await([&] { return !app->calendar().store.calendars().isEmpty(); }));
    const auto ask = [&](const QString& id) {
        app->db().run("INSERT INTO calendar_command(id, workspace_id, title, start_ms, end_ms, notes, calendar, "
                      "status, created_at) VALUES(?,'local','Lunch',?,?,'','','pending',0);",
            { id, clock.nowMs() + 86'400'000, clock.nowMs() + 90'000'000 });
        app->calendar().commands.processPendingCommands();
        return await([&] { return !shown().isEmpty(); });
    };
    const auto error = [&](const QString& id) {
        return app->db().scalar(
            "SELECT status || '|' || coalesce(error, '') FROM calendar_command WHERE id=?;", { id });
    };
    ASSERT_TRUE(ask(u"c1"_s));
    EXPECT_TRUE(shown().first().startsWith(u"event|plain|"_s) && shown().first().contains(u"Lunch"_s));
    EXPECT_TRUE(shown().first().endsWith(u"|undo=Undo|dismiss=Dismiss"_s));
    screens->notices->perform(u"event"_s, u"undo"_s);
    EXPECT_EQ(shown(), QStringList());
    EXPECT_TRUE(await([&] { return error(u"c1"_s) == u"failed|Undone."; }));
    ASSERT_TRUE(ask(u"c2"_s));
    screens->notices->perform(u"event"_s, u"dismiss"_s);
    EXPECT_EQ(shown(), QStringList());
    EXPECT_EQ(error(u"c2"_s), "done|");
}

TEST_F(NoticesTest, theDatabasesTroubleStandsFirstAlsoInTheTraysMenu)
{
    start();
    const QStringList menu { "Open Corvane", "Approvals", "Record a Call", "Capture a Task", "Settings", "", "Quit" };
    EXPECT_EQ(tray->labels, menu);
    app->db().health().note(SQLITE_READONLY);
    clock.advance(Milliseconds(1));
    const QString waits = u" New messages wait until then, and nothing is lost."_s;
    EXPECT_EQ(shown(),
        QStringList(u"store|bad|The database is read-only. Make %1 and its folder writable for you.%2"_s.arg(
            home.paths().database(), waits)));
    EXPECT_EQ(tray->labels, QStringList({ "The database is read-only", "" }) + menu);
    EXPECT_EQ(describe(StoreFault::InputOutput, home.paths()),
        u"The disk does not accept writes to %1. Check that it is connected and working.%2"_s.arg(
            home.paths().applicationSupport, waits));
    EXPECT_EQ(describe(StoreFault::Full, home.paths()),
        u"The disk is full. Make room on the disk that holds %1.%2"_s.arg(home.paths().applicationSupport, waits));
    EXPECT_EQ(describe(StoreFault::Damaged, home.paths()), "");
    clock.advance(seconds(10));
    EXPECT_EQ(shown(), QStringList());
    EXPECT_EQ(tray->labels, menu);
}

TEST_F(NoticesTest, theTraysMenuLeadsWithTheRunningRecording)
{
    auto& microphone = played<FakeMicrophone>(machine.microphone);
    auto& audio = played<FakeCallAudio>(machine.callAudio);
    start();
    const QStringList before = tray->labels;
    const QSignalSpy windows(app.get(), &CorvaneApp::windowRequested);
    const QSignalSpy panels(app.get(), &CorvaneApp::panelRequested);
    Q_EMIT tray->itemChosen(u"trouble"_s);
    EXPECT_EQ(windows.size(), 1) << "the window explains it";
    Q_EMIT tray->activated({ 1, 2 });
    EXPECT_EQ(panels.size(), 1);
    app->calls().recorder.start(u"Weekly"_s, {});
    microphone.answer(MicrophoneAccess::Granted);
    QStringList recording { "Stop Recording (0 min)", "Mark This Moment", "" };
    EXPECT_TRUE(tray->isRecording);
    EXPECT_EQ(tray->labels,
        recording + QStringList({ "Open Corvane", "Approvals", "Capture a Task", "Settings", "", "Quit" }));
    audio.microphone->seconds = 125;
    clock.advance(seconds(1));
    EXPECT_EQ(tray->labels.first(), "Stop Recording (2 min)");
    app->calls().recorder.stop();
    EXPECT_FALSE(tray->isRecording);
    EXPECT_EQ(tray->labels, before);
    app->quit();
    Q_EMIT tray->activated({ 1, 2 });
    Q_EMIT tray->itemChosen(u"openWindow"_s);
    EXPECT_EQ(panels.size() + windows.size(), 2) << "it ends";
}
