#include "Desk/CorvaneMenuBarView.h"

#include "Approvals/ApprovalsStore.h"
#include "Approvals/ApprovalsView.h"
#include "Calendar/CalendarStore.h"
#include "Calendar/MeetingPrep.h"
#include "Calls/CallRecorder.h"
#include "Calls/CallSettings.h"
#include "Calls/CallSummarizer.h"
#include "Calls/MeetingAutoRecorder.h"
#include "Calls/RecordedCalls.h"
#include "Desk/CorvaneMenuBarLabel.h"
#include "Desk/QuickCapture.h"
#include "Desk/ResourceMonitor.h"
#include "Engines/AccountStore.h"
#include "Platform/Tray.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Work/WorkWrites.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/FakeCalendarSource.h"
#include "Support/FakeCallAudio.h"
#include "Support/FakeLanguageModel.h"
#include "Support/Print.h"
#include "Voice/SpeechModelStore.h"
#include "Web/SessionStore.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

namespace {

class PanelTray final : public Tray {
public:
    bool isShown() const override { return true; }
    void setUnread(int) override { }
    void setWaiting(int) override { }
    void setRecording(bool) override { }
    void setLabel(const QString& text) override { label = text; }
    void setMenu(const QList<Item>&) override { }

    QString label;
};

class Today : public testing::Test {
protected:
    Today()
    {
        for (const QString& name : { notifications::openSettings, notifications::openWorkConsole,
                 notifications::openConversation, notifications::openApprovals })
            m_observed.push_back(world.centre.observe(
                name, [this](const Notification& told) { posted.append(told.object.value_or(u"-"_s)); }));
    }

    QStringList lines() const
    {
        QStringList lines;
        for (const DayLine& line : view.today())
            lines.append(line.text);
        return lines;
    }

    QString item(const QString& title)
    {
        const auto saved = insertWorkItem(db, { u"ops"_s, {}, u"task"_s, title, {}, {}, {}, {} });
        db.watch().tell(StoreSubject::Work);
        return saved->id;
    }

    EngineWorld world;
    LocalDB& db = world.engines.db();
    FakeLumo lumo;
    SessionStore session { world.home.paths(), world.keychain, world.defaults, world.desktop, world.clock };
    AccountStore accounts { world.home.paths().applicationSupport };
    RecordedCalls recorded { db };
    ApprovalsStore store { world.centre, world.notifier, world.clock };
    DraftActions actions { store, world.engines, accounts };
    ApprovalsView approvals { store, actions, db, world.clock };
    FakeCalendarSource source;
    BackgroundQueue reading;
    CalendarStore calendar { { db, source, reading, world.clock, world.defaults, world.centre, [] {
                                  return QStringList(u"me@x.example"_s);
                              } } };
    MeetingPrep prep { { db, lumo } };
    UpcomingMeetings meetings { { calendar, prep, world.desktop, world.centre } };
    FakeCallAudio audio;
    FakeSleepInhibitor sleep;
    SpeechModelStore models { world.home.paths().applicationSupport, world.defaults, world.clock };
    CallSummarizer summarizer { lumo.ai, world.defaults };
    CallProcessor processor { db, summarizer,
        [](TranscriptionRequest) -> QCoro::Task<TranscriptionOutcome> {
            co_return std::unexpected(SpeechTranscriberError {});
        },
        models };
    CallRecorder recorder { { recorded, processor, world.microphone, audio, sleep, lumo.machine, world.defaults,
        world.clock, world.home.paths(), world.background } };
    FakeAudioPlayer mine;
    FakeAudioPlayer theirs;
    CallPlayer player { mine, theirs };
    RecordingView recording { recorder };
    CallsView calls { recording, player };
    MeetingAutoRecorder automatic { { calendar, recorder, [](const auto& answer) {
                                         answer({});
                                     } } };
    CallSettings callSettings { recorder, automatic };
    QuickCapture capture { db, nullptr, world.defaults };
    ResourceMonitor monitor { lumo.machine, world.background, world.clock };
    QStringList posted;
    CorvaneMenuBarView view { { world.engines, accounts, session, world.centre, lumo, &capture,
        { approvals, meetings, calls, callSettings } } };

private:
    std::vector<NotificationCentre::Observation> m_observed;
};

}

