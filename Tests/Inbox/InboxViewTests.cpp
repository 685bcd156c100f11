#include "Inbox/InboxView.h"

#include "Engines/AccountStore.h"
#include "Foundation/Json.h"
#include "Store/IngestQueries.h"
#include "Store/Workspaces.h"
#include "Support/EngineWorld.h"
#include "Support/Print.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const QString ana = "ct:WHATSAPP:49171@s.whatsapp.net";
const QString ben = "ct:WHATSAPP:49172@s.whatsapp.net";

/// The view on a real database, fed by an engine that the test plays.
class InboxViewTest : public testing::Test, protected EngineWorld {
protected:
    InboxViewTest()
    {
        launcher.expect(FakeLauncher::stays());
        engines.start(account);
        engine().printEvent({ { "type", "status" }, { "state", "open" } });
        settle();
        inbox.appear();
    }

    FakeChild& engine() const { return launcher.last(); }

    void receive(const QString& from, const QString& body, QJsonObject more = {})
    {
        more.insert("type", "message");
        more.insert("convExternalId", from.section(':', 2));
        more.insert("body", body);
        more.insert("providerMsgId", QStringLiteral("m%1").arg(++m_messages));
        if (from == ana || from == ben)
            more.insert("convTitle", from == ana ? "Ana Ruiz" : "Ben");
        if (!more.contains("ts"))
            more.insert("ts", clock.nowMs());
        engine().printEvent(more);
        clock.advance(Milliseconds(110));
    }

    void receiveFromAnaAndBen()
    {
        receive(ana, "hello");
        receive(ben, "good day");
    }

    QStringList column(QAbstractItemModel* model, const QByteArray& role) const
    {
        const int id = model->roleNames().key(role, -1);
        EXPECT_NE(id, -1) << role.constData();
        QStringList values;
        for (int row = 0; row < model->rowCount(); ++row)
            values.append(model->index(row, 0).data(id).toString());
        return values;
    }
    QStringList names() { return column(inbox.contacts(), "name"); }
    QStringList bodies() { return column(inbox.thread()->rows(), "body"); }

    QList<QString> commands(const QString& word) const
    {
        QList<QString> found;
        for (const QJsonObject& command : engine().commands()) {
            if (command.value("cmd") == word)
                found.append(compactJson(command));
        }
        return found;
    }

    int count(const QString& key) const
    {
        for (const QVariant& tab : inbox.tabs()) {
            if (tab.toMap().value("key") == key)
                return tab.toMap().value("count").toInt();
        }
        return -1;
    }

    void type(const QString& text)
    {
        inbox.setSearch(text);
        clock.advance(Milliseconds(250));
    }

    AccountStore accounts { home.paths().applicationSupport };
    Account account = accounts.add("Main", Channel::WhatsApp);
    InboxView inbox { InboxView::Surroundings { engines, accounts, defaults, centre, clock } };
    QAbstractItemModelTester contactTester { inbox.contacts(), QAbstractItemModelTester::FailureReportingMode::Fatal };
    QAbstractItemModelTester hitTester { inbox.messageHits(), QAbstractItemModelTester::FailureReportingMode::Fatal };
    QAbstractItemModelTester threadTester { inbox.thread()->rows(),
        QAbstractItemModelTester::FailureReportingMode::Fatal };

private:
    int m_messages = 0;
};

}

TEST_F(InboxViewTest, aLineOfAnEngineBecomesARowAndAnOpenThread)
{
    EXPECT_EQ(inbox.emptyDetail(), "Pair a WhatsApp account in Accounts — chats appear here.");
    receiveFromAnaAndBen();
    receive(ana, "are you there?");
    EXPECT_EQ(names(), (QStringList { "Ana Ruiz", "Ben" }));
    clock.advance(seconds(1));
    EXPECT_EQ(count("needsMe"), 2);

    inbox.select(ana);
    EXPECT_EQ(bodies(), (QStringList { "", "hello", "are you there?" }));
    EXPECT_EQ(inbox.selected().name, "Ana Ruiz");
    EXPECT_EQ(inbox.selected().unread, 0);
    EXPECT_EQ(engines.openContactId(), ana);
    EXPECT_EQ(engines.unreadTotal(), 1);
    EXPECT_EQ(inbox.replyPlatform(), "WHATSAPP");
    EXPECT_EQ(commands("markRead").size(), 1);
    EXPECT_EQ(cell("SELECT SUM(unread) FROM unified_conversation;"), "1");

    inbox.select({});
    EXPECT_EQ(engines.openContactId(), "");
    EXPECT_TRUE(inbox.thread()->isEmpty());
    EXPECT_EQ(inbox.selected().id, "");
}

