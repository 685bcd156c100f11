#include "InboxViewTest.h"

#include "Inbox/InboxCommands.h"
#include "Store/Messages/IngestQueries.h"

using namespace corvane;

TEST_F(InboxViewTest, aMessageIntoTheOpenThreadIsReadOnlyWhileSomeoneLooks)
{
    receiveFromAnaAndBen();
    inbox.person()->select(ana);
    inbox.person()->thread()->reading()->touch();
    EXPECT_EQ(engines.unreadTotal(), 1) << "a key in it is as good as a second's rest";
    receive(ana, "one");
    EXPECT_EQ(engines.unreadTotal(), 1) << "Ben's alone";
    EXPECT_EQ(commands("markRead").size(), 2);

    inbox.person()->setOnScreen(false);
    EXPECT_EQ(engines.openContactId(), "") << "a thread that nobody sees notifies";
    receive(ana, "two");
    EXPECT_EQ(engines.unreadTotal(), 2);
    inbox.person()->setOnScreen(true);
    clock.advance(Milliseconds(110));
    EXPECT_EQ(engines.unreadTotal(), 1);
    EXPECT_EQ(engines.openContactId(), ana);
}

TEST_F(InboxViewTest, filtersHideRowsAndTheOpenThreadStays)
{
    receiveFromAnaAndBen();
    inbox.filters()->setFilterWord("needsMe");
    EXPECT_EQ(names().size(), 2);
    inbox.person()->moveSelection(1);
    EXPECT_EQ(inbox.person()->selectedId(), ben);
    restInThread();
    clock.advance(Milliseconds(110));
    EXPECT_EQ(names(), QStringList("Ana Ruiz")) << "what was read needs nobody any more";
    EXPECT_EQ(inbox.person()->selected().name, "Ben");
    inbox.person()->moveSelection(1);
    EXPECT_EQ(inbox.person()->selectedId(), ana);
    restInThread();
    clock.advance(Milliseconds(110));
    EXPECT_EQ(inbox.filters()->emptyTitle(), "No conversations need you — view filter active");
    inbox.filters()->setFilterWord("nonsense");
    EXPECT_EQ(inbox.filters()->filterWord(), "needsMe");
    inbox.filters()->clearActiveEmptyFilter();
    EXPECT_EQ(inbox.filters()->filterWord(), "all");

    inbox.filters()->setChannelFilter("SLACK");
    EXPECT_EQ(inbox.filters()->emptyTitle(), "No Slack conversations — channel filter active");
    inbox.filters()->clearActiveEmptyFilter();
    inbox.filters()->setAccountFilter(account.slug);
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(inbox.filters()->accountFilterLabel(), "Main");
    EXPECT_EQ(inbox.filters()->channelChoices().first().label, "WhatsApp");
}

TEST_F(InboxViewTest, arrowsStopAtTheEnds)
{
    receiveFromAnaAndBen();
    inbox.person()->moveSelection(-1);
    EXPECT_EQ(inbox.person()->selectedId(), ben);
    inbox.person()->moveSelection(1);
    inbox.person()->moveSelection(1);
    EXPECT_EQ(inbox.person()->selectedId(), ana);
    EXPECT_EQ(inbox.list()->selectedIndex(), 1);
    inbox.person()->moveSelection(-9);
    EXPECT_EQ(inbox.person()->selectedId(), ben);
}

TEST_F(InboxViewTest, anArchiveCanBeUndoneForAWhile)
{
    receiveFromAnaAndBen();
    inbox.person()->select(ana);
    inbox.actions()->archiveSelected();
    EXPECT_EQ(names(), QStringList("Ben"));
    EXPECT_EQ(inbox.person()->selectedId(), "");
    EXPECT_EQ(inbox.actions()->undoText(), "Archived Ana Ruiz");
    inbox.actions()->undo();
    EXPECT_EQ(names().size(), 2);
    EXPECT_EQ(inbox.actions()->undoText(), "");

    inbox.person()->select(ana);
    inbox.actions()->archiveSelected();
    clock.advance(seconds(11));
    EXPECT_EQ(inbox.actions()->undoText(), "");
    inbox.actions()->undo();
    EXPECT_EQ(names(), QStringList("Ben"));
    inbox.filters()->setFilterWord("archived");
    EXPECT_EQ(names(), QStringList("Ana Ruiz"));
    EXPECT_EQ(inbox.actions()->archiveLabel(), "Unarchive");
    inbox.person()->select(ana);
    inbox.actions()->archiveSelected();
    EXPECT_EQ(inbox.filters()->emptyTitle(), "Nothing archived");
    EXPECT_EQ(inbox.actions()->undoText(), "Unarchived Ana Ruiz");
    inbox.actions()->undo();
    EXPECT_EQ(names(), QStringList("Ana Ruiz"));
}

