#include "Approvals/ApprovalsStore.h"
#include "Calls/CallServices.h"
#include "Desk/QuickCapture.h"
#include "Dev/TerminalWorkspaceView.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Tray/StatusNotifierTray.h"
#include "Shell/AppShell.h"
#include "Shell/ContentView.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Await.h"
#include "Support/FakeMachine.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"
#include "Support/WaitingItems.h"
#include "Terminals/TerminalsView.h"
#include "Voice/DictationAnywhere.h"
#include "Web/SessionStore.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

Account account(const QString& name, const std::optional<QString>& channel, bool autoStart, std::optional<bool> paused)
{
    Account account;
    account.id = QUuid::createUuid();
    account.name = account.slug = name;
    account.channelRaw = channel;
    account.autoStart = autoStart;
    account.paused = paused;
    return account;
}

Account startedAtBoot(Account account)
{
    account.startAtBoot = true;
    return account;
}

class CorvaneAppTest : public testing::Test {
protected:
    void build(const QList<Account>& accounts, std::unique_ptr<Tray> tray = nullptr)
    {
        home.write("share/Corvane/accounts.json", encodeAccounts(accounts));
        auto ownedLauncher = std::make_unique<FakeLauncher>(clock);
        launcher = ownedLauncher.get();
        Machine machine = fakeMachine(home.paths(), std::move(ownedLauncher));
        machine.tray = std::move(tray);
        insertion = dynamic_cast<FakeTextInsertion*>(machine.insertion.get());
        insertion->bound = isBoundToFocus;
        microphone = dynamic_cast<FakeMicrophone*>(machine.microphone.get());
        auto& facts = dynamic_cast<FakeMachineFacts&>(*machine.facts);
        facts.now.physicalMemoryBytes = 16ULL << 30;
        facts.now.powerSourceStates = { "AC Power" };
        banners = dynamic_cast<FakeNotificationService*>(machine.notifications.get());
        app = std::make_unique<CorvaneApp>(home.paths(), clock, std::move(machine));
    }

    /// Runs the start sequence until the tool server is up, which starts on another thread.
    void appear(int enginesStarted)
    {
        launcher->expect(FakeLauncher::stays(), enginesStarted + 1);
        app->onAppear();
        ASSERT_TRUE(await([this] { return app->engine().mcpRunning(); }));
    }

    QStringList startedEngines() const
    {
        QStringList started;
        for (const auto& child : launcher->children)
            started.append(child->spec.environment.value("CORVANE_ACCOUNT"));
        started.removeAll(QString());
        return started;
    }

    TemporaryHome home;
    VirtualScheduler clock;
    FakeLauncher* launcher = nullptr;
    FakeNotificationService* banners = nullptr;
    FakeTextInsertion* insertion = nullptr;
    FakeMicrophone* microphone = nullptr;
    bool isBoundToFocus = false; ///< to be set before the program is created
    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<CorvaneApp> app;
};

}

TEST_F(CorvaneAppTest, aFirstStartShowsTheWallWhileTheEnginesRunBehindIt)
{
    build({ account("first", "WHATSAPP", true, std::nullopt), account("telegram", "TELEGRAM", true, std::nullopt),
        account("old", std::nullopt, true, false), account("unknown", "FAX", true, std::nullopt),
        account("paused", "WHATSAPP", true, true), account("by-hand", "WHATSAPP", false, std::nullopt),
        startedAtBoot(account("mail", "EMAIL", true, std::nullopt)),
        startedAtBoot(account("paused-mail", "EMAIL", true, true)) });
    Screens screens(*app);
    LocalDB& db = app->engine().db();
    EXPECT_TRUE(
        db.run("INSERT INTO ai_requests(id, prompt, created_at) VALUES('a','Are you there?',?);", { clock.nowMs() }));
    dynamic_cast<FakeLanguageModel&>(app->ai().systemModel).willAnswer(u"Yes."_s);
    appear(4);
    EXPECT_EQ(db.scalar("SELECT response FROM ai_requests;"), "Yes.");
    EXPECT_TRUE(screens.content->showsWall());
    EXPECT_EQ(screens.shell->selectedNav(), "inbox");
    EXPECT_EQ(startedEngines(), QStringList({ "first", "old", "unknown", "mail" }));
    EXPECT_TRUE(app->data().local.has_value());
}

TEST_F(CorvaneAppTest, aWindowThatOpensAgainStartsNothingTwiceAndQuittingEndsEveryChild)
{
    build({ account("first", "WHATSAPP", true, std::nullopt) });
    appear(1);
    const qsizetype timers = clock.pendingTimers();
    for (int i = 0; i < 3; ++i) {
        app->onAppear();
        clock.runDue();
    }
    EXPECT_EQ(launcher->children.size(), 2) << "one engine and one tool server";
    EXPECT_LE(clock.pendingTimers(), timers + 1) << "the search index may wait for its next step";

    const QSignalSpy ended(app.get(), &CorvaneApp::ended);
    app->quit();
    app->quit();
    app->onAppear();
    for (const auto& child : launcher->children)
        EXPECT_TRUE(child->terminated);
    EXPECT_FALSE(app->engine().mcpRunning());
    clock.advance(seconds(1));
    EXPECT_EQ(ended.size(), 0) << "an engine has its time to end";
    launcher->children.first()->printEvent({ { "type", "log" }, { "msg", "bye" } });
    launcher->children.first()->exit(0);
    clock.advance(Milliseconds(1));
    EXPECT_EQ(ended.size(), 1);
}

