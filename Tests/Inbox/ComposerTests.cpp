#include "Foundation/Literals.h"
#include "InboxViewTest.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Await.h"
#include "Support/LogCapture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

using namespace corvane;

namespace {

class ComposerTest : public InboxViewTest {
protected:
    ComposerTest()
    {
        receiveFromAnaAndBen();
        inbox.person()->select(ana);
        restInThread();
    }

    QString cell(const QString& sql) { return world().cell(sql); }
    EngineWorld& world() { return *this; }
    QByteArray unsentFile() { return home.read("share/Corvane/unsent.json"); }
    void pause() { clock.advance(Milliseconds(500)); }

    /// A restart of the program with the same files.
    std::unique_ptr<Reply> restarted() { return std::make_unique<Reply>(composing, lumo); }
    void openIn(Reply& other, const QString& person) { other.open(fetchContact(engines.db(), person).value()); }

    void addEmailToAna()
    {
        ensureConversation(engines.db(), "EMAIL", "mail", "ana@x.de", "Ana Ruiz", 1);
        engines.db().exec("UPDATE unified_conversation SET contact_id='" + ana + "' WHERE channel='EMAIL';");
        inbox.list()->reload();
    }

    Composer& composer = *inbox.reply()->composer();
    ReplyRouting& routing = *composer.routing();
    VoiceRecorder& note = *composer.voice()->note();
};

}