TEST_F(InboxViewTest, anUndoneArchiveLeavesWhatWasArchivedBeforeAsItWas)
{
    receiveFromAnaAndBen();
    ensureConversation(engines.db(), "EMAIL", "mail", "ana@x.de", "Ana Ruiz", 1);
    engines.db().exec("UPDATE unified_conversation SET contact_id='" + ana
        + "', archived_at=7 WHERE channel='EMAIL'; UPDATE unified_conversation SET unread=0;");
    const QString before = cell("SELECT group_concat(archived_at, ',') FROM unified_conversation;");
    inbox.person()->select(ana);
    inbox.actions()->archiveSelected();
    EXPECT_NE(cell("SELECT archived_at FROM unified_conversation WHERE channel='EMAIL';"), "7");
    inbox.actions()->undo();
    EXPECT_EQ(cell("SELECT group_concat(archived_at, ',') FROM unified_conversation;"), before);
    EXPECT_EQ(before, "7");
}

TEST_F(InboxViewTest, aThreadIsMarkedUnreadAndReadAgain)
{
    receiveFromAnaAndBen();
    inbox.person()->select(ana);
    restInThread();
    inbox.actions()->toggleRead(ana);
    clock.advance(seconds(2));
    EXPECT_EQ(inbox.person()->selectedId(), "") << "an open thread would count as read again";
    EXPECT_EQ(column(inbox.list()->contacts(), "unread"), (QStringList { "1", "1" }));
    inbox.actions()->toggleRead(ana);
    EXPECT_EQ(column(inbox.list()->contacts(), "unread"), (QStringList { "1", "0" }));
}

TEST_F(InboxViewTest, aListThatNobodySeesIsReadWhenItShowsAgain)
{
    receiveFromAnaAndBen();
    int reads = 0;
    QObject::connect(inbox.list(), &ContactListView::changed, [&] { ++reads; });
    inbox.list()->setShown(false);
    receive(ana, "hidden");
    clock.advance(seconds(5));
    EXPECT_EQ(reads, 0);
    centre.post(notifications::openConversation, ana);
    EXPECT_EQ(bodies().last(), "hidden");
    inbox.list()->setShown(true);
    clock.advance(Milliseconds(110));
    EXPECT_EQ(column(inbox.list()->contacts(), "snippet"), (QStringList { "hidden", "good day" }));
}

TEST_F(InboxViewTest, severalRowsTakeOneAction)
{
    receiveFromAnaAndBen();
    receive("ct:WHATSAPP:1@g.us", "in the group", { { "convTitle", "Team" } });
    inbox.actions()->bulk()->toggle(ana);
    inbox.actions()->bulk()->toggle(ben);
    EXPECT_EQ(column(inbox.list()->contacts(), "checked"), (QStringList { "false", "true", "true" }));
    inbox.actions()->muteChecked();
    EXPECT_EQ(column(inbox.list()->contacts(), "isMuted"), (QStringList { "false", "true", "true" }));
    EXPECT_FALSE(inbox.actions()->bulk()->active());
    inbox.actions()->bulk()->all();
    inbox.actions()->muteChecked();
    inbox.actions()->bulk()->all();
    inbox.actions()->muteChecked();
    EXPECT_EQ(column(inbox.list()->contacts(), "isMuted"), (QStringList { "false", "false", "false" }));

    inbox.actions()->bulk()->toggle(ana);
    inbox.actions()->bulk()->toggle(ben);
    inbox.actions()->markCheckedRead();
    EXPECT_EQ(engines.unreadTotal(), 1);
    EXPECT_EQ(commands("markRead").size(), 2);

    inbox.person()->select(ana);
    inbox.actions()->bulk()->all();
    inbox.actions()->archiveChecked();
    EXPECT_TRUE(inbox.list()->isEmpty());
    EXPECT_EQ(inbox.person()->selectedId(), "");
    EXPECT_EQ(inbox.actions()->undoText(), "Archived 3 conversations");
    inbox.actions()->undo();
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
    EXPECT_EQ(inbox.person()->selectedId(), ana);

    const auto run = [&](const QString& label) {
        inbox.setShowPalette(true);
        inbox.palette()->setQuery(label);
        inbox.palette()->runHighlighted();
    };
    run("mute / unmute");
    EXPECT_TRUE(inbox.person()->selected().isMuted);
    const bool panel = inbox.person()->showCRM();
    run("toggle");
    EXPECT_NE(inbox.person()->showCRM(), panel);
    run("mark all");
    EXPECT_EQ(engines.unreadTotal(), 0);
    run("archive");
    EXPECT_EQ(inbox.person()->selectedId(), "");
    EXPECT_EQ(names(), QStringList("Ben"));

    run(" good day ");
    EXPECT_EQ(inbox.filters()->search(), "good day");
    awaitHits();
    EXPECT_EQ(column(inbox.list()->results()->messages(), "snippet"), QStringList("<b>good day</b>"));
    run("new mess");
    EXPECT_TRUE(inbox.composeSheet()->shown());
}

