#include "Settings/PushSettings.h"

#include "Engines/AccountStore.h"
#include "Support/Environment.h"
#include "Support/Rows.h"
#include "Support/WebTest.h"
#include "Web/SyncClient.h"

#include <QDir>
#include <QSignalSpy>

namespace corvane {

namespace {

class PushSettingsTest : public WebTest {
protected:
    PushSettingsTest() { client.attach(); }

    void settle()
    {
        EXPECT_TRUE(await([&] {
            m_clock.advance(Milliseconds(200));
            return !client.isRunning() && !client.isLookingUp() && !client.isWriting();
        }));
    }

    Environment environment { { "HOME", m_home.path("home").toUtf8() },
        { "XDG_CONFIG_HOME", m_home.path("home").toUtf8() } };
    AccountStore accounts { m_home.paths().applicationSupport };
    SyncClient client { session, *m_db, m_clock };
    PushSettings push { { client, session, accounts, *m_db } };
    PushSheet& sheet = *push.sheet();
};

}

TEST_F(PushSettingsTest, aPushIsAgreedToOnceAndItsProgressAndResultAreTold)
{
    accounts.add("Shop of Ana", Channel::WhatsApp);
    const QString shop = accounts.accounts().first().slug;
    addChat("1", shop, 3);
    addChat("2", shop, 1);
    EXPECT_EQ(push.stateText(), "Not synced yet");
    EXPECT_EQ(push.stateKind(), "idle");
    EXPECT_EQ(push.dueText(), "The messages could not be read.");
    EXPECT_EQ(sheet.state(), "failed");
    EXPECT_EQ(sheet.summaryText() + sheet.moreText() + push.leftOutText(), "");
    push.refresh();
    EXPECT_EQ(push.dueText(), "Checking what waits…");
    EXPECT_TRUE(push.canPush());
    EXPECT_FALSE(push.canReview() || push.canStartOver()) << "nothing was agreed to";
    push.push();
    EXPECT_TRUE(sheet.isOpen());
    EXPECT_FALSE(sheet.canPush()) << "not before it is known what goes";
    settle();
    EXPECT_EQ(sheet.state(), "filled");
    EXPECT_EQ(sheet.targetText(), u"To 127.0.0.1:%1, as %2."_s.arg(QUrl(web.base()).port()).arg(session.displayLine()));
    EXPECT_EQ(sheet.accounts(), QList<PushAccountLine>({ { shop, "Shop of Ana", "2 chats, 4 messages", false } }));
    EXPECT_TRUE(sheet.canPush());

    web.plan("messages=stallx1+1");
    sheet.push();
    EXPECT_FALSE(sheet.isOpen());
    EXPECT_EQ(push.stateText() + u' ' + push.stateKind(), "Syncing… busy");
    EXPECT_EQ(push.progressText(), "Checking what waits…");
    EXPECT_EQ(push.progress(), 0);
    EXPECT_FALSE(push.canPush() || push.canReview());
    EXPECT_TRUE(await([&] { return web.requests("/messages ->") == 2; }));
    EXPECT_EQ(push.progressText(), "Chat 1 of 2 · 1 of 4 messages · Chat 1");
    EXPECT_EQ(push.progress(), 0.25);
    EXPECT_FALSE(sheet.canPush());
    push.cancel();
    settle();
    EXPECT_EQ(push.stateText() + u' ' + push.stateKind(), "Cancelled. Synced 0 chats to the web idle");

    EXPECT_EQ(push.pushLabel(), "Push now");
    EXPECT_TRUE(push.canReview() && push.canStartOver());
    push.push();
    EXPECT_FALSE(sheet.isOpen()) << "it was agreed to already";
    settle();
    EXPECT_EQ(push.stateText() + u' ' + push.stateKind(), "Synced 2 chats to the web · 4 messages good");
    EXPECT_EQ(push.progressText(), "Chat 2 of 2 · 4 of 4 messages · Chat 2");
    EXPECT_EQ(push.dueText(), "Nothing waits: the web has every chat that may go.");
    push.review();
    EXPECT_TRUE(sheet.isOpen());
    settle();
    EXPECT_EQ(sheet.state() + sheet.moreText(), "empty");
    EXPECT_FALSE(sheet.canPush());
    push.push();
    settle();
    EXPECT_EQ(push.stateText(), "Synced 0 chats to the web");
    EXPECT_EQ(push.progress(), 0);

    push.startOver();
    EXPECT_EQ(push.stateText() + u' ' + push.pushLabel(), "Not synced yet Review and push…");
    settle();
    EXPECT_EQ(push.dueText(), "4 messages in 2 chats are not on the web yet.");
    client.approve();
    for (const auto& [fault, kind] : { std::pair("accounts=404", "busy"), std::pair("accounts=500", "bad") }) {
        web.plan(fault);
        push.push();
        settle();
        EXPECT_EQ(push.stateKind(), kind);
    }
    m_db->exec("DELETE FROM unified_message WHERE id<>'2-1';");
    push.refresh();
    settle();
    EXPECT_TRUE(push.dueText().endsWith(" is not on the web yet.")) << qPrintable(push.dueText());
    QSignalSpy changed(&push, &PushSettings::changed);
    session.signOut();
    EXPECT_GT(changed.size(), 0);
    EXPECT_FALSE(push.canPush() || sheet.canPush());
}

TEST_F(PushSettingsTest, whatIsLeftOutOfLongChatsIsToldAndPushedWhenAskedFor)
{
    addChat("1", "shop", 1203);
    m_db->exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<201)"
               "INSERT INTO unified_conversation(id, channel, account_id, external_id, last_ts)"
               " SELECT 'e' || i, 'WHATSAPP', 'shop', 'e' || i, 1 FROM n;");
    sheet.open();
    settle();
    EXPECT_EQ(column(*sheet.chats(), "detail").first(), "the first 500 of 1,203 messages since 1 Jan 1970");
    EXPECT_EQ(sheet.summaryText(), "1 WhatsApp account, 200 chats, 500 messages, written since 1 Jan 1970");
    EXPECT_EQ(sheet.moreText(),
        "703 messages of long chats are left out; they can be pushed afterwards. 2 more chats wait for the next push.");
    EXPECT_EQ(push.dueText(), "At least 1,203 messages in 202 chats are not on the web yet.");
    m_db->exec("DELETE FROM unified_conversation WHERE id LIKE 'e%';");

    QSignalSpy changed(&push, &PushSettings::changed);
    EXPECT_FALSE(push.batch());
    push.setBatch(true);
    EXPECT_TRUE(push.batch());
    EXPECT_EQ(changed.size(), 1);
    client.approve();
    push.push();
    settle();
    EXPECT_EQ(push.stateText(), "Synced 1 chat to the web · 500 messages");
    EXPECT_EQ(push.progress(), 1);
    EXPECT_EQ(push.leftOutText(), "703 messages of 1 chat were left out: a push takes the first 500 of a chat.");
    push.pushTheRest();
    settle();
    EXPECT_EQ(push.stateText() + push.leftOutText(), "Synced 1 chat to the web · 703 messages");
    EXPECT_EQ(web.counts(), "1 1 1203");
}