TEST_F(CorvaneAppTest, aPressOnABannerBringsTheConversationToTheFront)
{
    build({});
    app->defaults().setText("nimb.selectedNav", "dev");
    Screens screens(*app);
    appear(0);
    const QSignalSpy windowRequested(app.get(), &CorvaneApp::windowRequested);
    ensureConversation(app->engine().db(), "WHATSAPP", "first", "1@s.whatsapp.net", "Ana", 1000);
    const QSignalSpy selected(screens.inbox->person(), &OpenPerson::selectionChanged);

    app->notifications().post(corvane::notifications::openConversation, "ct:WHATSAPP:1@s.whatsapp.net");
    EXPECT_EQ(screens.shell->selectedNav(), "inbox");
    EXPECT_EQ(screens.inbox->person()->selectedId(), "ct:WHATSAPP:1@s.whatsapp.net");
    EXPECT_EQ(windowRequested.count(), 0);

    app->open({ "nimb-companion://elsewhere?code=1" });
    EXPECT_EQ(windowRequested.count(), 1) << "a later start shows the window, whatever it was given";
    EXPECT_FALSE(app->session().busy());
}

TEST_F(CorvaneAppTest, aCallIsRecordedFromTheBackgroundAndAQuitKeepsIt)
{
    build({});
    appear(0);
    const QSignalSpy windowRequested(app.get(), &CorvaneApp::windowRequested);
    auto& microphone = dynamic_cast<FakeMicrophone&>(app->microphone());
    app->open({ "record" });
    EXPECT_EQ(windowRequested.count(), 1) << "the first time it asks there";
    app->calls().recording.acceptConsent();
    microphone.answer(MicrophoneAccess::Denied);
    ASSERT_EQ(banners->shown.size(), 1);
    EXPECT_EQ(banners->shown.last().body, "Microphone access is denied.");
    app->open({ "record" });
    microphone.answer(MicrophoneAccess::Granted);
    app->open({ "mark" });
    EXPECT_EQ(app->calls().recording.marksText(), "1 mark");
    app->open({ "record" });
    EXPECT_FALSE(app->calls().recording.recording());
    EXPECT_EQ(windowRequested.count(), 1);

    app->calls().recorder.start("Weekly", { .startMode = "calendar_auto" });
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_EQ(banners->shown.last().title, "Recording Weekly");
    app->quit();
    EXPECT_EQ(app->engine().db().scalar("SELECT processing_error FROM call_recording WHERE title='Weekly';"),
        "Corvane quit while recording.");
}

TEST_F(CorvaneAppTest, theIconAtTheTraySaysWhatWaitsAndOpensThePanel)
{
    bus = std::make_unique<PrivateBus>();
    auto ownedTray = std::make_unique<StatusNotifierTray>(bus->connect());
    Tray* const tray = ownedTray.get();
    build({}, std::move(ownedTray));
    Screens screens(*app);
    writeDecision(app->engine().db(), "w1", "Deploy", "now", "", "high");
    appear(0);

    const QDBusConnection panel = bus->connect();
    const QString service = u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid());
    const QString item = "org.kde.StatusNotifierItem";
    const auto status = [&] {
        QString answer;
        QObject context;
        callAsync(panel,
            BusObject { service, "/StatusNotifierItem", "org.freedesktop.DBus.Properties" }.method(
                "Get", { item, "Status" }),
            &context, [&](const QDBusMessage& reply) { answer = firstValue(reply).toString(); });
        EXPECT_TRUE(await([&] { return !answer.isEmpty(); }));
        return answer;
    };
    EXPECT_EQ(status(), "NeedsAttention");
    app->notifications().post(
        notifications::approvalAction, {}, { { "kind", "decision" }, { "id", "w1" }, { "action", "reject" } });
    EXPECT_EQ(status(), "Active");

    const QSignalSpy panelRequested(app.get(), &CorvaneApp::panelRequested);
    panel.send(BusObject { service, "/StatusNotifierItem", item }.method("Activate", { 10, 20 }));
    EXPECT_TRUE(await([&] { return panelRequested.count() == 1; }));
    EXPECT_EQ(panelRequested.value(0).value(0).toPoint(), QPoint(10, 20));

    const QSignalSpy windowRequested(app.get(), &CorvaneApp::windowRequested);
    Q_EMIT tray->itemChosen("openApprovals");
    EXPECT_EQ(windowRequested.count(), 1);
    EXPECT_TRUE(screens.shell->approvals()) << "for desktops whose icons only have a menu";
}

