#include "Foundation/Literals.h"
#include "InboxViewTest.h"
#include "Store/Approvals/OutboundQueries.h"

#include <QPersistentModelIndex>

using namespace corvane;

namespace {

class MessageActionsTest : public InboxViewTest {
protected:
    MessageActionsTest()
    {
        receiveFromAnaAndBen();
        inbox.person()->select(ana);
    }

    MessageActions& actions() { return *inbox.person()->messageActions(); }
    VoicePlayer& voice() { return *inbox.person()->voicePlayer(); }

    /// "id" for each available action, "id: reason" for each unavailable one.
    QStringList offered(const QString& messageId)
    {
        QStringList words;
        for (const MessageOffer& offer : actions().actionsFor(messageId)) {
            EXPECT_FALSE(offer.label.isEmpty());
            EXPECT_EQ(offer.enabled, offer.help.isEmpty());
            words.append(offer.id + (offer.help.isEmpty() ? QString() : ": " + offer.help));
        }
        return words;
    }

    void receiveMedium(const QString& kind, const QString& path, const QString& body = {})
    {
        QJsonObject more { { "mediaType", kind } };
        if (!path.isEmpty())
            more.insert("mediaPath", path);
        receive(ana, body, more);
    }

    QString soundFile(const QString& name)
    {
        const QString relative = "share/Corvane/media/main/" + name;
        QByteArray sound(
            "RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1f\0\0\x80\x3e\0\0\x02\0\x10\0data\0\0\0\0", 44);
        home.write(relative, sound);
        return home.path(relative);
    }
};

}

TEST_F(MessageActionsTest, aMessageOffersWhatItHas)
{
    EXPECT_EQ(offered("wa:msg:m1"), (QStringList { "react", "copy", "forward", "speak", "delete" }));
    receiveMedium("image", {});
    EXPECT_EQ(offered("wa:msg:m3"),
        (QStringList {
            "react", "copy: This message has no text", "forward: This message has no text", "fetch", "delete" }));
    receiveMedium("document", home.path("share/Corvane/media/main/gone.pdf"), "the plan");
    EXPECT_EQ(offered("wa:msg:m4"),
        (QStringList {
            "react", "copy", "forward", "speak", "open: Document file is missing from local media cache.", "delete" }));
    EXPECT_TRUE(actions().actionsFor("wa:msg:none").isEmpty());
    EXPECT_EQ(actions().actionsFor("wa:msg:m1").last().label, "Delete (local copy)");
}

TEST_F(MessageActionsTest, aDeletedMessageIsGoneHereAndComesBackWithAnUndo)
{
    receive(ana, "second");
    receive(ana, "third");
    actions().deleteLocal("wa:msg:m3");
    clock.advance(Milliseconds(110));
    EXPECT_EQ(bodies(), (QStringList { "", "hello", "third" }));
    EXPECT_EQ(inbox.actions()->undoText(), "Deleted the local copy");
    EXPECT_NE(cell("SELECT deleted_at FROM unified_message WHERE id='wa:msg:m3';"), "-");
    inbox.actions()->undo();
    EXPECT_EQ(bodies(), (QStringList { "", "hello", "second", "third" }));
    EXPECT_EQ(inbox.actions()->undoText(), "");

    actions().deleteLocal("wa:msg:m4");
    clock.advance(Milliseconds(110));
    EXPECT_EQ(column(inbox.list()->contacts(), "snippet").first(), "second");
    clock.advance(seconds(10));
    EXPECT_EQ(inbox.actions()->undoText(), "");
    inbox.actions()->undo();
    EXPECT_EQ(bodies(), (QStringList { "", "hello", "second" })) << "too late";
}

TEST_F(MessageActionsTest, aForwardIsADraftThatWaits)
{
    const QList<ContactChoice> targets = actions().forwardTargets();
    ASSERT_EQ(targets.size(), 1) << "not the person who is open";
    EXPECT_EQ(targets.first().name, "Ben");
    EXPECT_EQ(targets.first().detail, "WhatsApp");
    type("ana");
    EXPECT_EQ(actions().forwardTargets(), targets) << "a search hides nobody";
    actions().forward("wa:msg:m1", ben);
    EXPECT_EQ(cell("SELECT conversation_id || ' ' || body || ' ' || source || ' ' || status FROM outbound_draft;"),
        "wa:main:49172@s.whatsapp.net hello forward pending");
    EXPECT_EQ(delivery.pending().size(), 1);
    EXPECT_EQ(commands("send").size(), 0);
    EXPECT_NE(actions().noticeText(), "");
    clock.advance(seconds(10));
    EXPECT_EQ(actions().noticeText(), "");

    engines.db().exec("UPDATE unified_conversation SET deleted_at=1 WHERE contact_id LIKE '%49172%';");
    actions().forward("wa:msg:m1", ben);
    EXPECT_EQ(inbox.person()->thread()->errorText(), "Couldn't queue the draft for this conversation.");
    EXPECT_EQ(cell("SELECT COUNT(*) FROM outbound_draft;"), "1");
}

