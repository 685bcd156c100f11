#include "Foundation/Literals.h"
#include "InboxViewTest.h"
#include "Store/Core/Workspaces.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/CrmRecords.h"

using namespace corvane;

TEST_F(InboxViewTest, aLineOfAnEngineBecomesARowAndAnOpenThread)
{
    EXPECT_EQ(inbox.filters()->emptyDetail(), "Pair a WhatsApp account in Accounts — chats appear here.");
    receiveFromAnaAndBen();
    receive(ana, "are you there?");
    EXPECT_EQ(names(), (QStringList { "Ana Ruiz", "Ben" }));
    clock.advance(seconds(1));
    EXPECT_EQ(count("needsMe"), 2);

    inbox.person()->select(ben);
    inbox.person()->select(ana);
    EXPECT_EQ(bodies(), (QStringList { "", "hello", "are you there?" }));
    EXPECT_EQ(inbox.person()->selected().name, "Ana Ruiz");
    clock.advance(Milliseconds(999));
    EXPECT_EQ(engines.unreadTotal(), 3) << "who passes on the way reads nothing";
    clock.advance(Milliseconds(1));
    EXPECT_EQ(inbox.person()->selected().unread, 0);
    EXPECT_EQ(engines.openContactId(), ana);
    EXPECT_EQ(engines.unreadTotal(), 1);
    EXPECT_EQ(inbox.reply()->composer()->routing()->replyPlatform(), "WHATSAPP");
    EXPECT_EQ(commands("markRead").size(), 1);
    EXPECT_EQ(cell("SELECT SUM(unread) FROM unified_conversation;"), "1");

    inbox.person()->select({});
    EXPECT_EQ(engines.openContactId(), "");
    EXPECT_TRUE(inbox.person()->thread()->isEmpty());
    EXPECT_EQ(inbox.person()->selected().id, "");
}

TEST_F(InboxViewTest, aBurstReloadsAtMostTenTimesASecond)
{
    receiveFromAnaAndBen();
    inbox.person()->select(ana);
    int reloads = 0;
    QObject::connect(inbox.list(), &ContactListView::changed, [&] { ++reloads; });
    for (int line = 0; line < 1000; ++line) {
        engine().printEvent({ { "type", "message" }, { "convExternalId", ana.section(':', 2) }, { "body", "old" },
            { "providerMsgId", u"h%1"_s.arg(line) }, { "ts", qint64(1'700'000'000'000 + line) },
            { "historical", true } });
        clock.advance(Milliseconds(1));
    }
    EXPECT_GE(reloads, 5);
    EXPECT_LE(reloads, 11);
    clock.advance(seconds(1));
    EXPECT_EQ(bodies().size(), 1000 + 2) << "the newest thousand, and two dates";
    EXPECT_EQ(names().size(), 2);
}

