#include "InboxViewTest.h"
#include "Store/People/CrmRecords.h"

using namespace corvane;

namespace {

class OpenPersonTest : public InboxViewTest {
protected:
    OpenPerson& person = *inbox.person();
};

}

TEST_F(OpenPersonTest, somebodyWithoutMessagesIsOpenedByTheId)
{
    person.select("ct:EMAIL:eva@x.de");
    EXPECT_EQ(person.selected().name + '|' + person.selected().platforms.join(','), "eva@x.de|EMAIL");
    EXPECT_TRUE(person.thread()->isEmpty());
    EXPECT_TRUE(person.thread()->emptyText().startsWith("No messages yet"));
    engines.db().exec("INSERT INTO contact(id, display_name) VALUES('ct:EMAIL:fay@x.de','Fay');");
    person.select("ct:EMAIL:fay@x.de");
    EXPECT_EQ(person.selected().name, "Fay");
    centre.post(notifications::openConversation);
    centre.post(notifications::openConversation, "");
    EXPECT_EQ(person.selectedId(), "ct:EMAIL:fay@x.de");
    person.openHit("wa:msg:none");
    EXPECT_EQ(person.selectedId(), "ct:EMAIL:fay@x.de");
    const QSignalSpy closed(&person, &OpenPerson::selectionChanged);
    person.close();
    person.close();
    EXPECT_EQ(closed.size(), 1);
}

TEST_F(OpenPersonTest, whatIsOutOfSightIsNotRead)
{
    receiveFromAnaAndBen();
    person.select(ana);
    restInThread();
    EXPECT_EQ(engines.unreadTotal(), 1);
    const QSignalSpy seen(&person, &OpenPerson::onScreenChanged);
    person.setOnScreen(false);
    person.setOnScreen(false);
    EXPECT_EQ(seen.size(), 1);
    EXPECT_EQ(engines.openContactId(), "");
    receive(ana, "more");
    restInThread();
    EXPECT_EQ(engines.unreadTotal(), 2);
    person.setOnScreen(true);
    EXPECT_EQ(engines.openContactId(), ana);
    clock.advance(Milliseconds(110));
    EXPECT_EQ(bodies().last(), "more");
    restInThread();
    EXPECT_EQ(engines.unreadTotal(), 1);
    EXPECT_EQ(person.selected().unread, 0);
}

TEST_F(OpenPersonTest, thePaneIsShownWhereItIsAskedFor)
{
    receiveFromAnaAndBen();
    person.select(ana);
    QStringList posted;
    const auto settings = centre.observe(
        notifications::openSettings, [&](const Notification& told) { posted.append(told.object.value_or("-")); });
    person.openVoiceSettings();
    EXPECT_EQ(posted, QStringList("voice"));
    const QSignalSpy shows(&person, &OpenPerson::showCRMChanged);
    person.setShowCRM(true);
    EXPECT_EQ(shows.size(), 0);
    person.setShowCRM(false);
    EXPECT_EQ(shows.size(), 1);
    const QSignalSpy asked(&person, &OpenPerson::paneAsked);
    person.showInPane("tasks", "t");
    EXPECT_EQ(asked.first().first(), "tasks");
}

TEST_F(OpenPersonTest, theNextPersonIsTheOneBelowOrInTheOpenOnesPlace)
{
    receiveFromAnaAndBen();
    receive("ct:WHATSAPP:3@s.whatsapp.net", "hi", { { "convTitle", "Cy" } });
    ASSERT_EQ(names(), QStringList({ "Cy", "Ben", "Ana Ruiz" }));
    const auto moved = [&](int delta) {
        person.moveSelection(delta);
        return person.selected().name + ' ' + QString::number(inbox.list()->selectedIndex());
    };
    EXPECT_EQ(inbox.list()->selectedIndex(), -1);
    EXPECT_EQ(moved(0), " -1");
    EXPECT_EQ(moved(1), "Cy 0");
    EXPECT_EQ(moved(-1), "Cy 0");
    EXPECT_EQ(moved(1), "Ben 1");
    EXPECT_EQ(moved(5), "Ana Ruiz 2");
    EXPECT_EQ(moved(1), "Ana Ruiz 2");
    EXPECT_EQ(moved(-1), "Ben 1");
    inbox.actions()->archiveSelected();
    clock.advance(Milliseconds(110));
    EXPECT_EQ(names(), QStringList({ "Cy", "Ana Ruiz" }));
    EXPECT_EQ(moved(1), "Ana Ruiz 1");
}