TEST_F(MessageActionsTest, aFileOpensInTheDesktopsProgramOrSaysWhyNot)
{
    home.write("share/Corvane/media/main/a.txt", "text");
    const QString path = home.path("share/Corvane/media/main/a.txt");
    receiveMedium("document", path);
    actions().openMedia("wa:msg:m3");
    EXPECT_EQ(desktop.openedFiles, QStringList(path));
    EXPECT_EQ(inbox.person()->thread()->errorText(), "");
    desktop.opens = false;
    actions().openMedia("wa:msg:m3");
    EXPECT_EQ(inbox.person()->thread()->errorText(), "No program on this machine opens the file.");

    home.write("share/Corvane/media/main/b.txt", "#!/bin/sh");
    receiveMedium("document", home.path("share/Corvane/media/main/b.txt"));
    actions().openMedia("wa:msg:m4");
    EXPECT_EQ(inbox.person()->thread()->errorText(), "Document file is a program, so it is not opened.");
    EXPECT_EQ(desktop.openedFiles.size(), 2);
    actions().openMedia("wa:msg:m1");
    EXPECT_EQ(desktop.openedFiles.size(), 2) << "a plain text has no file";

    ASSERT_TRUE(QFile::remove(path) && QFile::link("/etc/hostname", path)) << "after it was received";
    actions().openMedia("wa:msg:m3");
    EXPECT_EQ(inbox.person()->thread()->errorText(),
        "Document file is not a regular file in its account's media folder, so it is not opened.");
}

TEST_F(MessageActionsTest, aCallOpensWhatsAppWithThePersonsNumber)
{
    EXPECT_TRUE(actions().canCall());
    EXPECT_EQ(actions().callLabel(), "Call on WhatsApp (opens the WhatsApp app)");
    actions().callOnWhatsApp();
    EXPECT_EQ(desktop.openedLinks, QList<QUrl> { QUrl("whatsapp://send?phone=49171") });
    desktop.opens = false;
    actions().callOnWhatsApp();
    EXPECT_EQ(inbox.person()->thread()->errorText(), "No program on this machine opens WhatsApp.");

    const QString group = "ct:WHATSAPP:1234-5@g.us";
    receive(group, "hi all");
    inbox.person()->select(group);
    EXPECT_FALSE(actions().canCall());
    actions().callOnWhatsApp();
    EXPECT_EQ(desktop.openedLinks.size(), 2);
    inbox.person()->select({});
    EXPECT_FALSE(actions().canCall());
}