TEST_F(ComposerTest, wordsAreDroppedAndWhatHoldsNoneIsRefusedWithAWord)
{
    const auto file = [this](const QString& name, const QByteArray& content) {
        home.write(name, content);
        return QUrl::fromLocalFile(home.path(name));
    };
    composer.setText("before");
    composer.dropFiles({ file("a #1.txt", "one\r\n\x1b[1mtwo\n"), file("b.md", "drei – ü") });
    EXPECT_EQ(composer.text(), "before\n\none\n[1mtwo\n\ndrei – ü");
    composer.undo();
    EXPECT_EQ(composer.text(), "before");
    composer.dropText("  \n");
    EXPECT_EQ(composer.text(), "before");

    const std::pair<QUrl, QString> refused[] {
        { file("photo.png", QByteArray("\x89PNG\r\n\x1a\n\0\0", 10)),
            "photo.png holds no text, and only text can be added here." },
        { file("blank.bin", QByteArray(10, '\0')), "blank.bin holds no text, and only text can be added here." },
        { file("book.txt", QByteArray(70'000, 'a')), "book.txt is too long for a message." },
        { QUrl::fromLocalFile(home.path("gone.txt")), "gone.txt can't be read." },
        { QUrl::fromLocalFile("/proc/"), " can't be read." },
    };
    for (const auto& [url, words] : refused) {
        composer.dropFiles({ url });
        EXPECT_EQ(composer.sendError(), words);
        EXPECT_EQ(composer.text(), "before");
    }
    composer.dropText("words");
    EXPECT_EQ(composer.text() + composer.sendError(), "before\n\nwords");
}

TEST_F(ComposerTest, filesGoWithTheMessageAndAreKeptWithItsText)
{
    const auto file = [this](const QString& name, qsizetype bytes) {
        home.write(name, QByteArray(bytes, 'x'));
        return QUrl::fromLocalFile(home.path(name));
    };
    engine().printEvent({ { "type", "features" }, { "files", true }, { "maxBytes", 3000 }, { "subject", true } });
    settle();
    Attachments& attachments = *composer.attachments();
    EXPECT_TRUE(routing.takesSubject() && attachments.allowed());
    desktop.chosen = failure("There is no window to choose in.");
    attachments.choose();
    EXPECT_EQ(composer.sendError(), "There is no window to choose in.");
    desktop.chosen = QList<QUrl> { file("plan.pdf", 2000) };
    attachments.choose();
    ASSERT_TRUE(await([&] { return attachments.files().size() == 1; }));
    EXPECT_EQ(attachments.summary(), "2 kB of 3 kB");
    EXPECT_TRUE(composer.canSend()) << "files need no text";
    composer.dropFiles({ file("large.pdf", 1001), QUrl::fromLocalFile(home.path("share")) });
    EXPECT_EQ(composer.sendError(), "share is a folder, and only files can be attached.");
    composer.dropFiles({ file("large.pdf", 1001) });
    EXPECT_EQ(composer.sendError(),
        "large.pdf (1,001 bytes) doesn't fit: WhatsApp carries at most 3 kB of files in one message.");
    attachments.paste({}, QByteArray(10, 'p'));
    EXPECT_EQ(attachments.rows()->rowCount(), 2) << "shown while it is copied";
    ASSERT_TRUE(await([&] { return attachments.files().size() == 2; }));
    composer.setSubject("Plans");
    composer.setText("Here");

    inbox.person()->select(ben);
    EXPECT_EQ(attachments.files().size(), 0);
    pause();
    const auto later = restarted();
    openIn(*later, ana);
    EXPECT_EQ(later->composer()->subject() + later->composer()->text(), "PlansHere");
    ASSERT_EQ(later->composer()->attachments()->files().size(), 2);
    EXPECT_EQ(later->composer()->attachments()->files()[1].name, "Pasted picture.png");

    inbox.person()->select(ana);
    const QString dropped = attachments.files()[1].path;
    attachments.remove(dropped);
    EXPECT_FALSE(QFile::exists(dropped));
    const QString kept = attachments.files()[0].path;
    composer.send();
    const QJsonObject command = engine().commands().last();
    EXPECT_EQ(command["subject"], "Plans");
    EXPECT_EQ(command["files"].toArray().size(), 1);
    EXPECT_EQ(attachments.rows()->rowCount(), 0);
    EXPECT_TRUE(QFile::exists(kept)) << "until the engine has sent it";
    const QString id = command["sendId"].toString();
    engine().printEvent({ { "type", "sendAck" }, { "sendId", id }, { "status", "failed" }, { "error", "full" } });
    settle();
    EXPECT_EQ(column(composer.unsent()->rows(), "files"), QStringList("plan.pdf"));
    composer.unsent()->retry(id);
    const QString again = engine().commands().last()["sendId"].toString();
    engine().printEvent({ { "type", "sendAck" }, { "sendId", again }, { "status", "sent" } });
    settle();
    EXPECT_FALSE(QFile::exists(kept));
}

TEST_F(ComposerTest, aChannelThatCarriesNoFilesSaysSo)
{
    addEmailToAna();
    engine().printEvent({ { "type", "features" }, { "files", true } });
    settle();
    home.write("plan.pdf", "x");
    composer.dropFiles({ QUrl::fromLocalFile(home.path("plan.pdf")) });
    ASSERT_TRUE(await([&] { return composer.canSend(); }));
    routing.setReplyPlatform("EMAIL");
    EXPECT_EQ(
        composer.attachments()->problem(), "Email carries no files here. Remove them, or choose another channel.");
    EXPECT_FALSE(composer.canSend());
}

TEST_F(ComposerTest, aSendGoesStraightToTheEngineAndWritesNoRow)
{
    const QString rows
        = "SELECT (SELECT COUNT(*) FROM unified_message) || '/' || (SELECT COUNT(*) FROM outbound_draft);";
    const QString before = cell(rows);
    composer.setText("  see you\ntomorrow \n");
    EXPECT_TRUE(composer.canSend());
    composer.send();
    QJsonObject command = engine().commands().last();
    EXPECT_TRUE(command.take("sendId").toString().startsWith("ds:"));
    EXPECT_EQ(compactJson(command), R"({"chatId":"49171@s.whatsapp.net","cmd":"send","text":"see you\ntomorrow"})");
    EXPECT_EQ(cell(rows), before);
    EXPECT_EQ(composer.text(), "");
    EXPECT_FALSE(composer.canSend());
    EXPECT_EQ(defaults.text("nimb.replyPlatform." + ana), "WHATSAPP");

    composer.setText(" \n ");
    composer.send();
    inbox.person()->select({});
    composer.setText("to nobody");
    EXPECT_EQ(composer.text(), "");
    composer.send();
    EXPECT_EQ(commands("send").size(), 1);
}

TEST_F(ComposerTest, whatCannotBeSentStaysAndSaysWhy)
{
    addEmailToAna();
    const QString slug = account.slug;
    composer.setText("hello");
    routing.setReplyPlatform("EMAIL");
    EXPECT_EQ(composer.hints()->placeholder(), "Reply on Email · Ctrl+Return sends");
    composer.send();
    EXPECT_EQ(composer.sendError(), "Account mail is not connected") << "an account that is gone";
    engines.db().exec("UPDATE unified_conversation SET deleted_at=1 WHERE channel='EMAIL';");
    composer.send();
    EXPECT_EQ(composer.sendError(), "No Email conversation for this contact");
    composer.dismissError();
    EXPECT_EQ(composer.sendError(), "");

    routing.setReplyPlatform("WHATSAPP");
    stopEngine();
    composer.send();
    EXPECT_EQ(composer.sendError(), "Account " + slug + " is not connected");
    launcher.expect(FakeLauncher::stays());
    engines.start(account);
    composer.send();
    EXPECT_EQ(composer.sendError(), "Main is still connecting. Send again in a moment.");
    for (const QJsonObject& signedOut : { QJsonObject { { "type", "qr" }, { "qr", "code" } },
             QJsonObject { { "type", "status" }, { "state", "logged_out" } } }) {
        composer.dismissError();
        engine().printEvent(signedOut);
        settle();
        composer.send();
        EXPECT_EQ(composer.sendError(), "Account " + slug + " is not connected") << "it could only drop the message";
    }
    stopEngine();
    EXPECT_EQ(composer.text(), "hello");
    EXPECT_FALSE(defaults.text("nimb.replyPlatform." + ana)) << "only a send is remembered";
    inbox.person()->select(ben);
    EXPECT_EQ(composer.sendError(), "") << "it was Ana's";

    restartEngine();
    inbox.person()->select(ana);
    routing.setReplyPlatform("WHATSAPP");
    composer.send();
    EXPECT_EQ(composer.text(), "");
    EXPECT_EQ(composer.sendError(), "");
}

TEST_F(ComposerTest, aMessageThatDidNotGoOutStandsThereUntilItIsSentAgain)
{
    const auto unsent = [&](const QByteArray& role) {
        return column(composer.unsent()->rows(), role);
    };
    const auto answer = [&](const QString& status) {
        engine().printEvent({ { "type", "sendAck" }, { "sendId", engine().commands().last().value("sendId") },
            { "status", status }, { "error", "no such chat" } });
        settle();
    };
    composer.setText("hello");
    composer.send();
    EXPECT_EQ(unsent("body"), QStringList()) << "it is on its way";
    answer("failed");
    EXPECT_EQ(unsent("body"), QStringList("hello"));
    EXPECT_EQ(unsent("reason"), QStringList("Not sent: no such chat"));
    inbox.person()->select(ben);
    EXPECT_EQ(unsent("body"), QStringList());
    inbox.person()->select(ana);

    composer.unsent()->retry(unsent("id").first());
    EXPECT_EQ(commands("send").size(), 2);
    EXPECT_EQ(unsent("body"), QStringList());
    answer("uncertain");
    EXPECT_EQ(unsent("reason"), QStringList("It may have gone out. no such chat"));
    composer.unsent()->retry(unsent("id").first());
    clock.advance(seconds(119));
    engine().printEvent({ { "type", "sendProgress" }, { "sendId", engine().commands().last().value("sendId") } });
    clock.advance(seconds(119));
    answer("failed");
    EXPECT_EQ(unsent("body"), QStringList("hello")) << "an engine that is still at work has not answered";
    composer.unsent()->retry(unsent("id").first());
    answer("sent");
    composer.setText("again");
    composer.send();
    stopEngine();
    EXPECT_EQ(unsent("reason"), QStringList("Not sent: The engine ended before it answered. It may have gone out."));
    UnsentMessages later(engines, clock, home.path("share/Corvane/unsent-messages.json"));
    later.show(ana);
    EXPECT_EQ(later.rows()->rowCount(), 1) << "it outlives the program";
    composer.unsent()->discard(unsent("id").first());
    EXPECT_EQ(unsent("body"), QStringList());
}

TEST_F(ComposerTest, theReplyPlatformIsPickedAmongThePersonsAndRememberedAfterASend)
{
    addEmailToAna();
    EXPECT_EQ(routing.platforms().size(), 2);
    EXPECT_EQ(routing.platforms().last().label, channelLabel(inbox.person()->selected().platforms.last()));
    routing.setReplyPlatform("SLACK");
    EXPECT_NE(routing.replyPlatform(), "SLACK");
    for (const QString& platform : { u"EMAIL"_s, u"WHATSAPP"_s }) {
        routing.setReplyPlatform(platform);
        receive(ana, "a reload leaves the choice");
        EXPECT_EQ(routing.replyPlatform(), platform);
    }
    composer.setText("on WhatsApp");
    composer.send();
    routing.setReplyPlatform("EMAIL");
    inbox.person()->select(ben);
    inbox.person()->select(ana);
    EXPECT_EQ(routing.replyPlatform(), "WHATSAPP");
}

TEST_F(ComposerTest, nothingTypedIsLost)
{
    composer.setText("to Ana");
    inbox.person()->select(ben);
    EXPECT_EQ(composer.text(), "");
    composer.setText("to Ben 🎉\nنعم");
    inbox.person()->select(ana);
    EXPECT_EQ(composer.text(), "to Ana");
    pause();

    // Simulates a kill: the file as it is now, without what the program would write on exit.
    const QByteArray atKill = unsentFile();
    composer.setText("");
    inbox.person()->select(ben);
    composer.setText("");
    pause();
    EXPECT_EQ(unsentFile(), "{}");
    home.write("share/Corvane/unsent.json", atKill);
    auto next = restarted();
    openIn(*next, ben);
    EXPECT_EQ(next->composer()->text(), "to Ben 🎉\nنعم");
    next->composer()->setText("and one more word");
    next.reset();
    next = restarted();
    openIn(*next, ben);
    EXPECT_EQ(next->composer()->text(), "and one more word") << "an end in order writes what waits";
    openIn(*next, ana);
    EXPECT_EQ(next->composer()->text(), "to Ana");
    EXPECT_EQ(QFile::permissions(home.path("share/Corvane/unsent.json"))
            & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther),
        QFile::Permissions());
}

TEST_F(ComposerTest, whatWasTypedToAMergedPersonIsFoundWithTheOther)
{
    composer.setText("to Ana");
    inbox.person()->select(ben);
    composer.setText("to Ben");
    engines.db().run(
        "INSERT INTO contact_merge(id, workspace_id, primary_contact_id, merged_contact_id, conv_ids_json, "
        "created_at) VALUES('m','local',?,?,'[]',1);",
        { ana, ben });
    inbox.person()->select(ana);
    EXPECT_EQ(composer.text(), "to Ana\n\nto Ben");
    composer.send();
    inbox.person()->select({});
    inbox.person()->select(ana);
    EXPECT_EQ(composer.text(), "") << "it was sent with the rest";
}

TEST_F(ComposerTest, whatWasSentDoesNotComeBackAfterAKill)
{
    composer.setText("once");
    pause();
    EXPECT_TRUE(unsentFile().contains("once"));
    composer.send();
    EXPECT_FALSE(unsentFile().contains("once"));
}

TEST_F(ComposerTest, aFileOfUnsentTextsThatDoesNotReadIsKeptAside)
{
    LogCapture logs;
    const QByteArray garbage = "{\"ct:a\":\"half a te";
    home.write("share/Corvane/unsent.json", garbage);
    auto next = restarted();
    openIn(*next, ana);
    next->composer()->setText("new");
    pause();
    EXPECT_EQ(home.read("share/Corvane/unsent.json.damaged"), garbage);
    EXPECT_TRUE(unsentFile().contains("new"));
}

TEST_F(ComposerTest, aPreparedTextIsPutIntoTheFieldAndCanBeTakenBack)
{
    QSignalSpy focus(&composer, &Composer::focusRequested);
    composer.apply("draft", Composer::Placement::After);
    EXPECT_EQ(composer.text(), "draft");
    composer.undo();
    EXPECT_EQ(composer.text(), "");
    composer.setText("mine");
    composer.apply("draft", Composer::Placement::After);
    EXPECT_EQ(composer.text(), "mine\n\ndraft");
    composer.undo();
    EXPECT_EQ(composer.text(), "mine");
    composer.apply("draft", Composer::Placement::Instead);
    EXPECT_EQ(composer.text(), "draft");
    EXPECT_TRUE(composer.canUndo());
    composer.undo();
    EXPECT_EQ(composer.text(), "mine");
    EXPECT_FALSE(composer.canUndo());
    EXPECT_EQ(commands("send").size(), 0) << "none of it can send";
    EXPECT_EQ(focus.size(), 6) << "typing goes on after each";
    centre.post(notifications::focusComposer);
    EXPECT_EQ(focus.size(), 7);
}

TEST_F(ComposerTest, aVoiceNoteGoesToTheEngineAsAFile)
{
    composer.voice()->startNote();
    EXPECT_EQ(note.stateWord(), "starting");
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_TRUE(note.recording());
    microphone.recording->seconds = 67.2;
    microphone.recording->loudness = 0.5;
    clock.advance(Milliseconds(100));
    EXPECT_EQ(note.elapsedText(), "1:07");
    EXPECT_EQ(note.level(), 0.5);
    composer.sendVoice();
    const QString path = u"%1/corvane-voice-%2.m4a"_s.arg(QDir::tempPath()).arg(clock.nowMs() / 1000);
    EXPECT_EQ(commands("sendAudio"),
        QStringList(uR"({"chatId":"49171@s.whatsapp.net","cmd":"sendAudio","path":"%1"})"_s.arg(path)));
    EXPECT_EQ(note.stateWord(), "idle");
    EXPECT_TRUE(QFile::remove(path)) << "the engine has yet to read it";
    EXPECT_EQ(defaults.text("nimb.replyPlatform." + ana), "WHATSAPP");
}

TEST_F(ComposerTest, aVoiceNoteThatCannotBeSentWaits)
{
    stopEngine();
    composer.voice()->startNote();
    microphone.answer(MicrophoneAccess::Granted);
    microphone.recording->seconds = 1;
    composer.sendVoice();
    EXPECT_EQ(composer.sendError(), "Account " + account.slug + " is not connected");
    EXPECT_EQ(note.stateWord(), "kept");
    restartEngine();
    composer.sendVoice();
    ASSERT_EQ(commands("sendAudio").size(), 1);
    EXPECT_EQ(composer.sendError(), "");
    EXPECT_TRUE(QFile::remove(engine().commands().last().value("path").toString()));
}

TEST_F(ComposerTest, aVoiceNoteStaysWithThePersonForWhomItWasBegun)
{
    composer.voice()->startNote();
    microphone.answer(MicrophoneAccess::Granted);
    microphone.recording->seconds = 2;
    inbox.person()->select(ben);
    EXPECT_FALSE(composer.voice()->showsNote());
    composer.sendVoice();
    EXPECT_EQ(commands("sendAudio").size(), 0);
    composer.voice()->startNote();
    EXPECT_EQ(composer.sendError(), "A voice note to another contact waits: send or discard it first.");
    inbox.person()->select(ana);
    EXPECT_TRUE(composer.voice()->showsNote());
    EXPECT_EQ(note.stateWord(), "kept");
    EXPECT_EQ(note.elapsedText(), "0:02");
    note.cancel();
    EXPECT_TRUE(QDir(QDir::tempPath()).entryList({ "corvane-voice-17600*" }).isEmpty());
    EXPECT_FALSE(composer.voice()->showsNote());
}

TEST_F(ComposerTest, aMicrophoneThatIsMissingRefusedOrGoesAwaySaysSo)
{
    composer.voice()->startNote();
    microphone.answer(MicrophoneAccess::Denied);
    EXPECT_EQ(note.notice(), "Microphone permission was refused.");
    EXPECT_TRUE(note.idle());
    composer.voice()->startNote();
    EXPECT_EQ(note.notice(), "");
    microphone.answer(MicrophoneAccess::Missing);
    EXPECT_EQ(note.notice(), "No microphone was found.");
    microphone.broken = true;
    composer.voice()->startNote();
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_EQ(note.notice(), "Could not start microphone recording.");
    microphone.broken = false;

    composer.voice()->startNote();
    microphone.answer(MicrophoneAccess::Granted);
    Q_EMIT microphone.recording->interrupted("Timeout");
    EXPECT_EQ(note.notice(), "Could not record: Timeout.");
    EXPECT_TRUE(note.idle());

    composer.voice()->startNote();
    microphone.answer(MicrophoneAccess::Granted);
    microphone.recording->seconds = 3;
    Q_EMIT microphone.recording->interrupted("Connection terminated");
    EXPECT_EQ(note.notice(), "The recording ended: Connection terminated. What was recorded until then is kept.");
    EXPECT_EQ(note.stateWord(), "kept");
    EXPECT_EQ(note.elapsed(), 3);
    composer.sendVoice();
    ASSERT_EQ(commands("sendAudio").size(), 1);
    EXPECT_TRUE(QFile::remove(engine().commands().last().value("path").toString()));

    composer.voice()->startNote();
    note.cancel();
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_TRUE(note.idle()) << "an answer that comes too late begins nothing";
    composer.voice()->startNote();
    microphone.answer(MicrophoneAccess::Granted);
    note.cancel();
    pause();
    EXPECT_TRUE(note.idle());
    EXPECT_EQ(note.elapsed(), 0) << "nobody listens any more";
}