TEST_F(CorvaneAppTest, whereAWindowTakesTheFocusDictationSpeaksByABanner)
{
    isBoundToFocus = true;
    build({});
    appear(0);
    const auto toggle = [this] {
        app->open({ "--toggle-dictation" });
        return banners->shown.last();
    };
    EXPECT_EQ(toggle().body, "Dictation is off in Settings > Voice.");
    app->dictation().setEnabled(true);
    const auto listen = [&] {
        app->open({ "--toggle-dictation" });
        microphone->answer(MicrophoneAccess::Granted);
        microphone->recording->seconds = 1;
        return banners->shown.last();
    };
    const Banner listening = listen();
    EXPECT_EQ(listening.body, "Listening (English) …");
    banners->press(listening);
    EXPECT_EQ(app->dictation().state().kind, DictationAnywhereState::Kind::Recording) << "the banner itself";
    banners->press(listening, "cancel");
    EXPECT_EQ(app->dictation().state().kind, DictationAnywhereState::Kind::Idle);
    banners->press(listen(), "finish");
    EXPECT_EQ(app->dictation().state().kind, DictationAnywhereState::Kind::Transcribing);
    EXPECT_EQ(banners->shown.last().actions.size(), 1);
    app->quit();
    clock.advance(Milliseconds(1600));
    EXPECT_TRUE(banners->withdrawn.contains("dictation"));
}

TEST_F(CorvaneAppTest, whatALaterStartAsksForIsDoneByTheRunningProgram)
{
    for (const QStringList& arguments :
        { QStringList { "record" }, QStringList { "mark" }, QStringList { "--toggle-dictation" } })
        EXPECT_TRUE(CorvaneApp::isForRunning(arguments));
    for (const QStringList& arguments :
        { QStringList {}, QStringList { "capture" }, QStringList { "record", "now" }, QStringList { "--background" } })
        EXPECT_FALSE(CorvaneApp::isForRunning(arguments));
    build({});
    appear(0);
    const QSignalSpy windowRequested(app.get(), &CorvaneApp::windowRequested);
    app->open({ "--background" });
    app->open({ "capture" });
    EXPECT_TRUE(app->capture().isVisible());
    app->open({ "capture" });
    EXPECT_FALSE(app->capture().isVisible());
    EXPECT_EQ(windowRequested.size(), 0);
    app->open({});
    EXPECT_EQ(windowRequested.size(), 1);
    app->open({ "capture", "more" });
    EXPECT_FALSE(app->capture().isVisible());
    EXPECT_EQ(windowRequested.size(), 2);
    app->quit();
    for (const QStringList& arguments : { QStringList {}, QStringList { "capture" }, QStringList { "record" } })
        app->open(arguments);
    app->commands().run("openWindow");
    EXPECT_EQ(windowRequested.size(), 2) << "it ends";
    EXPECT_FALSE(app->capture().isVisible());
}

TEST_F(CorvaneAppTest, everyAccountThatIsNotPausedStartsWhenAllAreAskedFor)
{
    build({ account("first", "WHATSAPP", false, std::nullopt), account("paused", "WHATSAPP", true, true),
        account("telegram", "TELEGRAM", false, false) });
    launcher->expect(FakeLauncher::stays(), 2);
    app->startAllEngines();
    EXPECT_EQ(startedEngines(), QStringList({ "first", "telegram" }));
}

TEST_F(CorvaneAppTest, aQuitAsksWhereAProgramStillRunsInATerminal)
{
    build({});
    Screens screens(*app);
    const QSignalSpy windowRequested(app.get(), &CorvaneApp::windowRequested);
    const QSignalSpy quitting(app.get(), &CorvaneApp::quitting);
    LumoTerminalSession& session
        = screens.terminals->createLocalSession("test", { "/bin/sh", { "-c", "printf ready; exec cat" }, {}, {}, {} });
    session.view({ 60, 10 });
    ASSERT_TRUE(await([&] { return session.runningCommand() == "cat"; }));
    screens.dev->setWorkspaceTab(DevWorkspaceTab::Tasks);
    app->commands().run("quit");
    EXPECT_EQ(quitting.size(), 0);
    EXPECT_EQ(windowRequested.size(), 1);
    EXPECT_EQ(screens.shell->selectedNav() + ' ' + screens.dev->tab(), "dev terminal");
    EXPECT_TRUE(screens.terminals->question()->text().contains("cat"));
    screens.terminals->question()->answer(false);
    EXPECT_EQ(quitting.size(), 0);
    app->commands().run("quit");
    screens.terminals->question()->answer(true);
    EXPECT_EQ(quitting.size(), 1);
}

TEST_F(CorvaneAppTest, whereNothingRunsAQuitEndsAtOnce)
{
    build({});
    Screens screens(*app);
    const QSignalSpy windowRequested(app.get(), &CorvaneApp::windowRequested);
    const QSignalSpy quitting(app.get(), &CorvaneApp::quitting);
    app->commands().run("quit");
    EXPECT_EQ(quitting.size(), 1);
    EXPECT_EQ(windowRequested.size(), 0);
}