TEST_F(Today, theDayIsReadWhileItIsSeen)
{
    item(u"Pay"_s);
    EXPECT_EQ(lines(), QStringList()) << "nobody looks";
    view.setVisible(true);
    EXPECT_EQ(lines(),
        (QStringList { "0 waiting for your approval", "0 unread messages", "1 open work items",
            "No agent activity yet today", "0 engines running", "Quick capture — task or note" }));
    item(u"Sweep"_s);
    insertWorkMessage(db, { u"ops"_s, {}, u"Ana"_s, u"assistant"_s, u"message"_s, u"Done"_s });
    const qint64 now = world.clock.nowMs();
    db.run("INSERT INTO calendar_event(id, workspace_id, title, start_ms, end_ms, updated_at) "
           "VALUES('e','local','Weekly',?,?,0);",
        { now + 60'000, now + 120'000 });
    db.watch().tell(StoreSubject::Calendar);
    EXPECT_EQ(lines().value(2), "2 open work items");
    EXPECT_EQ(lines().value(3), "1 meeting today · Weekly");
    EXPECT_EQ(lines().value(4), "1 agent action today");
    view.setVisible(false);
    item(u"Later"_s);
    EXPECT_EQ(lines().value(2), "2 open work items");
    EXPECT_EQ(view.noticeText().section(' ', 0, 1) + view.noticeTitle(), "Sign in");
    session.setAuth("token", "d");
    EXPECT_EQ(view.noticeText(), "");
    session.setWebRejected(true);
    EXPECT_EQ(view.noticeTitle(), "Web session expired — sync is down");
}