TEST_F(InboxViewTest, oneNewMessageTouchesOneRowOfEachList)
{
    for (int i = 0; i < 30; ++i)
        receive(u"ct:WHATSAPP:%1@s.whatsapp.net"_s.arg(100 + i), "hello");
    receiveFromAnaAndBen();
    inbox.person()->select(ana);
    const QSignalSpy moved(inbox.list()->contacts(), &QAbstractItemModel::rowsMoved);
    const QSignalSpy changed(inbox.list()->contacts(), &QAbstractItemModel::dataChanged);
    const QSignalSpy inserted(inbox.list()->contacts(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy added(inbox.person()->thread()->rows(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy announced(inbox.person()->thread(), &ThreadView::announced);
    receive(ana, "again");
    EXPECT_EQ(moved.size(), 1);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(inserted.size(), 0);
    EXPECT_EQ(added.size(), 1);
    EXPECT_EQ(announced.size(), 1);
    EXPECT_TRUE(announced.first().first().toString().endsWith(": again"));
}

TEST_F(InboxViewTest, aSearchWaitsForTheLastKeyAndOpensAtTheMessage)
{
    receiveFromAnaAndBen();
    receive(ben, "the Núñez contract is ready");
    inbox.filters()->setSearch("núñ");
    clock.advance(Milliseconds(200));
    inbox.filters()->setSearch("contract");
    clock.advance(Milliseconds(249));
    EXPECT_EQ(names().size(), 2) << "the first search was never made";
    clock.advance(Milliseconds(1));
    awaitHits();
    EXPECT_EQ(names(), QStringList("Ben"));
    EXPECT_EQ(
        column(inbox.list()->results()->messages(), "snippet"), QStringList("the Núñez <b>contract</b> is ready"));

    inbox.person()->openHit("wa:msg:m3");
    EXPECT_EQ(inbox.person()->selectedId(), ben);
    EXPECT_EQ(inbox.person()->jumpMsgId(), "wa:msg:m3");
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "highlighted").last(), "true");
    EXPECT_EQ(inbox.person()->thread()->rowOf("wa:msg:m3"), 2);
    clock.advance(seconds(5));
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "highlighted").last(), "false");

    receive(ben, "Yes.\n> an old invoice");
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "quote").last(), "");
    type("invoice");
    inbox.person()->openHit("wa:msg:m4");
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "quote").last(), "an old invoice") << "what was found is shown";

    type("zebra");
    EXPECT_TRUE(inbox.list()->isEmpty());
    EXPECT_EQ(inbox.filters()->emptyTitle(), "No conversations match “zebra”");
    inbox.filters()->clearActiveEmptyFilter();
    EXPECT_EQ(inbox.filters()->search(), "");
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(column(inbox.list()->contacts(), "snippet").first(), "Yes.");
    EXPECT_EQ(inbox.list()->results()->messages()->rowCount(), 0);
}

TEST_F(InboxViewTest, aSearchFindsOtherRecordsInGroupsAndLeadsToThem)
{
    receiveFromAnaAndBen();
    for (int i = 0; i < 7; ++i)
        addNote(engines.db(), ana, u"kiln <%1>"_s.arg(i));
    insertCRMTask(engines.db(), NewTask { u"Sweep the kiln"_s, {} });
    QList<FoundRecord> chosen;
    QObject::connect(
        inbox.list()->results(), &SearchResults::recordChosen, [&](const FoundRecord& record, const QString& words) {
            EXPECT_EQ(words, "kiln");
            chosen.append(record);
        });
    const auto search = [this](const QString& typed) {
        inbox.filters()->setSearch(typed);
        clock.advance(Milliseconds(250));
        ASSERT_TRUE(await([this] { return !inbox.list()->results()->pending(); }));
    };
    search(u"kiln"_s);
    HoldingListModel* const records = inbox.list()->results()->records();
    EXPECT_EQ(column(records, "heading"), QStringList({ "Notes", "", "", "", "", "Tasks" }));
    EXPECT_EQ(column(records, "more").at(4), "All notes");
    EXPECT_EQ(column(records, "snippet").first(), "<b>kiln</b> &lt;6&gt;");
    EXPECT_EQ(column(records, "opens").last(), "false") << "it belongs to nobody, and no screen shows it";
    EXPECT_FALSE(inbox.list()->isEmpty());
    inbox.list()->results()->openRecord(column(records, "id").first());
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.first().personId, ana);

    inbox.list()->results()->showGroup(column(records, "id").first());
    EXPECT_EQ(inbox.filters()->search(), "kiln in:notes");
    ASSERT_TRUE(await([&] { return records->rowCount() == 7; }));

    search(u"kiln before:soon"_s);
    EXPECT_TRUE(inbox.list()->isEmpty());
    EXPECT_EQ(inbox.filters()->emptyTitle(), "The search is not understood");
    EXPECT_TRUE(inbox.filters()->emptyDetail().startsWith(u"“soon” is not understood: "_s));
    search(u"kiln from:"_s);
    EXPECT_EQ(inbox.filters()->searchHint(), "After from: comes a part of a name, or me.");
    EXPECT_EQ(records->rowCount(), 6) << "the rest is searched meanwhile";
}

