#include "InboxViewTest.h"

#include "Inbox/InboxCommands.h"
#include "Store/Messages/IngestQueries.h"

using namespace corvane;

TEST_F(InboxViewTest, aMessageIntoTheOpenThreadIsReadOnlyWhileSomeoneLooks)
{
    receiveFromAnaAndBen();
    inbox.select(ana);
    inbox.thread()->reading()->touch();
    EXPECT_EQ(engines.unreadTotal(), 1) << "a key in it is as good as a second's rest";
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

TEST_F(InboxViewTest, filtersHideRowsAndTheOpenThreadStays)
{
    receiveFromAnaAndBen();
    inbox.setFilterWord("needsMe");
    EXPECT_EQ(names().size(), 2);
    inbox.moveSelection(1);
    EXPECT_EQ(inbox.selectedId(), ben);
    restInThread();
    clock.advance(Milliseconds(110));
    EXPECT_EQ(names(), QStringList("Ana Ruiz")) << "what was read needs nobody any more";
    EXPECT_EQ(inbox.selected().name, "Ben");
    inbox.moveSelection(1);
    EXPECT_EQ(inbox.selectedId(), ana);
    restInThread();
    clock.advance(Milliseconds(110));
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
    EXPECT_EQ(inbox.channelChoices().first().label, "WhatsApp");
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
    EXPECT_EQ(inbox.archiveLabel(), "Unarchive");
    inbox.select(ana);
    inbox.archiveSelected();
    EXPECT_EQ(inbox.emptyTitle(), "Nothing archived");
    EXPECT_EQ(inbox.undoText(), "Unarchived Ana Ruiz");
    inbox.undo();
    EXPECT_EQ(names(), QStringList("Ana Ruiz"));
}

TEST_F(InboxViewTest, anUndoneArchiveLeavesWhatWasArchivedBeforeAsItWas)
{
    receiveFromAnaAndBen();
    ensureConversation(engines.db(), "EMAIL", "mail", "ana@x.de", "Ana Ruiz", 1);
    engines.db().exec("UPDATE unified_conversation SET contact_id='" + ana
        + "', archived_at=7 WHERE channel='EMAIL'; UPDATE unified_conversation SET unread=0;");
    const QString before = cell("SELECT group_concat(archived_at, ',') FROM unified_conversation;");
    inbox.select(ana);
    inbox.archiveSelected();
    EXPECT_NE(cell("SELECT archived_at FROM unified_conversation WHERE channel='EMAIL';"), "7");
    inbox.undo();
    EXPECT_EQ(cell("SELECT group_concat(archived_at, ',') FROM unified_conversation;"), before);
    EXPECT_EQ(before, "7");
}

TEST_F(InboxViewTest, aThreadIsMarkedUnreadAndReadAgain)
{
    receiveFromAnaAndBen();
    inbox.select(ana);
    restInThread();
    inbox.toggleRead(ana);
    clock.advance(seconds(2));
    EXPECT_EQ(inbox.selectedId(), "") << "an open thread would count as read again";
    EXPECT_EQ(column(inbox.contacts(), "unread"), (QStringList { "1", "1" }));
    inbox.toggleRead(ana);
    EXPECT_EQ(column(inbox.contacts(), "unread"), (QStringList { "1", "0" }));
}

TEST_F(InboxViewTest, aListThatNobodySeesIsReadWhenItShowsAgain)
{
    receiveFromAnaAndBen();
    int reads = 0;
    QObject::connect(&inbox, &InboxView::changed, [&] { ++reads; });
    inbox.setShown(false);
    receive(ana, "hidden");
    clock.advance(seconds(5));
    EXPECT_EQ(reads, 0);
    centre.post(notifications::openConversation, ana);
    EXPECT_EQ(bodies().last(), "hidden");
    inbox.setShown(true);
    clock.advance(Milliseconds(110));
    EXPECT_EQ(column(inbox.contacts(), "snippet"), (QStringList { "hidden", "good day" }));
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
    Commands commands;
    commands.add(inboxCommands(inbox));
    inbox.palette()->setCommands(commands);
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

    run(" good day ");
    EXPECT_EQ(inbox.search(), "good day");
    awaitHits();
    EXPECT_EQ(column(inbox.messageHits(), "snippet"), QStringList("<b>good day</b>"));
    run("new mess");
    EXPECT_TRUE(inbox.composeSheet()->shown());
}

TEST_F(InboxViewTest, aBannerOfAMessageOpensItsPersonWhereverTheListStands)
{
    receiveFromAnaAndBen();
    inbox.setFilterWord("archived");
    centre.post(notifications::openConversation, ana);
    EXPECT_EQ(inbox.selectedId(), ana);
    EXPECT_EQ(bodies().last(), "hello");
    EXPECT_EQ(inbox.selected().name, "Ana Ruiz") << "who is not listed is called by the name that they have";
    inbox.setFilterWord("all");
    EXPECT_EQ(inbox.selected().name, "Ana Ruiz");
    centre.post(notifications::openConversation, QString());
    EXPECT_EQ(inbox.selectedId(), ana);

    const QString crew = "ct:WHATSAPP:12@g.us";
    receive(crew, "both", { { "sender", "Lena" } });
    engine().printEvent({ { "type", "message" }, { "convExternalId", "12@g.us" }, { "body", "[Document] plan.pdf" },
        { "providerMsgId", "m3/1" }, { "mediaType", "document" }, { "historical", true }, { "sender", "Lena" },
        { "ts", clock.nowMs() } });
    settle();
    inbox.setFilterWord("archived");
    centre.post(notifications::openConversation, crew);
    EXPECT_EQ(column(inbox.thread()->rows(), "senderLabel").at(1), "Lena");
    EXPECT_EQ(column(inbox.thread()->rows(), "unreadText"), QStringList({ "", "1 unread message", "" }))
        << "a file comes with its message";
}

TEST_F(InboxViewTest, olderMessagesAreAskedForAndTheControlComesBack)
{
    receiveFromAnaAndBen();
    inbox.select(ana);
    ThreadView& thread = *inbox.thread();
    EXPECT_TRUE(thread.canLoadOlder());
    thread.loadMore();
    EXPECT_EQ(thread.loadOlderText(), "Loading older messages…");
    thread.loadMore();
    EXPECT_EQ(commands("loadMore").size(), 1);
    clock.advance(seconds(4));
    EXPECT_FALSE(thread.loadingMore());
    engines.stop(account);
    thread.loadMore();
    EXPECT_EQ(inbox.composer()->sendError(), "Account " + account.slug + " is not connected");
    inbox.select(ben);
    EXPECT_EQ(inbox.composer()->sendError(), "");
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
    home.write("share/Corvane/media/main/a.png", "x");
    engine().printEvent({ { "type", "media" }, { "providerMsgId", "m1" }, { "state", "success" },
        { "mediaPath", home.path("share/Corvane/media/main/a.png") } });
    clock.advance(Milliseconds(110));
    EXPECT_EQ(last("mediaState"), "ready");
    EXPECT_EQ(last("mediaTitle"), "a.png");

    // The person's newest conversation is another, and the id holds colons.
    engine().printEvent({ { "type", "message" }, { "convExternalId", ana.section(':', 2) }, { "body", "hi" },
        { "providerMsgId", "true_1:2:3" }, { "ts", clock.nowMs() } });
    receive(ben, "later");
    engines.db().run("UPDATE unified_conversation SET contact_id=? WHERE external_id='49172@s.whatsapp.net';", { ana });
    thread.reload();
    thread.react("wa:msg:true_1:2:3", "👍");
    EXPECT_EQ(engines.db().scalar("SELECT reaction FROM unified_message WHERE provider_msg_id='true_1:2:3';"), "👍");
    EXPECT_EQ(commands("react"),
        QStringList(
            R"({"chatId":"49171@s.whatsapp.net","cmd":"react","emoji":"👍","fromMe":false,"messageId":"true_1:2:3"})"));
    engines.stop(account);
    thread.react("wa:msg:m1", "🎉");
    EXPECT_EQ(engines.db().scalar("SELECT reaction FROM unified_message WHERE provider_msg_id='m1';"), std::nullopt)
        << "what no engine took is not shown";
}

TEST_F(InboxViewTest, theReplyGoesWhereItLastWent)
{
    receiveFromAnaAndBen();
    ensureConversation(engines.db(), "EMAIL", "mail", "ana@x.de", "Ana Ruiz", 1);
    engines.db().exec("UPDATE unified_conversation SET contact_id='" + ana + "' WHERE channel='EMAIL';");
    inbox.reload();
    defaults.setText("nimb.replyPlatform." + ana, "EMAIL");
    inbox.select(ana);
    EXPECT_EQ(inbox.composer()->replyPlatform(), "EMAIL");
    defaults.setText("nimb.replyPlatform." + ana, "SLACK");
    inbox.select(ben);
    inbox.select(ana);
    EXPECT_EQ(inbox.composer()->replyPlatform(), inbox.selected().platforms.first())
        << "a channel that the person has not";
}
