#include "Engines/AccountStore.h"
#include "Foundation/Literals.h"
#include "Settings/AccountsView.h"
#include "Settings/PushSettings.h"
#include "Settings/SyncSettings.h"
#include "Settings/SystemSettings.h"
#include "Settings/ToolServerCard.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/Rows.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

namespace {

const QString whatsApp = "WHATSAPP";

class Settings : public testing::Test {
protected:
    Settings()
    {
        world.engines.setAccounts(&accounts);
        list.setVisible(true);
    }

    /// Connects a channel and starts its engine.
    QString connectAccount(const QString& channel, const ConnectValues& values = {})
    {
        world.launcher.expect(FakeLauncher::stays());
        list.connectChannel(channel);
        for (const QString& id : list.connectForm()->values().keys())
            list.connectForm()->field(id).type(values.value(id));
        list.connectForm()->submit();
        EXPECT_FALSE(list.connectForm()->isOpen());
        return accounts.accounts().last().id.toString(QUuid::WithoutBraces);
    }

    void report(const QJsonObject& event)
    {
        world.launcher.last().printEvent(event);
        world.clock.advance(seconds(1));
    }

    QStringList column(const char* role) const { return corvane::column(*model, role); }
    bool paused() const { return accounts.accounts().first().paused.value_or(false); }

    EngineWorld world;
    SessionStore session { world.home.paths(), world.keychain, world.defaults, world.desktop, world.clock };
    AccountStore accounts { world.home.paths().applicationSupport };
    WebServices web { session, world.engines.db(), world.clock };
    AccountsView list { { accounts, world.engines, world.keychain }, world.home.paths(), world.launcher, world.clock };
    QAbstractItemModel* model = list.rows();
    QAbstractItemModelTester tester { model, QAbstractItemModelTester::FailureReportingMode::Fatal };
};

}

TEST_F(Settings, connectingAWhatsAppNumberStartsItsEngineAndOpensThePairing)
{
    connectAccount(whatsApp, { { "name", "Sales" } });
    EXPECT_EQ(column("name"), QStringList("Sales"));
    EXPECT_TRUE(world.launcher.last().spec.arguments.last().endsWith("/src/main.ts"));

    PairingSheet& sheet = *list.pairing();
    EXPECT_TRUE(sheet.isOpen());
    EXPECT_EQ(sheet.title(), "Link Sales");
    EXPECT_EQ(sheet.stateText(), "Starting");
    EXPECT_EQ(sheet.qr(), "");
    report({ { "type", "qr" }, { "qr", "2@abc" } });
    EXPECT_EQ(sheet.qr(), "2@abc");
    EXPECT_EQ(sheet.stateText(), "WhatsApp → Settings → Linked Devices → Link a Device, then scan.");
    EXPECT_EQ(column("status"), QStringList("Scan QR to link"));
    report({ { "type", "status" }, { "state", "open" }, { "user", QJsonObject { { "name", "Ana" } } } });
    EXPECT_TRUE(sheet.connected());
    EXPECT_EQ(sheet.stateText(), "Connected");
    EXPECT_EQ(sheet.qr(), "");
    EXPECT_EQ(column("status"), QStringList("Connected"));

    sheet.close();
    EXPECT_FALSE(sheet.isOpen());
    EXPECT_TRUE(world.engines.isRunning(accounts.accounts().first())) << "closing changes nothing in the engine";
}