TEST_F(InboxViewTest, aBurstReloadsAtMostTenTimesASecond)
{
    receiveFromAnaAndBen();
    inbox.select(ana);
    int reloads = 0;
    QObject::connect(&inbox, &InboxView::changed, [&] { ++reloads; });
    for (int line = 0; line < 1000; ++line) {
        engine().printEvent({ { "type", "message" }, { "convExternalId", ana.section(':', 2) }, { "body", "old" },
            { "providerMsgId", QStringLiteral("h%1").arg(line) }, { "ts", qint64(1'700'000'000'000 + line) },
            { "historical", true } });
        clock.advance(Milliseconds(1));
    }
    EXPECT_GE(reloads, 5);
    EXPECT_LE(reloads, 11);
    clock.advance(seconds(1));
    EXPECT_EQ(bodies().size(), 1000 + 1) << "the oldest thousand, and a date";
    EXPECT_EQ(names().size(), 2);
}

TEST_F(InboxViewTest, oneNewMessageTouchesOneRowOfEachList)
{
    for (int i = 0; i < 30; ++i)
        receive(QStringLiteral("ct:WHATSAPP:%1@s.whatsapp.net").arg(100 + i), "hello");
    receiveFromAnaAndBen();
    inbox.select(ana);
    const QSignalSpy moved(inbox.contacts(), &QAbstractItemModel::rowsMoved);
    const QSignalSpy changed(inbox.contacts(), &QAbstractItemModel::dataChanged);
    const QSignalSpy inserted(inbox.contacts(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy added(inbox.thread()->rows(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy announced(inbox.thread(), &ThreadView::announced);
    receive(ana, "again");
    EXPECT_EQ(moved.size(), 1);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(inserted.size(), 0);
    EXPECT_EQ(added.size(), 1);
    EXPECT_EQ(announced.size(), 1);
    EXPECT_TRUE(announced.first().first().toString().endsWith(": again"));
}

TEST_F(InboxViewTest, aMessageIntoTheOpenThreadIsReadOnlyWhileSomeoneLooks)
{
    receiveFromAnaAndBen();
    inbox.select(ana);
    receive(ana, "one");
    EXPECT_EQ(engines.unreadTotal(), 1) << "Ben's alone";
    EXPECT_EQ(commands("markRead").size(), 2);

    inbox.setOnScreen(false);
    EXPECT_EQ(engines.openContactId(), "") << "a thread that nobody sees notifies";
    receive(ana, "two");
    EXPECT_EQ(engines.unreadTotal(), 2);
    inbox.setOnScreen(true);
    clock.advance(Milliseconds(110));
    EXPECT_EQ(engines.unreadTotal(), 1);
    EXPECT_EQ(engines.openContactId(), ana);
}

TEST_F(InboxViewTest, aSearchWaitsForTheLastKeyAndOpensAtTheMessage)
{
    receiveFromAnaAndBen();
    receive(ben, "the Núñez contract is ready");
    inbox.setSearch("núñ");
    clock.advance(Milliseconds(200));
    inbox.setSearch("contract");
    clock.advance(Milliseconds(249));
    EXPECT_EQ(names().size(), 2) << "the first search was never made";
    clock.advance(Milliseconds(1));
    EXPECT_EQ(names(), QStringList("Ben"));
    EXPECT_EQ(column(inbox.messageHits(), "snippet"), QStringList("the Núñez contract is ready"));

    inbox.openHit("wa:msg:m3");
    EXPECT_EQ(inbox.selectedId(), ben);
    EXPECT_EQ(inbox.jumpMsgId(), "wa:msg:m3");
    EXPECT_EQ(column(inbox.thread()->rows(), "highlighted").last(), "true");
    EXPECT_EQ(inbox.thread()->rowOf("wa:msg:m3"), 2);
    clock.advance(seconds(5));
    EXPECT_EQ(column(inbox.thread()->rows(), "highlighted").last(), "false");

    type("zebra");
    EXPECT_TRUE(inbox.isEmpty());
    EXPECT_EQ(inbox.emptyTitle(), "No conversations match “zebra”");
    inbox.clearActiveEmptyFilter();
    EXPECT_EQ(inbox.search(), "");
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(inbox.messageHits()->rowCount(), 0);
}

TEST_F(InboxViewTest, aStandingSearchFindsWhatArrivesWithoutStartingAgainAtEachMessage)
{
    receive(ana, "invoice one");
    type("invoice");
    int searches = 0;
    QObject::connect(inbox.messageHits(), &QAbstractItemModel::rowsInserted, [&] { ++searches; });
    for (int i = 0; i < 30; ++i)
        receive(ana, QStringLiteral("invoice %1").arg(i));
    EXPECT_LE(searches, 3);
    clock.advance(seconds(3));
    EXPECT_EQ(inbox.messageHits()->rowCount(), 31);
}

TEST_F(InboxViewTest, filtersHideRowsAndTheOpenThreadStays)
{
    receiveFromAnaAndBen();
    inbox.setFilterWord("needsMe");
    EXPECT_EQ(names().size(), 2);
    inbox.moveSelection(1);
    EXPECT_EQ(inbox.selectedId(), ben);
    EXPECT_EQ(names(), QStringList("Ana Ruiz")) << "what was opened needs nobody any more";
    EXPECT_EQ(inbox.selected().name, "Ben");
    inbox.moveSelection(1);
    EXPECT_EQ(inbox.selectedId(), ana);
    EXPECT_EQ(inbox.emptyTitle(), "No conversations need you — view filter active");
    inbox.setFilterWord("nonsense");
    EXPECT_EQ(inbox.filterWord(), "needsMe");
    inbox.clearActiveEmptyFilter();
    EXPECT_EQ(inbox.filterWord(), "all");

    inbox.setChannelFilter("SLACK");
    EXPECT_EQ(inbox.emptyTitle(), "No Slack conversations — channel filter active");
    inbox.clearActiveEmptyFilter();
    inbox.setAccountFilter(account.slug);
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(inbox.accountFilterLabel(), "Main");
    EXPECT_EQ(inbox.channelChoices().first().toMap().value("label"), "WhatsApp");
}

TEST_F(InboxViewTest, arrowsStopAtTheEnds)
{
    receiveFromAnaAndBen();
    inbox.moveSelection(-1);
    EXPECT_EQ(inbox.selectedId(), ben);
    inbox.moveSelection(1);
    inbox.moveSelection(1);
    EXPECT_EQ(inbox.selectedId(), ana);
    EXPECT_EQ(inbox.selectedIndex(), 1);
    inbox.moveSelection(-9);
    EXPECT_EQ(inbox.selectedId(), ben);
}

TEST_F(InboxViewTest, anArchiveCanBeUndoneForAWhile)
{
    receiveFromAnaAndBen();
    inbox.select(ana);
    inbox.archiveSelected();
    EXPECT_EQ(names(), QStringList("Ben"));
    EXPECT_EQ(inbox.selectedId(), "");
    EXPECT_EQ(inbox.undoText(), "Archived Ana Ruiz");
    inbox.undo();
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(inbox.undoText(), "");

    inbox.select(ana);
    inbox.archiveSelected();
    clock.advance(seconds(11));
    EXPECT_EQ(inbox.undoText(), "");
    inbox.undo();
    EXPECT_EQ(names(), QStringList("Ben"));
    inbox.setFilterWord("archived");
    EXPECT_EQ(names(), QStringList("Ana Ruiz"));
    inbox.unarchive(ana);
    EXPECT_EQ(inbox.emptyTitle(), "Nothing archived");
}

TEST_F(InboxViewTest, severalRowsTakeOneAction)
{
    receiveFromAnaAndBen();
    receive("ct:WHATSAPP:1@g.us", "in the group", { { "convTitle", "Team" } });
    inbox.bulk()->toggle(ana);
    inbox.bulk()->toggle(ben);
    EXPECT_EQ(column(inbox.contacts(), "checked"), (QStringList { "false", "true", "true" }));
    inbox.muteChecked();
    EXPECT_EQ(column(inbox.contacts(), "isMuted"), (QStringList { "false", "true", "true" }));
    EXPECT_FALSE(inbox.bulk()->active());
    inbox.bulk()->all();
    inbox.muteChecked();
    inbox.bulk()->all();
    inbox.muteChecked();
    EXPECT_EQ(column(inbox.contacts(), "isMuted"), (QStringList { "false", "false", "false" }));

    inbox.bulk()->toggle(ana);
    inbox.bulk()->toggle(ben);
    inbox.markCheckedRead();
    EXPECT_EQ(engines.unreadTotal(), 1);
    EXPECT_EQ(commands("markRead").size(), 2);

    inbox.select(ana);
    inbox.bulk()->all();
    inbox.archiveChecked();
    EXPECT_TRUE(inbox.isEmpty());
    EXPECT_EQ(inbox.selectedId(), "");
    EXPECT_EQ(inbox.undoText(), "Archived 3 conversations");
    inbox.undo();
    EXPECT_EQ(names().size(), 3);
}

TEST_F(InboxViewTest, thePaletteOpensPeopleAndRunsActions)
{
    receiveFromAnaAndBen();
    inbox.setShowPalette(true);
    inbox.palette()->setQuery("ana");
    inbox.palette()->runHighlighted();
    EXPECT_FALSE(inbox.showPalette());
    EXPECT_EQ(inbox.selectedId(), ana);

    const auto run = [&](const QString& label) {
        inbox.setShowPalette(true);
        inbox.palette()->setQuery(label);
        inbox.palette()->runHighlighted();
    };
    run("mute / unmute");
    EXPECT_TRUE(inbox.selected().isMuted);
    const bool panel = inbox.showCRM();
    run("toggle");
    EXPECT_NE(inbox.showCRM(), panel);
    run("mark all");
    EXPECT_EQ(engines.unreadTotal(), 0);
    run("archive");
    EXPECT_EQ(inbox.selectedId(), "");
    EXPECT_EQ(names(), QStringList("Ben"));
}

TEST_F(InboxViewTest, anotherWorkspaceClearsTheSelectionAndTellsWhy)
{
    receiveFromAnaAndBen();
    inbox.select(ana);
    persistActiveWorkspace(engines.db(), "w1", std::nullopt, LegacyRows::Migrate);
    EXPECT_EQ(inbox.selectedId(), "");
    clock.advance(Milliseconds(110));
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(inbox.workspaceNotice(), "");

    // An empty workspace is left at the next query, in the middle of a reload.
    inbox.select(ana);
    persistActiveWorkspace(engines.db(), "empty", std::nullopt, LegacyRows::Keep);
    clock.advance(seconds(1));
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(inbox.workspaceNotice(), "Workspace changed — showing w1");
    inbox.dismissWorkspaceNotice();
    EXPECT_EQ(inbox.workspaceNotice(), "");
}

TEST_F(InboxViewTest, aMissingPictureIsAskedForOnceAndOnlyOfAConnectedEngine)
{
    receiveFromAnaAndBen();
    EXPECT_EQ(commands("fetchAvatar").size(), 2);
    receive(ana, "again");
    EXPECT_EQ(commands("fetchAvatar").size(), 2);
    engine().printEvent({ { "type", "status" }, { "state", "connecting" } });
    receive("ct:WHATSAPP:3@s.whatsapp.net", "hi");
    EXPECT_EQ(commands("fetchAvatar").size(), 2);
    engine().printEvent({ { "type", "status" }, { "state", "open" } });
    receive(ana, "again");
    EXPECT_EQ(commands("fetchAvatar").size(), 3);

    home.write("a.jpg", "x");
    engine().printEvent({ { "type", "avatar" }, { "jid", ana.section(':', 2) }, { "path", home.path("a.jpg") } });
    engine().printEvent({ { "type", "avatar" }, { "jid", ben.section(':', 2) }, { "path", home.path("gone.jpg") } });
    clock.advance(Milliseconds(110));
    EXPECT_EQ(column(inbox.contacts(), "avatarPath").filter("jpg"), QStringList(home.path("a.jpg")));
}

TEST_F(InboxViewTest, aStaleWebChannelWarnsAndARetryAsksTheWeb)
{
    ensureConversation(engines.db(), "LINKEDIN", "li", "t1", "Carla", clock.nowMs() - 3 * 3'600'000);
    engines.db().exec("INSERT INTO sync_health(source, status, updated_at) VALUES('inbox','error',1);");
    inbox.reload();
    ASSERT_EQ(inbox.stalenessBanners().size(), 1);
    const QVariantMap banner = inbox.stalenessBanners().first().toMap();
    EXPECT_EQ(banner.value("text"), "LinkedIn last synced 3 hours ago — web connection degraded");
    inbox.retry("LINKEDIN");
    EXPECT_EQ(cell("SELECT kind || source || status FROM sync_command;"), "web_pullinboxpending");
    EXPECT_TRUE(inbox.stalenessBanners().first().toMap().value("queued").toBool());
    engines.db().exec("UPDATE sync_health SET status='ok';");
    inbox.reload();
    EXPECT_TRUE(inbox.stalenessBanners().isEmpty());
}

TEST_F(InboxViewTest, aBannerOfAMessageOpensItsPersonWhereverTheListStands)
{
    receiveFromAnaAndBen();
    inbox.setFilterWord("archived");
    centre.post(notifications::openConversation, ana);
    EXPECT_EQ(inbox.selectedId(), ana);
    EXPECT_EQ(bodies().last(), "hello");
    EXPECT_EQ(inbox.selected().name, "+49171") << "a row that is not listed is named by its address";
    inbox.setFilterWord("all");
    EXPECT_EQ(inbox.selected().name, "Ana Ruiz");
    centre.post(notifications::openConversation, QString());
    EXPECT_EQ(inbox.selectedId(), ana);
}

TEST_F(InboxViewTest, atMidnightTodayIsAnotherDay)
{
    receive(ana, "hello");
    inbox.setViewModeWord("messages");
    EXPECT_EQ(column(inbox.contacts(), "dateGroup"), QStringList("Today"));
    clock.advance(seconds(86'400));
    EXPECT_EQ(column(inbox.contacts(), "dateGroup"), QStringList("Yesterday"));
    EXPECT_EQ(column(inbox.contacts(), "timeText"), QStringList("Yesterday"));
}

TEST_F(InboxViewTest, olderMessagesAreAskedForAndTheControlComesBack)
{
    receiveFromAnaAndBen();
    inbox.select(ana);
    ThreadView& thread = *inbox.thread();
    EXPECT_TRUE(thread.canLoadOlder());
    thread.loadOlder();
    EXPECT_EQ(thread.loadOlderText(), "Loading older messages…");
    thread.loadOlder();
    EXPECT_EQ(commands("loadMore").size(), 1);
    clock.advance(seconds(4));
    EXPECT_FALSE(thread.loadingMore());
    engines.stop(account);
    thread.loadOlder();
    EXPECT_EQ(thread.errorText(), "Account " + account.slug + " is not connected");
    inbox.select(ben);
    EXPECT_EQ(thread.errorText(), "");
    EXPECT_FALSE(thread.loadingMore());
}

TEST_F(InboxViewTest, aMediumIsFetchedAndAReactionIsKept)
{
    receive(ana, "", { { "mediaType", "image" } });
    EXPECT_EQ(column(inbox.contacts(), "snippet"), QStringList("Image"));
    inbox.select(ana);
    ThreadView& thread = *inbox.thread();
    const auto last = [&](const QByteArray& role) {
        return column(thread.rows(), role).last();
    };
    EXPECT_EQ(last("mediaState"), "download");
    thread.fetchMedia("wa:msg:m1");
    EXPECT_EQ(last("mediaStateText"), "Fetching from WhatsApp...");
    EXPECT_EQ(commands("downloadMedia").size(), 1);
    engine().printEvent({ { "type", "media" }, { "providerMsgId", "m1" }, { "state", "failed" } });
    clock.advance(Milliseconds(110));
    EXPECT_EQ(last("mediaState"), "failed");
    home.write("a.png", "x");
    engine().printEvent({ { "type", "media" }, { "providerMsgId", "m1" }, { "state", "success" },
        { "mediaPath", home.path("a.png") } });
    clock.advance(Milliseconds(110));
    EXPECT_EQ(last("mediaState"), "ready");
    EXPECT_EQ(last("mediaTitle"), "a.png");

    thread.react("wa:msg:m1", "👍");
    EXPECT_EQ(last("reaction"), "👍");
    EXPECT_EQ(commands("react"),
        QStringList(R"({"chatId":"49171@s.whatsapp.net","cmd":"react","emoji":"👍","fromMe":false,"messageId":"m1"})"));
    engines.stop(account);
    thread.react("wa:msg:m1", "🎉");
    EXPECT_EQ(last("reaction"), "👍") << "what no engine took is not shown";
}

TEST_F(InboxViewTest, theReplyGoesWhereItLastWent)
{
    receiveFromAnaAndBen();
    ensureConversation(engines.db(), "EMAIL", "mail", "ana@x.de", "Ana Ruiz", 1);
    engines.db().exec("UPDATE unified_conversation SET contact_id='" + ana + "' WHERE channel='EMAIL';");
    inbox.reload();
    defaults.setText("nimb.replyPlatform." + ana, "EMAIL");
    inbox.select(ana);
    EXPECT_EQ(inbox.replyPlatform(), "EMAIL");
    defaults.setText("nimb.replyPlatform." + ana, "SLACK");
    inbox.select(ana);
    EXPECT_EQ(inbox.replyPlatform(), inbox.selected().platforms.first()) << "a channel that the person has not";
}