TEST_F(InboxViewTest, aStandingSearchFindsWhatArrivesWithoutStartingAgainAtEachMessage)
{
    receive(ana, "invoice one");
    type("invoice");
    int searches = 0;
    QObject::connect(inbox.list()->results()->messages(), &QAbstractItemModel::rowsInserted, [&] { ++searches; });
    for (int i = 0; i < 30; ++i)
        receive(ana, u"invoice %1"_s.arg(i));
    EXPECT_LE(searches, 3);
    clock.advance(seconds(3));
    EXPECT_TRUE(await([this] {
        clock.advance(seconds(1));
        return inbox.list()->results()->messages()->rowCount() == 31;
    }));
}

TEST_F(InboxViewTest, aLongSearchTellsThatItRunsAndShowsNothingOld)
{
    receive(ana, "invoice one");
    type("invoice");
    inbox.filters()->setSearch("nothing like it");
    clock.advance(Milliseconds(250));
    EXPECT_TRUE(inbox.list()->results()->pending());
    EXPECT_FALSE(inbox.list()->results()->searching());
    EXPECT_FALSE(inbox.list()->isEmpty()) << "nobody knows yet";
    EXPECT_EQ(inbox.list()->results()->messages()->rowCount(), 1) << "a quick search does not flicker";
    clock.advance(Milliseconds(150));
    EXPECT_TRUE(inbox.list()->results()->searching());
    EXPECT_EQ(inbox.list()->results()->messages()->rowCount(), 0);
    EXPECT_FALSE(inbox.list()->isEmpty());
    awaitHits();
    EXPECT_FALSE(inbox.list()->results()->searching());
    EXPECT_TRUE(inbox.list()->isEmpty());
}

TEST_F(InboxViewTest, anotherWorkspaceClearsTheSelectionAndTellsWhy)
{
    receiveFromAnaAndBen();
    inbox.person()->select(ana);
    persistActiveWorkspace(engines.db(), "w1", std::nullopt, LegacyRows::Migrate);
    EXPECT_EQ(inbox.person()->selectedId(), "");
    clock.advance(Milliseconds(110));
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(inbox.notices()->workspaceNotice(), "");

    // The next query leaves an empty workspace, in the middle of a reload.
    inbox.person()->select(ana);
    persistActiveWorkspace(engines.db(), "empty", std::nullopt, LegacyRows::Keep);
    clock.advance(seconds(1));
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(inbox.notices()->workspaceNotice(), "Workspace changed — showing w1");
    inbox.notices()->dismissWorkspaceNotice();
    EXPECT_EQ(inbox.notices()->workspaceNotice(), "");
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

    home.write("share/Corvane/media/main/a.jpg", "x");
    engine().printEvent({ { "type", "avatar" }, { "jid", ana.section(':', 2) },
        { "path", home.path("share/Corvane/media/main/a.jpg") } });
    engine().printEvent({ { "type", "avatar" }, { "jid", ben.section(':', 2) },
        { "path", home.path("share/Corvane/media/main/gone.jpg") } });
    clock.advance(Milliseconds(110));
    EXPECT_EQ(column(inbox.list()->contacts(), "avatarPath").filter("jpg"),
        QStringList(home.path("share/Corvane/media/main/a.jpg")));
}

TEST_F(InboxViewTest, aStaleWebChannelWarnsAndARetryAsksTheWeb)
{
    ensureConversation(engines.db(), "LINKEDIN", "li", "t1", "Carla", clock.nowMs() - 3 * 3'600'000);
    engines.db().exec("INSERT INTO sync_health(source, status, updated_at) VALUES('inbox','error',1);");
    inbox.list()->reload();
    ASSERT_EQ(inbox.notices()->stalenessBanners().size(), 1);
    EXPECT_EQ(
        inbox.notices()->stalenessBanners().first().text, "LinkedIn last synced 3 hours ago — web connection degraded");
    inbox.notices()->retry("LINKEDIN");
    EXPECT_EQ(cell("SELECT kind || source || status FROM sync_command;"), "web_pullinboxpending");
    EXPECT_TRUE(inbox.notices()->stalenessBanners().first().queued);
    engines.db().exec("UPDATE sync_health SET status='ok';");
    inbox.list()->reload();
    EXPECT_TRUE(inbox.notices()->stalenessBanners().isEmpty());
}