TEST_F(Settings, everyOtherChannelConnectsWithItsSecretAndWithoutASheet)
{
    struct Case {
        QString channel;
        ConnectValues values;
        QString slug;
        QString secret;
    };
    const QList<Case> cases {
        { "LINKEDIN", {}, "linkedin", "none" },
        { "TELEGRAM", { { "token", "1:a " } }, "telegram", "1:a" },
        { "DISCORD", { { "token", "d" } }, "discord", "d" },
        { "SLACK", { { "appToken", " xapp-1" }, { "botToken", "xoxb-2" } }, "slack",
            R"({"app":"xapp-1","bot":"xoxb-2"})" },
        { "INSTAGRAM", {}, "instagram", "none" },
        { "MESSENGER", {}, "messenger", "none" },
        { "SMS", { { "sid", "AC\"1" }, { "authToken", "t" }, { "from", " +1 555" } }, "sms-1-555",
            R"({"auth":"t","from":"+1 555","sid":"AC\"1"})" },
        { "IMESSAGE", {}, "my-phone", "none" },
    };
    for (const Case& each : cases) {
        connectAccount(each.channel, each.values);
        const Account account = accounts.accounts().last();
        EXPECT_EQ(account.slug, each.slug);
        EXPECT_EQ(account.channelRaw, each.channel);
        EXPECT_EQ(world.keychain.get(account.slug).value_or("none"), each.secret);
        EXPECT_TRUE(world.engines.isRunning(account));
        EXPECT_FALSE(list.pairing()->isOpen());
        EXPECT_EQ(account.startAtBoot.value_or(false), each.secret != "none");
        list.perform(account.id.toString(), "startAtBoot");
        EXPECT_EQ(accounts.find(account.id)->startAtBoot, each.secret == "none");
    }
    list.connectChannel("DISCORD");
    EXPECT_FALSE(list.connectForm()->complete());
    list.connectForm()->submit();
    EXPECT_EQ(accounts.accounts().size(), cases.size()) << "a sheet whose rule does not hold adds nothing";
    EXPECT_EQ(column("channelLabel"),
        QStringList({ "LinkedIn", "Telegram", "Discord", "Slack", "Instagram", "Messenger", "SMS", "iMessage" }));
}

TEST_F(Settings, anAccountWhoseTokenIsRefusedIsGivenAnotherAndStartsAnew)
{
    const QString id = connectAccount("SLACK", { { "appToken", "xapp-1" }, { "botToken", "xoxb-2" } });
    report({ { "type", "status" }, { "state", "logged_out" } });
    EXPECT_EQ(model->index(0, 0).data(model->roleNames().key("first")).value<AccountAction>().label, "Edit account");
    list.perform(id, "edit");
    ConnectForm& form = *list.connectForm();
    EXPECT_EQ(form.title(), "Edit Slack");
    ASSERT_EQ(form.fieldCount(), 2);
    EXPECT_EQ(form.field("appToken").text(), "xapp-1");
    form.field("botToken").type("xoxb-3");
    form.submit();
    EXPECT_EQ(form.fieldCount(), 0) << "no secret stays in a closed sheet";
    world.launcher.expect(FakeLauncher::stays());
    world.launcher.last().exit();
    world.settle();
    EXPECT_EQ(accounts.accounts().size(), 1);
    EXPECT_EQ(world.launcher.last().spec.environment.value("SLACK_BOT_TOKEN"), "xoxb-3");
}

TEST_F(Settings, rowsStandByChannelAndOnlyTheOneThatChangedIsRedrawn)
{
    connectAccount("TELEGRAM", { { "token", "t" } });
    connectAccount(whatsApp, { { "name", "Sales" } });
    connectAccount(whatsApp, { { "name", "Support" } });
    EXPECT_EQ(column("name"), QStringList({ "Sales", "Support", "Telegram" }));
    world.clock.advance(seconds(1));

    QSignalSpy changes(model, &QAbstractItemModel::dataChanged);
    QSignalSpy resets(model, &QAbstractItemModel::modelReset);
    report({ { "type", "status" }, { "state", "open" } });
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex().row(), 1);
    EXPECT_TRUE(resets.isEmpty());
}

TEST_F(Settings, aStormOfEngineEventsIsOneRefresh)
{
    connectAccount(whatsApp, { { "name", "Sales" } });
    world.clock.advance(seconds(1));
    QSignalSpy changes(model, &QAbstractItemModel::dataChanged);
    for (int i = 0; i < 500; ++i) {
        const bool qr = i % 2 == 0;
        world.launcher.last().printEvent(qr ? QJsonObject { { "type", "qr" }, { "qr", QString::number(i) } }
                                            : QJsonObject { { "type", "status" }, { "state", "connecting" } });
    }
    world.clock.advance(Milliseconds(240));
    EXPECT_LE(changes.size(), 2);
    world.clock.advance(seconds(1));
    EXPECT_EQ(column("status")[0], "Connecting…") << "the last one counts";
}