TEST_F(Today, eachCountIsSaidInItsOwnWords)
{
    const qint64 now = world.clock.nowMs();
    const auto meet = [&](const char* id, const char* title, qint64 start) {
        db.run("INSERT INTO calendar_event(id, workspace_id, title, start_ms, end_ms, updated_at) "
               "VALUES(?,'local',?,?,?,0);",
            { QString::fromLatin1(id), QString::fromLatin1(title), start, start + 60'000 });
    };
    meet("past", "Past", now - 3 * 86'400'000);
    view.setVisible(true);
    EXPECT_EQ(lines().value(3), "No meetings today");
    meet("one", "Weekly", now + 120'000);
    meet("two", "Review", now + 60'000);
    for (const char* who : { "Ana", "Ben" })
        insertWorkMessage(db, { u"ops"_s, {}, QString::fromLatin1(who), u"assistant"_s, u"message"_s, u"Done"_s });
    db.run(R"(INSERT INTO "update"(id, body, created_at) VALUES('u','Kiln fired',?);)", { isoTime(now) });
    const Account account = accounts.add("Main", Channel::WhatsApp);
    world.engines.setAccounts(&accounts);
    world.launcher.expect(FakeLauncher::stays());
    world.engines.start(account);
    view.setVisible(true);
    EXPECT_EQ(lines(),
        (QStringList { "0 waiting for your approval", "0 unread messages", "0 open work items",
            "2 meetings today · Review", "2 agent actions today", "Kiln fired", "1 engine running",
            "Quick capture — task or note" }));
    QStringList actions;
    for (const DayLine& line : view.today())
        actions.append(line.icon + u' ' + line.action);
    EXPECT_EQ(actions,
        (QStringList { "approvals approvals", "hub-inbox inbox", "hub-ops ops", "view-calendar calendar", "hub-dev dev",
            "note ops", "link settings", "list-add capture" }));
    const QString conversation = ensureConversation(db, "WHATSAPP", "main", "49171@s.whatsapp.net", "Ana Ruiz", now);
    raiseUnread(db, conversation);
    world.engines.refreshUnreadBadge();
    EXPECT_EQ(lines().value(1), "1 unread messages") << "at once";
    EXPECT_EQ(view.glance().size(), 1);
    session.setAuth("token", "d");
    session.setWebRejected(true);
    EXPECT_EQ(view.noticeText(), "LinkedIn/web inbox can't mirror until you sign in again.");
}

TEST_F(Today, aTabIsReadWhenItIsChosen)
{
    view.setVisible(true);
    const auto tabs = [&] {
        QStringList labels;
        for (const TabItem& tab : view.tabs())
            labels.append(tab.id + u' ' + tab.label + u' ' + QString::number(tab.count));
        return labels.join(u',');
    };
    EXPECT_EQ(tabs(), "now Now 0,approvals Approvals 0,calendar Calendar 0,calls Calls 0");
    QStringList every;
    for (const TabItem& tab : CorvaneMenuBarView::everyTab())
        every.append(tab.label);
    EXPECT_EQ(every, QStringList({ "Now", "Approvals", "RAM", "Calendar", "Calls" }));
    const QSignalSpy changes(&view, &CorvaneMenuBarView::tabChanged);
    view.setTab(u"now"_s);
    view.setTab(u"nowhere"_s);
    EXPECT_EQ(changes.size(), 0);
    db.run("INSERT INTO call_recording(id, workspace_id, title, started_at, created_at, updated_at) "
           "VALUES('c','local','Weekly',?,0,0);",
        { world.clock.nowMs() });
    EXPECT_EQ(calls.rows()->rowCount(), 0);
    view.setTab(u"calls"_s);
    EXPECT_EQ(changes.size(), 1);
    EXPECT_EQ(calls.rows()->rowCount(), 1);
    item(u"Later"_s);
    EXPECT_EQ(lines().value(2), "0 open work items") << "the day is not in sight";
    view.setTab(u"now"_s);
    EXPECT_EQ(lines().value(2), "1 open work items");
}

TEST_F(Today, aLineLeadsToItsSubject)
{
    const QSignalSpy window(&view, &CorvaneMenuBarView::windowRequested);
    view.setVisible(true);
    for (const char* action : { "inbox", "settings", "window" })
        view.run(QString::fromLatin1(action));
    EXPECT_EQ(posted, (QStringList { "inbox", "-" }));
    EXPECT_EQ(window.size(), 3);
    view.run(u"capture"_s);
    EXPECT_TRUE(capture.isVisible());
    view.run(u"signIn"_s);
    EXPECT_EQ(world.desktop.opened.size(), 1);
    view.run(u"calendar"_s);
    EXPECT_EQ(view.tab(), "calendar");
    view.setTab(u"ram"_s);
    EXPECT_EQ(view.tab(), "calendar") << "not without a monitor";
    EXPECT_FALSE(view.hasTab(u"ram"_s));
    view.resources()->setMonitor(monitor);
    view.setTab(u"ram"_s);
    EXPECT_EQ(view.tab() + QString::number(view.tabs().size()), "ram5");
    EXPECT_EQ(window.size(), 3) << "the panel shows these itself";
    view.openConversation({});
    EXPECT_EQ(posted.size(), 2);
    view.openConversation(u"ct:1"_s);
    view.reviewAll();
    EXPECT_EQ(posted.mid(2), (QStringList { "ct:1", "-" }));
    EXPECT_EQ(window.size(), 5);
    const QSignalSpy shown(&calls, &CallsView::shown);
    view.openCall(u"c"_s);
    EXPECT_EQ(shown.size() + window.size(), 7);
    recording.start();
    EXPECT_EQ(window.size(), 7) << "the window asks for the consent";
    view.setVisible(false);
    recording.start();
    EXPECT_EQ(window.size(), 7);
}

TEST_F(Today, aReplyIsDraftedFromTheGlanceAndItsWordGoesWithThePanel)
{
    ensureConversation(db, "WHATSAPP", "main", "49171@s.whatsapp.net", "Ana Ruiz", 1);
    view.setVisible(true);
    ASSERT_EQ(view.glance().size(), 1);
    EXPECT_EQ(view.glance().first().title + view.glance().first().draftText, "Ana Ruiz");
    view.draftReply(1);
    view.draftReply(-1);
    EXPECT_EQ(view.glance().first().draftText, "");
    view.draftReply(0);
    EXPECT_EQ(view.glance().first().draftText, "No text messages in this thread to reply to.");
    view.setVisible(false);
    view.setVisible(true);
    EXPECT_EQ(view.glance().first().draftText, "");
}

TEST_F(Today, thePanelNamesAMeetingOfTheNextHour)
{
    PanelTray tray;
    CorvaneMenuBarLabel label(calendar, monitor, tray, world.clock, nullptr);
    EXPECT_EQ(tray.label, "");
    CalendarEntry entry;
    entry.calendarId = "work";
    entry.uid = entry.title = "Weekly";
    entry.startMs = world.clock.nowMs() + 61 * 60'000;
    entry.endMs = entry.startMs + 1'800'000;
    entry.people = { { "Me", "me@x.example" }, { "Ana", "ana@x.example" } };
    source.set({ { { .id = "work", .title = "Work" } }, { entry }, {} });
    calendar.requestAccess();
    calendar.refresh();
    ASSERT_TRUE(await([&] { return calendar.events().size() == 1; }));
    EXPECT_EQ(tray.label, "") << "more than an hour";
    world.clock.advance(seconds(75));
    EXPECT_TRUE(tray.label.startsWith("Weekly ")) << qPrintable(tray.label);
}

}