TEST_F(MessageActionsTest, oneVoiceNotePlaysAtATime)
{
    const QString first = soundFile("a.wav");
    const QString second = soundFile("b.wav");
    receiveMedium("audio", first);
    receiveMedium("audio", second);
    EXPECT_EQ(voice().state(), "idle");
    player.duration = 80'000;
    voice().toggle("wa:msg:m3");
    EXPECT_EQ(voice().state(), "playing");
    EXPECT_EQ(voice().actionText(), "Pause");
    player.moveTo(7'900);
    EXPECT_EQ(voice().positionText() + " of " + voice().durationText(), "0:07 of 1:20");
    voice().seek(0.5);
    EXPECT_EQ(player.position, 40'000);
    EXPECT_DOUBLE_EQ(voice().progress(), 0.5);
    voice().toggle("wa:msg:m3");
    EXPECT_EQ(voice().state(), "paused");
    voice().toggle("wa:msg:m3");
    EXPECT_EQ(player.played, QStringList(first)) << "it goes on where it was";

    voice().toggle("wa:msg:m4");
    EXPECT_EQ(voice().messageId(), "wa:msg:m4");
    EXPECT_EQ(player.played, (QStringList { first, second }));
    player.enter(AudioPlayer::State::Idle);
    EXPECT_EQ(voice().state(), "idle") << "at its end";
    voice().toggle("wa:msg:m4");
    receive(ana, "still playing");
    EXPECT_EQ(voice().state(), "playing");
    inbox.person()->select(ben);
    EXPECT_EQ(voice().state(), "idle");
    EXPECT_EQ(voice().messageId(), "");
    EXPECT_EQ(player.current, AudioPlayer::State::Idle);
}

TEST_F(MessageActionsTest, aVoiceNoteThatCannotPlaySaysWhy)
{
    receiveMedium("audio", home.path("share/Corvane/media/main/gone.ogg"));
    voice().toggle("wa:msg:m3");
    EXPECT_EQ(voice().state() + ": " + voice().stateText(), "failed: Audio file is missing from local media cache.");
    EXPECT_TRUE(player.played.isEmpty());
    receiveMedium("audio", soundFile("a.wav"));
    voice().toggle("wa:msg:m4");
    player.enter(AudioPlayer::State::Failed);
    EXPECT_EQ(voice().stateText(), "This machine has no sound output.");
    actions().deleteLocal("wa:msg:m4");
    EXPECT_EQ(voice().state(), "idle");
    EXPECT_EQ(playTime(3'723'999), "1:02:03");
    EXPECT_EQ(playTime(59'999), "0:59");
}

TEST_F(MessageActionsTest, theFirstUnreadMessageIsMarkedUntilAnotherThreadOpens)
{
    restInThread();
    inbox.person()->select(ben);
    for (const QString& body : { "one", "two", "three" })
        receive(ana, body);
    receive(ana, "my own", { { "direction", "OUT" } });
    EXPECT_EQ(inbox.person()->thread()->firstUnreadId(), "wa:msg:m2") << "Ben's message was new as well";
    inbox.person()->select(ana);
    EXPECT_EQ(inbox.person()->thread()->firstUnreadId(), "wa:msg:m3");
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "unreadText"),
        (QStringList { "", "", "3 unread messages", "", "", "" }));
    receive(ana, "four");
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "unreadText").indexOf("3 unread messages"), 2);
    restInThread();
    inbox.person()->select(ben);
    inbox.person()->select(ana);
    EXPECT_EQ(inbox.person()->thread()->firstUnreadId(), "");
    EXPECT_EQ(column(inbox.person()->thread()->rows(), "unreadText").join(""), "");
}

TEST_F(MessageActionsTest, olderMessagesComeInAboveWithoutMovingTheRest)
{
    receive(ana, "newest");
    QAbstractItemModel* rows = inbox.person()->thread()->rows();
    const QPersistentModelIndex anchor(rows->index(inbox.person()->thread()->rowOf("wa:msg:m1"), 0));
    const QSignalSpy reset(rows, &QAbstractItemModel::modelReset);
    const QSignalSpy removed(rows, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy inserted(rows, &QAbstractItemModel::rowsInserted);
    for (int i = 1; i <= 20; ++i) {
        engine().printEvent({ { "type", "message" }, { "convExternalId", ana.section(':', 2) },
            { "body", u"old %1"_s.arg(i) }, { "providerMsgId", u"old%1"_s.arg(i) },
            { "ts", clock.nowMs() - i * 7'200'000LL }, { "historical", true } });
    }
    clock.advance(Milliseconds(300));
    EXPECT_GE(rows->rowCount(), 23);
    EXPECT_EQ(reset.size() + removed.size(), 0);
    EXPECT_GE(inserted.size(), 1);
    EXPECT_EQ(anchor.row(), inbox.person()->thread()->rowOf("wa:msg:m1"));
    EXPECT_EQ(inbox.person()->thread()->rowOf("wa:msg:old20"), 1);
}

TEST_F(MessageActionsTest, aLongMessageIsShownInSteps)
{
    const QString book = u"words and "_s.repeated(10'000);
    receive(ana, book);
    const auto shown = [&] {
        return bodies().last().size();
    };
    EXPECT_EQ(shown(), 10'000);
    inbox.person()->thread()->showMore("wa:msg:m3");
    EXPECT_EQ(shown(), 80'000);
    receive(ben, "meanwhile");
    inbox.person()->thread()->showMore("wa:msg:m3");
    EXPECT_EQ(shown(), book.size());
    EXPECT_EQ(inbox.person()->messageActions()->readableText("wa:msg:m3").size(), book.size() - 1);
}