TEST_F(Settings, aPauseStopsTheEngineAndIsRememberedUntilTheResume)
{
    const QString id = connectAccount(whatsApp, { { "name", "Sales" } });
    list.perform(id, "pause");
    EXPECT_TRUE(world.launcher.last().terminated);
    EXPECT_TRUE(paused());
    world.clock.advance(seconds(1));
    EXPECT_EQ(column("status")[0], "Paused · engine stopped (frees RAM)");
    EXPECT_TRUE(AccountStore(world.home.paths().applicationSupport).accounts().first().paused.value_or(false));

    world.launcher.last().exit();
    world.settle();
    world.launcher.expect(FakeLauncher::stays());
    list.perform(id, "start");
    EXPECT_FALSE(paused());
    world.clock.advance(seconds(1));
    EXPECT_EQ(column("status")[0], "Starting");
}

TEST_F(Settings, aNewPairingForgetsTheOldOneAndOpensTheSheet)
{
    const QString id = connectAccount(whatsApp, { { "name", "Sales" } });
    list.pairing()->close();
    world.home.write(".whatsapp-baileys/sales/creds.json", "{}");
    world.launcher.expect(FakeLauncher::stays());
    list.perform(id, "resetPairing");
    EXPECT_FALSE(QFileInfo::exists(world.home.path(".whatsapp-baileys/sales")));
    world.launcher.last().exit();
    world.settle();
    EXPECT_EQ(world.launcher.children.size(), 2);
    EXPECT_TRUE(list.pairing()->isOpen());
    report({ { "type", "log" }, { "msg", "no route to host" } });
    world.launcher.expect(FakeLauncher::fails("gone"));
    world.launcher.last().exit(1);
    world.clock.advance(seconds(4));
    EXPECT_EQ(column("status")[0], "Error");
    EXPECT_EQ(column("detail")[0], "Failed to launch engine: gone");
    EXPECT_TRUE(column("note")[0].startsWith("The engine's program is missing: "));
    EXPECT_TRUE(list.pairing()->stateText().startsWith("Error\nFailed to launch engine: gone\n"));
    list.perform(id, "remove");
    EXPECT_FALSE(list.pairing()->isOpen()) << "the sheet closes with its account";
}

TEST_F(Settings, aBrowserChannelIsSyncedAndItsSessionForgottenWithoutASheet)
{
    const QString id = connectAccount("LINKEDIN");
    report({ { "type", "status" }, { "state", "open" } });
    list.perform(id, "sync");
    ASSERT_EQ(world.launcher.last().commands().size(), 1);
    EXPECT_EQ(world.launcher.last().commands()[0]["cmd"].toString(), "sync");

    world.home.write(".corvane-linkedin/linkedin/Cookies", "x");
    world.launcher.expect(FakeLauncher::stays());
    list.perform(id, "resetSession");
    world.launcher.last().exit();
    world.settle();
    EXPECT_FALSE(QFileInfo::exists(world.home.path(".corvane-linkedin/linkedin")));
    EXPECT_FALSE(list.pairing()->isOpen());
}

TEST_F(Settings, aRemovedAccountLosesItsSecretAndKeepsItsConversations)
{
    const QString id = connectAccount("TELEGRAM", { { "token", "t" } });
    world.engines.db().run(u"INSERT INTO unified_conversation(id, channel, account_id, external_id)"
                           " VALUES('wa:telegram:1','TELEGRAM','telegram','1');"_s);
    queueDraft(world.engines.db(), "wa:telegram:1", "hello", "mcp");
    world.engines.db().exec("UPDATE outbound_draft SET status='approved';");
    list.perform(id, "remove");
    EXPECT_TRUE(world.launcher.last().terminated);
    EXPECT_EQ(world.cell("SELECT status || ': ' || error FROM outbound_draft;"),
        "failed: Account telegram is no longer connected");
    EXPECT_EQ(model->rowCount(), 0);
    EXPECT_FALSE(world.keychain.get("telegram"));
    EXPECT_EQ(world.cell("SELECT COUNT(*) FROM unified_conversation WHERE deleted_at IS NULL"), "1");

    list.perform(id, "start");
    list.perform("no uuid", "remove");
    EXPECT_EQ(world.launcher.children.size(), 1) << "what is gone is left alone";
}