TEST_F(InboxViewTest, atMidnightTodayIsAnotherDay)
{
    receive(ana, "hello");
    inbox.filters()->setViewModeWord("messages");
    EXPECT_EQ(column(inbox.list()->contacts(), "dateGroup"), QStringList("Today"));
    clock.advance(seconds(86'400));
    EXPECT_EQ(column(inbox.list()->contacts(), "dateGroup"), QStringList("Yesterday"));
    EXPECT_EQ(column(inbox.list()->contacts(), "timeText"), QStringList("Yesterday"));
}

TEST_F(InboxViewTest, aLongThreadIsWalkedPageByPageAndOnlyItsNewestMessageReadsIt)
{
    receiveFromAnaAndBen();
    rememberFrom(ana, 4500);
    ThreadView& thread = *inbox.person()->thread();
    const auto shown = [&] {
        QStringList said = bodies();
        said.removeAll(QString());
        return said;
    };
    const auto holds = [&](int first, int last) {
        const QStringList said = shown();
        return said.size() == last - first + 1 && said.first() == u"old %1"_s.arg(first)
            && said.last() == (last > 4500 ? u"hello"_s : u"old %1"_s.arg(last));
    };
    inbox.person()->select(ana);
    EXPECT_TRUE(holds(3502, 4501));
    EXPECT_FALSE(thread.history()->canLoadOlder()) << "the database has more";
    thread.extendOlder();
    thread.extendOlder();
    EXPECT_TRUE(holds(1502, 4501));
    thread.extendOlder();
    EXPECT_TRUE(holds(502, 3501)) << "pages far away are dropped";
    restInThread();
    receive(ana, "while somebody reads far above");
    restInThread();
    EXPECT_TRUE(holds(502, 3501));
    EXPECT_EQ(engines.unreadTotal(), 3);

    thread.extendOlder();
    EXPECT_TRUE(holds(1, 3000));
    EXPECT_TRUE(thread.history()->canLoadOlder());
    thread.extendNewer();
    thread.extendNewer();
    EXPECT_EQ(shown().last(), "while somebody reads far above");
    restInThread();
    EXPECT_EQ(engines.unreadTotal(), 1) << "Ben's alone";

    inbox.person()->jumpTo("old700");
    EXPECT_TRUE(holds(200, 1199));
    EXPECT_EQ(inbox.person()->jumpMsgId(), "old700");
    thread.showNewest();
    EXPECT_EQ(shown().size(), 1000);
    EXPECT_FALSE(thread.hasNewer());
    thread.showOldest();
    EXPECT_TRUE(holds(1, 1000));

    inbox.person()->jumpTo("gone");
    EXPECT_EQ(thread.errorText(), "This message is no longer in the conversation.");
}

TEST_F(InboxViewTest, historyComesInAboveAReaderAndAGroupStaysAGroup)
{
    const QString crew = "ct:WHATSAPP:12@g.us";
    receive(crew, "both", { { "sender", "Lena" } });
    inbox.person()->select(crew);
    inbox.person()->thread()->reading()->setNewestInSight(false);
    receive(crew, "before", { { "sender", "Omar" }, { "historical", true }, { "ts", clock.nowMs() - 60'000 } });
    clock.advance(seconds(1));
    EXPECT_EQ(bodies(), (QStringList { "", "before", "both" }));
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "senderLabel"), (QStringList { "", "Omar", "Lena" }));
}