TEST_F(OpenPersonTest, aVoiceNoteIsSkippedThroughWhileItPlays)
{
    VoicePlayer& voice = *person.voicePlayer();
    receiveFromAnaAndBen();
    person.select(ana);
    home.write("share/Corvane/media/main/a.wav",
        QByteArray("RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1f\0\0\x80\x3e\0\0\x02\0\x10\0data\0\0\0\0", 44));
    receive(ana, {}, { { "mediaType", "audio" }, { "mediaPath", home.path("share/Corvane/media/main/a.wav") } });
    EXPECT_EQ(voice.stateText() + voice.durationText(), "");
    EXPECT_EQ(voice.progress(), 0);
    player.duration = 80'000;
    voice.skip(5);
    voice.seek(1);
    EXPECT_EQ(player.position, 0) << "nothing plays";
    voice.toggle("wa:msg:none");
    EXPECT_EQ(voice.messageId(), "");
    const QSignalSpy moves(&voice, &VoicePlayer::moved);
    voice.toggle("wa:msg:m3");
    EXPECT_EQ(voice.stateText() + ' ' + voice.actionText(), "Playing Pause");
    player.moveTo(40'000);
    EXPECT_GT(moves.size(), 1);
    voice.skip(5);
    EXPECT_EQ(player.position, 45'000);
    voice.toggle("wa:msg:m3");
    EXPECT_EQ(voice.stateText() + ' ' + voice.actionText(), "Paused Play");
    voice.skip(-60);
    EXPECT_EQ(player.position, 0);
    voice.skip(90);
    EXPECT_EQ(player.position, 80'000);
    voice.seek(2);
    EXPECT_EQ(player.position, 80'000);
    voice.seek(-1);
    EXPECT_EQ(player.position, 0);
    QStringList labels;
    for (const MessageOffer& offer : person.messageActions()->actionsFor("wa:msg:m3"))
        labels.append(offer.label);
    EXPECT_EQ(labels,
        (QStringList { "React", "Copy text", "Forward as draft…", "Play", "Transcribe on this computer", "Open file",
            "Delete (local copy)" }));
}

TEST_F(OpenPersonTest, whatIsQuotedIsUnfoldedAndFoldedAgain)
{
    receive(ana, "Yes.\n> an old invoice");
    person.select(ana);
    ThreadView& thread = *person.thread();
    const auto quote = [&] {
        return column(thread.rows(), "quote").last();
    };
    EXPECT_EQ(quote(), "");
    thread.toggleQuote("wa:msg:m1");
    EXPECT_EQ(quote(), "an old invoice");
    thread.toggleQuote("wa:msg:m1");
    EXPECT_EQ(quote(), "");
    thread.showMore("wa:msg:none");
    const QSignalSpy changes(&thread, &ThreadView::changed);
    thread.extendOlder();
    thread.extendNewer();
    thread.showNewest();
    thread.showOldest();
    EXPECT_EQ(changes.size(), 0) << "all of it is shown";
    EXPECT_EQ(thread.rowOf("wa:msg:none"), -1);
}

TEST_F(OpenPersonTest, atMostEightPeopleAreOfferedForAForwardAndAMessageThatIsGoneDoesNothing)
{
    for (int n = 0; n < 10; ++n)
        receive(u"ct:WHATSAPP:%1@s.whatsapp.net"_s.arg(100 + n), "hi");
    person.select("ct:WHATSAPP:100@s.whatsapp.net");
    MessageActions& actions = *person.messageActions();
    EXPECT_EQ(actions.forwardTargets().size(), 8);
    actions.react("none", "👍");
    actions.deleteLocal("none");
    actions.forward("none", ana);
    actions.fetchMedia("none");
    EXPECT_EQ(inbox.actions()->undoText() + actions.noticeText() + person.thread()->errorText(), "");
    engines.db().exec("UPDATE unified_message SET body=' ' WHERE id='wa:msg:m1';");
    person.thread()->reload();
    actions.forward("wa:msg:m1", "ct:WHATSAPP:101@s.whatsapp.net");
    EXPECT_EQ(cell("SELECT COUNT(*) FROM outbound_draft;"), "0");
    EXPECT_EQ(person.thread()->errorText(), "");
    actions.react("wa:msg:m1", "👍");
    EXPECT_EQ(commands("react").size(), 1);
    EXPECT_EQ(cell("SELECT reaction FROM unified_message WHERE id='wa:msg:m1';"), "👍");
}