TEST_F(InboxViewTest, aBannerOfAMessageOpensItsPersonWhereverTheListStands)
{
    receiveFromAnaAndBen();
    inbox.filters()->setFilterWord("archived");
    centre.post(notifications::openConversation, ana);
    EXPECT_EQ(inbox.person()->selectedId(), ana);
    EXPECT_EQ(bodies().last(), "hello");
    EXPECT_EQ(inbox.person()->selected().name, "Ana Ruiz") << "who is not listed is called by the name that they have";
    inbox.filters()->setFilterWord("all");
    EXPECT_EQ(inbox.person()->selected().name, "Ana Ruiz");
    centre.post(notifications::openConversation, QString());
    EXPECT_EQ(inbox.person()->selectedId(), ana);

    const QString crew = "ct:WHATSAPP:12@g.us";
    receive(crew, "both", { { "sender", "Lena" } });
    engine().printEvent({ { "type", "message" }, { "convExternalId", "12@g.us" }, { "body", "[Document] plan.pdf" },
        { "providerMsgId", "m3/1" }, { "mediaType", "document" }, { "historical", true }, { "sender", "Lena" },
        { "ts", clock.nowMs() } });
    settle();
    inbox.filters()->setFilterWord("archived");
    centre.post(notifications::openConversation, crew);
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "senderLabel").at(1), "Lena");
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "unreadText"), QStringList({ "", "1 unread message", "" }))
        << "a file comes with its message";
}

TEST_F(InboxViewTest, olderMessagesAreAskedForAndTheControlComesBack)
{
    receiveFromAnaAndBen();
    inbox.person()->select(ana);
    ThreadHistory& history = *inbox.person()->thread()->history();
    EXPECT_TRUE(history.canLoadOlder());
    history.loadMore();
    EXPECT_EQ(history.loadOlderText(), "Loading older messages…");
    history.loadMore();
    EXPECT_EQ(commands("loadMore").size(), 1);
    clock.advance(seconds(4));
    EXPECT_FALSE(history.loadingMore());
    engines.stop(account);
    history.loadMore();
    EXPECT_EQ(inbox.reply()->composer()->sendError(), "Account " + account.slug + " is not connected");
    inbox.person()->select(ben);
    EXPECT_EQ(inbox.reply()->composer()->sendError(), "");
    EXPECT_FALSE(history.loadingMore());
}

TEST_F(InboxViewTest, aMediumIsFetchedAndAReactionIsKept)
{
    receive(ana, "", { { "mediaType", "image" } });
    EXPECT_EQ(column(inbox.list()->contacts(), "snippet"), QStringList("Image"));
    inbox.person()->select(ana);
    ThreadView& thread = *inbox.person()->thread();
    MessageActions& actions = *inbox.person()->messageActions();
    const auto last = [&](const QByteArray& role) {
        return column(thread.rows(), role).last();
    };
    EXPECT_EQ(last("mediaState"), "download");
    actions.fetchMedia("wa:msg:m1");
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

    // The person's newest conversation is a different one, and the message id contains colons.
    engine().printEvent({ { "type", "message" }, { "convExternalId", ana.section(':', 2) }, { "body", "hi" },
        { "providerMsgId", "true_1:2:3" }, { "ts", clock.nowMs() } });
    receive(ben, "later");
    engines.db().run("UPDATE unified_conversation SET contact_id=? WHERE external_id='49172@s.whatsapp.net';", { ana });
    thread.reload();
    actions.react("wa:msg:true_1:2:3", "👍");
    EXPECT_EQ(engines.db().scalar("SELECT reaction FROM unified_message WHERE provider_msg_id='true_1:2:3';"), "👍");
    EXPECT_EQ(commands("react"),
        QStringList(
            R"({"chatId":"49171@s.whatsapp.net","cmd":"react","emoji":"👍","fromMe":false,"messageId":"true_1:2:3"})"));
    engines.stop(account);
    actions.react("wa:msg:m1", "🎉");
    EXPECT_EQ(engines.db().scalar("SELECT reaction FROM unified_message WHERE provider_msg_id='m1';"), std::nullopt)
        << "what no engine took is not shown";
}

TEST_F(InboxViewTest, theReplyGoesWhereItLastWent)
{
    receiveFromAnaAndBen();
    ensureConversation(engines.db(), "EMAIL", "mail", "ana@x.de", "Ana Ruiz", 1);
    engines.db().exec("UPDATE unified_conversation SET contact_id='" + ana + "' WHERE channel='EMAIL';");
    inbox.list()->reload();
    defaults.setText("nimb.replyPlatform." + ana, "EMAIL");
    inbox.person()->select(ana);
    EXPECT_EQ(inbox.reply()->composer()->routing()->replyPlatform(), "EMAIL");
    defaults.setText("nimb.replyPlatform." + ana, "SLACK");
    inbox.person()->select(ben);
    inbox.person()->select(ana);
    EXPECT_EQ(inbox.reply()->composer()->routing()->replyPlatform(), inbox.person()->selected().platforms.first())
        << "a channel that the person has not";
}
