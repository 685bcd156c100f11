#include "Calendar/CalendarCommands.h"
#include "Calendar/CalendarStore.h"
#include "Care/Backup/BackupKeeper.h"
#include "Care/Doctor/DoctorView.h"
#include "Engines/AccountStore.h"
#include "Platform/AddressBook.h"
#include "Platform/Linux/Services.h"
#include "Settings/IntegrationsView.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/FakeCalendarSource.h"
#include "Support/FakeLanguageModel.h"
#include "Support/Print.h"
#include "Support/RealVoice.h"
#include "Voice/DictationAnywhere.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace corvane {

namespace {

/// The screen with all its cards.
class Sections : public testing::Test {
protected:
    EngineWorld world;
    LocalDB& db = world.engines.db();
    const AppPaths& paths = world.home.paths();
    FakeLumo lumo;
    RealVoice voice { lumo.machine, world.defaults, world.clock, paths.applicationSupport };
    DictationAnywhere dictation { { voice.services, world.microphone, nullptr, nullptr, world.defaults, world.clock } };
    FakeCalendarSource source;
    std::unique_ptr<AddressBook> book = makeAddressBook(paths);
    CalendarStore store { { db, source, world.background, world.clock, world.defaults, world.centre, {} } };
    CalendarCommands commands { store };
    SessionStore session { paths, world.keychain, world.defaults, world.desktop, world.clock };
    AccountStore accounts { paths.applicationSupport };
    WebServices web { session, db, world.clock };

    AccountsView list { { accounts, world.engines, world.keychain }, paths, world.launcher, world.clock };
    ControlChatSettings controlChat { db };
    AssistantSettings assistant { lumo, world.defaults, db, world.clock };
    VoiceSettings voiceCard { voice.services, world.defaults };
    DictationSettings dictationCard { dictation };
    CalendarSettings calendar { store, commands, world.desktop };
    SyncSettings sync { session, db };
    WebSettings webCard { session, web.sync, world.clock };
    PushSettings push { { web.push, session, accounts, db } };
    ToolServerCard toolServer { world.engines };
    BackupKeeper backups { { paths, world.defaults, world.clock, world.background, world.desktop } };
    DoctorView doctor { { [] { return CheckedProfile(); }, world.background, world.clock } };
    SystemSettings system { world.defaults, world.keychain, paths, nullptr };
    LocalAccess localAccess { { accounts, store, *book, world.background, world.desktop, world.defaults, paths.home } };
    IntegrationsView view { { list, controlChat, assistant, voiceCard, dictationCard, calendar, sync, webCard, push,
                                toolServer, backups, doctor, system, localAccess },
        world.centre };
};

}

TEST_F(Sections, areReachedByTheirNamesFromEverywhere)
{
    QStringList ids;
    QStringList labels;
    QSignalSpy changed(&view, &IntegrationsView::sectionChanged);
    for (const SettingsSection& section : IntegrationsView::sections()) {
        view.setSection(section.id);
        ids.append(view.section());
        labels.append(view.sectionLabel());
    }
    EXPECT_EQ(ids.join(u' '), "accounts approvals assistant voice calls calendar sync care system");
    EXPECT_EQ(labels.join(u' '), "Accounts Approvals Assistant Voice Calls Calendar Sync Care System");
    EXPECT_EQ(changed.size(), 8) << "the first one was shown already";
    view.setSection("nowhere");
    EXPECT_EQ(view.section(), "system");
    localAccess.connectTo("mail");
    EXPECT_EQ(view.section(), "accounts");
    world.centre.post(notifications::openSettings, "voice");
    EXPECT_EQ(view.section(), "voice");
    world.centre.post(notifications::openSettings);
    EXPECT_EQ(view.section(), "voice");
    localAccess.connectTo("messages");
    EXPECT_EQ(view.section(), "accounts");
}

TEST_F(Sections, areReadOnlyWhileSomeoneLooksAtThem)
{
    db.exec("INSERT INTO unified_conversation(id, channel, account_id, external_id, title, last_ts)"
            " VALUES('c1','WHATSAPP','studio','1','Ana',5);"
            "INSERT INTO sync_health(source, status, updated_at) VALUES('crm','ok',1);");
    const auto read = [&] {
        return QList<bool> { controlChat.chats()->rowCount() > 0, !sync.health().isEmpty(), web.push.isLookingUp(),
            !assistant.gateFacts().last().value.startsWith("0.") };
    };
    for (const char* section : { "approvals", "sync", "assistant" })
        view.setSection(section);
    EXPECT_EQ(read(), QList<bool>({ false, false, false, false })) << "nobody looks";
    QSignalSpy visible(&view, &IntegrationsView::visibleChanged);
    view.setSection("accounts");
    view.setVisible(true);
    EXPECT_TRUE(view.visible());
    EXPECT_EQ(read(), QList<bool>({ false, false, false, false })) << "another section is shown";
    view.setSection("approvals");
    EXPECT_EQ(read(), QList<bool>({ true, false, false, false }));
    view.setSection("sync");
    EXPECT_EQ(read(), QList<bool>({ true, true, true, false }));
    view.setSection("assistant");
    EXPECT_TRUE(read().last());
    const qint64 looking = world.clock.pendingTimers();
    view.setSection("voice");
    EXPECT_EQ(world.clock.pendingTimers(), looking - 1) << "the machine is no longer read";
    view.setSection("assistant");
    view.setVisible(true);
    EXPECT_EQ(visible.size(), 1);
    view.setVisible(false);
    EXPECT_EQ(visible.size(), 2);
    EXPECT_EQ(world.clock.pendingTimers(), looking - 1);
    EXPECT_TRUE(await([&] { return !web.push.isLookingUp(); }));
}

TEST_F(Sections, ofAccountsShowTheLastMessagesWhenTheyAreOpened)
{
    Account account = accounts.add("Sales", Channel::WhatsApp);
    db.run("INSERT INTO unified_conversation(id, channel, account_id, external_id, last_ts) "
           "VALUES('a','WHATSAPP',?,'1',?);",
        { account.slug, world.clock.nowMs() });
    const auto last = [&] {
        return list.rows()->index(0, 0).data(list.rows()->roleNames().key("lastMessage")).toString();
    };
    EXPECT_EQ(last(), "No messages yet");
    AccountsView atStart({ accounts, world.engines, world.keychain }, paths, world.launcher, world.clock);
    EXPECT_EQ(atStart.rows()->rowCount(), 1) << "what is connected already is there at once";
    view.setVisible(true);
    EXPECT_EQ(last(), "Last message 10:53");
}

}