TEST_F(PushSettingsTest, theSheetWritesDownWhatWouldGoAndTakesBackWhatWasKept)
{
    addChat("1", "shop", 1);
    addChat("2", "shop", 2);
    sheet.open();
    settle();
    QSignalSpy changed(&sheet, &PushSheet::changed);
    const QString file = m_home.path("home/Downloads/What a push would send.txt");
    sheet.writeDryRun();
    EXPECT_TRUE(sheet.writing());
    EXPECT_EQ(changed.size(), 1);
    settle();
    EXPECT_FALSE(sheet.writing());
    EXPECT_EQ(sheet.dryRunText(), "Saved to " + file);
    EXPECT_FALSE(sheet.dryRunFailed());
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_EQ(changed.size(), 3);

    QDir(m_home.path("home")).rename("Downloads", "before");
    m_home.write("home/Downloads", "no folder");
    sheet.writeDryRun();
    EXPECT_EQ(sheet.dryRunText(), "");
    settle();
    EXPECT_TRUE(sheet.dryRunText().startsWith("The file could not be written: ")) << qPrintable(sheet.dryRunText());
    EXPECT_TRUE(sheet.dryRunFailed());

    sheet.keepChat("1", true);
    EXPECT_EQ(column(*sheet.chats(), "kept"), QStringList({ "false", "true" }));
    sheet.keepChat("1", false);
    settle();
    EXPECT_EQ(column(*sheet.chats(), "kept"), QStringList({ "false", "false" }));
    EXPECT_TRUE(push.kept().isEmpty());
    sheet.keepAccount("shop", true);
    settle();
    EXPECT_EQ(sheet.state() + u' ' + sheet.summaryText(), "filled 0 WhatsApp accounts, 0 chats, 0 messages")
        << "the account can be taken back";
    sheet.keepAccount("shop", false);
    EXPECT_EQ(cell("SELECT COUNT(*) FROM cloud_keep_local"), "0");
    EXPECT_FALSE(sheet.accounts().first().kept);
    settle();
    sheet.retry();
    EXPECT_TRUE(client.isLookingUp());
    settle();
    EXPECT_EQ(sheet.accounts().first().detail, "2 chats, 3 messages");

    m_defaults.setText("nimb.apiBaseUrl", "http://web.example");
    EXPECT_EQ(sheet.targetText(), "The web address is not one that a push can go to.");
    EXPECT_FALSE(sheet.canPush());
    m_defaults.setText("nimb.apiBaseUrl", "https://web.example");
    EXPECT_EQ(sheet.targetText(), u"To web.example, as %1."_s.arg(session.displayLine()));
    changed.clear();
    sheet.close();
    EXPECT_FALSE(sheet.isOpen());
    EXPECT_EQ(changed.size(), 1);
    sheet.open();
    EXPECT_EQ(sheet.dryRunText(), "");
    EXPECT_EQ(sheet.chats()->rowCount(), 0);
    push.release(-1);
    push.release(0);
    EXPECT_TRUE(push.kept().isEmpty());
    settle();
}

}