TEST_F(Settings, lastMessageTimesAreReadOnlyWhileSomeoneLooks)
{
    connectAccount(whatsApp, { { "name", "Sales" } });
    EXPECT_EQ(column("lastMessage")[0], "No messages yet");
    list.setVisible(false);
    world.engines.db().run(
        u"INSERT INTO unified_conversation(id, channel, account_id, external_id, last_ts, workspace_id)"
        " VALUES('a','WHATSAPP','sales','1',?,'w1'),('b','WHATSAPP','sales','2',5,'local'),"
        "('c','WHATSAPP','other','3',9,'local');"_s,
        { world.clock.nowMs() - 60'000 });
    report({ { "type", "status" }, { "state", "open" } });
    EXPECT_EQ(column("lastMessage")[0], "No messages yet");
    list.setVisible(true);
    // 1 760 000 000 seconds after the epoch is 10:53:20 in Berlin.
    EXPECT_EQ(column("lastMessage")[0], "Last message 10:52");
    const auto message = [&](const char* id) {
        report({ { "type", "message" }, { "convExternalId", "c" }, { "body", "hello" }, { "providerMsgId", id },
            { "timestamp", world.clock.nowMs() } });
    };
    world.clock.advance(seconds(3600));
    message("m1");
    EXPECT_EQ(column("lastMessage")[0], "Last message 11:53") << "it follows what arrives";
    list.setVisible(false);
    world.clock.advance(seconds(3600));
    message("m2");
    EXPECT_EQ(column("lastMessage")[0], "Last message 11:53");
}

TEST_F(Settings, aMailboxIsConnectedAndEditedInASheetOfItsOwn)
{
    list.connectChannel("EMAIL");
    EXPECT_TRUE(list.mailForm()->isOpen());
    list.mailForm()->close();
    const Account account = accounts.add("ana@studio.example", Channel::Email);
    list.perform(account.id.toString(), "edit");
    EXPECT_EQ(list.mailForm()->title(), "Edit ana@studio.example");
    EXPECT_TRUE(list.mailForm()->isOpen());
    EXPECT_FALSE(list.connectForm()->isOpen());
    EXPECT_EQ(list.connectForm()->title() + list.connectForm()->buttonLabel(), "");
}

TEST_F(Settings, thePairingOpensAgainFromItsRowAndSaysHowItStands)
{
    const QString id = connectAccount(whatsApp, { { "name", "Sales" } });
    PairingSheet& sheet = *list.pairing();
    sheet.close();
    list.perform(id, "pair");
    EXPECT_TRUE(sheet.isOpen());
    EXPECT_EQ(sheet.title(), "Link Sales");
    QSignalSpy changed(&sheet, &PairingSheet::changed);
    report({ { "type", "status" }, { "state", "logged_out" } });
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(sheet.stateText(), "Logged out. Choose Re-pair in Settings to get a new code.");
    EXPECT_TRUE(sheet.failed());
    list.perform(id, "pause");
    EXPECT_EQ(sheet.stateText(), "Stopped");
    EXPECT_FALSE(sheet.failed() || sheet.connected());
    sheet.close();
    EXPECT_EQ(sheet.title(), "Link ");
}

TEST_F(Settings, aKeyringThatDoesNotAnswerIsAskedAgainAndItsFailureIsLogged)
{
    const LogCapture logs;
    const QString id = connectAccount(whatsApp, { { "name", "Sales" } });
    FakeKeyring keyring;
    keyring.failure = Keyring::Failure::Locked;
    Keychain locked(keyring, world.home.path("other.json"), world.clock);
    AccountsView other({ accounts, world.engines, locked }, world.home.paths(), world.launcher, world.clock);
    const int asked = keyring.asked;
    other.perform(id, "start");
    EXPECT_EQ(keyring.asked, asked + 1);

    QDir().mkpath(world.home.paths().secretsFile());
    world.keyring.failure = Keyring::Failure::Failed;
    world.keychain.unlock();
    connectAccount("TELEGRAM", { { "token", "1:a" } });
    EXPECT_TRUE(logs.contains("AccountSetup: the secret of telegram could not be kept"));
}

TEST_F(Settings, theAccountCardSaysWhatBecameOfTheSession)
{
    SyncSettings sync(session, world.engines.db());
    EXPECT_EQ(sync.stateText(), "Not signed in");
    EXPECT_EQ(sync.actionLabel(), "Sign in to Nimb");
    sync.signInOrOut();
    EXPECT_EQ(world.desktop.opened.size(), 1);

    session.setAuth("token", "d");
    EXPECT_EQ(sync.stateText(), "Signed in");
    session.setWebRejected(true);
    EXPECT_EQ(sync.stateText(), "The web rejected the session of this computer — sign out and sign in again");
    EXPECT_EQ(sync.stateKind(), "bad");
    EXPECT_EQ(sync.actionLabel(), "Sign Out");
    sync.signInOrOut();
    EXPECT_EQ(sync.stateText(), "Not signed in");
}

TEST_F(Settings, theSyncCardListsHealthAndQueuesAPull)
{
    SyncSettings sync(session, world.engines.db());
    EXPECT_TRUE(sync.health().isEmpty());
    EXPECT_EQ(sync.emptyHealthText(), "Nothing has been synced yet. What each part of the sync last did appears here.");
    world.engines.db().run(
        u"INSERT INTO sync_health(source, status, last_finished_at, last_error, counts_json, updated_at)"
        " VALUES('crm','error',1,'no route','{}',1),('inbox','ok',?,NULL,'{\"rows\":1}',1);"_s,
        { world.clock.nowMs() - 3 * 3'600'000 });
    world.engines.db().exec("INSERT INTO _sync_state(table_name, last_pulled) VALUES('inbox:local',8);");
    sync.queuePull();
    ASSERT_EQ(sync.health().size(), 2);
    EXPECT_EQ(sync.health()[0].source, "Conversations from the web");
    EXPECT_EQ(sync.health()[0].detail, "Finished 3 hours ago · 1 row · cursor 8");
    EXPECT_EQ(sync.health()[1].detail, "no route");
    EXPECT_EQ(sync.health()[1].kind, "bad");
    EXPECT_EQ(
        world.cell("SELECT kind || ' ' || status || ' ' || source FROM sync_command"), "web_pull pending settings");
    EXPECT_TRUE(sync.queuedText().startsWith("Queued as sync:"));
}

TEST_F(Settings, thePushSheetCountsWhatGoesAndLetsAPersonKeepChatsAndAccounts)
{
    LocalDB& db = world.engines.db();
    db.exec("INSERT INTO unified_conversation(id, channel, account_id, external_id, title, last_ts) VALUES"
            "('a','WHATSAPP','shop','a','Ana',30), ('b','WHATSAPP','shop','34600111222@s.whatsapp.net','',20),"
            "('c','WHATSAPP','home','c','Caro',10);"
            "INSERT INTO unified_message(id, conversation_id, body, ts) VALUES('1','a','x',1700000000000),"
            "('2','a','y',1700000000001), ('3','b','z',1763126400000), ('4','c','z',1763126400000);");
    PushSettings push({ web.push, session, accounts, world.engines.db() });
    PushSheet& sheet = *push.sheet();
    const auto settled = [&] {
        EXPECT_TRUE(await([&] { return !web.push.isLookingUp(); }));
    };
    push.refresh();
    settled();
    EXPECT_EQ(push.dueText(), "4 messages in 3 chats are not on the web yet.");
    EXPECT_EQ(push.pushLabel(), "Review and push…");
    EXPECT_FALSE(push.canPush());
    sheet.open();
    EXPECT_EQ(sheet.state(), "loading");
    settled();
    EXPECT_EQ(sheet.summaryText(), "2 WhatsApp accounts, 3 chats, 4 messages, written since 14 Nov 2023");
    EXPECT_EQ(corvane::column(*sheet.chats(), "detail").first(), "2 messages since 14 Nov 2023");
    sheet.keepChat("b", true);
    settled();
    EXPECT_EQ(corvane::column(*sheet.chats(), "kept"), QStringList({ "false", "true", "false" }))
        << "it keeps its place";
    EXPECT_EQ(sheet.summaryText().section(", ", 1, 2), "2 chats, 3 messages");
    sheet.keepAccount("home", true);
    settled();
    EXPECT_EQ(corvane::column(*sheet.chats(), "id"), QStringList({ "a", "b" }));
    EXPECT_TRUE(sheet.accounts().first().kept);
    EXPECT_EQ(push.kept(),
        (QList<KeptLine> { { "home", "Every chat of this account" },
            { corvane::column(*sheet.chats(), "title").value(1), "Chat · shop" } }));
    sheet.keepAccount("home", false);
    push.release(1);
    settled();
    push.release(0);
    settled();
    EXPECT_EQ(push.kept().size(), 0);
    sheet.push();
    EXPECT_FALSE(push.running()) << "nobody is signed in";
    EXPECT_TRUE(sheet.isOpen());
}

TEST_F(Settings, theToolServerIsStartedAndStoppedByItsCard)
{
    ToolServerCard card(world.engines);
    EXPECT_EQ(card.stateText(), "Stopped");
    EXPECT_EQ(card.url(), "http://127.0.0.1:8765/mcp");
    world.launcher.expect(FakeLauncher::stays());
    EXPECT_EQ(card.actionLabel(), "Start");
    card.startOrStop();
    ASSERT_TRUE(await([&] {
        world.settle();
        return card.running();
    }));
    EXPECT_EQ(card.stateText(), "Running");
    EXPECT_EQ(card.actionLabel(), "Stop");
    world.launcher.last().exit(-9);
    EXPECT_EQ(card.stateText(), "Stopped: Ended by signal 9 (Killed)");
    world.launcher.expect(FakeLauncher::stays());
    card.startOrStop();
    ASSERT_TRUE(await([&] {
        world.settle();
        return card.running();
    }));
    EXPECT_EQ(card.stateText(), "Started again: Ended by signal 9 (Killed)");
    card.startOrStop();
    EXPECT_FALSE(card.running());
    EXPECT_TRUE(world.launcher.last().terminated);
}

TEST_F(Settings, theFlowsAndTheSystemCardReachTheScreenAsPlainValues)
{
    const ConnectFlow& slack = list.connectFlows().at(5);
    EXPECT_EQ(slack.channelWord(), "SLACK");
    EXPECT_TRUE(slack.fields.first().masked);
    SystemSettings system(world.defaults, world.keychain, world.home.paths(), nullptr);
    EXPECT_TRUE(system.notifyOnNewMessage());
    system.setNotifyOnNewMessage(false);
    EXPECT_EQ(world.defaults.boolean("notifyOnNewMessage"), false);
    const bool sends = system.returnSends();
    const QSignalSpy changed(&system, &SystemSettings::changed);
    system.setReturnSends(sends);
    EXPECT_EQ(changed.size(), 0);
    system.setReturnSends(!sends);
    EXPECT_EQ(system.returnSends(), !sends);
    EXPECT_EQ(changed.size(), 1);
    system.setStartsAtLogin(true);
    EXPECT_FALSE(system.startsAtLogin()) << "there is no such desktop";
    EXPECT_EQ(system.secretsPlace(), "the desktop's keyring");
    EXPECT_EQ(system.dataFolder(), world.home.paths().applicationSupport);
}

}
