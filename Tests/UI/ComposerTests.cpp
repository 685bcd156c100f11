#include "Approvals/PendingDraftsView.h"
#include "Engines/AccountStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/OpenPerson.h"
#include "Inbox/Reply.h"
#include "Settings/IntegrationsView.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Await.h"
#include "UI/WindowTest.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QJsonArray>
#include <QMimeData>

namespace corvane {

namespace {

class ComposerWindow : public WindowTest {
protected:
    ComposerWindow()
    {
        showInbox();
        person.select(u"ct:WHATSAPP:49171@s.whatsapp.net"_s);
        rest();
    }

    QStringList sent()
    {
        QStringList texts;
        for (const auto& engine : launcher.children)
            for (const QJsonObject& command : engine->commands())
                if (command.value(u"cmd"_s) == u"send"_s)
                    texts.append(command.value(u"text"_s).toString());
        return texts;
    }

    void queue(const QString& text)
    {
        EXPECT_TRUE(queueDraft(engines.db(), u"wa:studio:49171@s.whatsapp.net"_s, text, u"mcp"_s));
        delivery.refresh();
        rest();
    }

    bool differsFromBefore()
    {
        const QImage now = picture();
        return std::exchange(m_before, now) != now;
    }

private:
    QImage m_before = picture();
};

}

TEST_F(ComposerWindow, aReplyIsTypedAndSentWithKeysAlone)
{
    press(Qt::Key_R);
    EXPECT_TRUE(focusWithin(u"composer"_s));
    type(u"jk e"_s);
    press(Qt::Key_Return);
    type(u"m?"_s);
    EXPECT_EQ(reply.composer()->text(), u"jk e\nm?"_s) << "letters are text here, not commands";
    const double low = item(u"composer"_s)->height();
    for (int i = 0; i < 20; ++i)
        press(Qt::Key_Return);
    const double high = item(u"composer"_s)->height();
    EXPECT_GT(high, low * 2);
    EXPECT_LT(high, 200) << "eight lines, then it scrolls";
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(sent(), QStringList(u"jk e\nm?"_s));
    EXPECT_EQ(reply.composer()->text(), u""_s);
    EXPECT_TRUE(focusWithin(u"composer"_s));

    settings.system()->setReturnSends(true);
    EXPECT_TRUE(reply.composer()->hints()->placeholder().endsWith(u" · Return sends"_s));
    type(u"by"_s);
    press(Qt::Key_Return, Qt::ShiftModifier);
    type(u"choice"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(sent().last(), u"by\nchoice"_s);
    press(Qt::Key_Escape);
    EXPECT_TRUE(focusWithin(u"thread.list"_s));
}

TEST_F(ComposerWindow, aCopiedFileAndPictureArePastedAndASubjectIsTypedWhereTheChannelCarriesThem)
{
    EXPECT_EQ(findItem(u"composer.attach"_s), nullptr);
    launcher.children[0]->printEvent({ { "type", "features" }, { "files", true }, { "subject", true } });
    settle();
    rest();
    ASSERT_NE(item(u"composer.attach"_s), nullptr);
    reply.composer()->requestFocus();
    Attachments& attachments = *reply.composer()->attachments();
    const auto paste = [&](QMimeData* copied, qsizetype count) {
        QGuiApplication::clipboard()->setMimeData(copied);
        press(Qt::Key_V, Qt::ControlModifier);
        EXPECT_TRUE(await([&] { return attachments.files().size() == count; }));
        rest();
    };
    home.write(u"plan.pdf"_s, "a plan");
    auto* const file = new QMimeData;
    file->setUrls({ QUrl::fromLocalFile(home.path(u"plan.pdf"_s)) });
    paste(file, 1);
    auto* const picture = new QMimeData;
    picture->setImageData(QImage(4, 4, QImage::Format_RGB32));
    paste(picture, 2);
    EXPECT_EQ(attachments.files()[1].name, u"Pasted picture.png"_s);
    EXPECT_EQ(QImage(attachments.files()[1].path).size(), QSize(4, 4));
    EXPECT_TRUE(differsFromBefore());
    click(u"file.remove"_s);
    EXPECT_EQ(attachments.files().size(), 1);
    auto* const words = new QMimeData;
    words->setText(u"words"_s);
    QGuiApplication::clipboard()->setMimeData(words);
    reply.composer()->requestFocus();
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(reply.composer()->text(), u"words"_s);
    item(u"composer.subject"_s)->forceActiveFocus();
    type(u"Plans"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(focusWithin(u"composer"_s));
    press(Qt::Key_Return, Qt::ControlModifier);
    const QJsonObject command = launcher.children[0]->commands().last();
    EXPECT_EQ(command[u"subject"], u"Plans"_s);
    EXPECT_EQ(command[u"files"].toArray().size(), 1);
    EXPECT_EQ(findItem(u"attachment"_s), nullptr);
}

TEST_F(ComposerWindow, whatDidNotGoOutOrWasPlacedIsDealtWithWhereItStands)
{
    type(u"r"_s);
    type(u"see you at six"_s);
    click(u"composer.send"_s);
    for (const auto& engine : launcher.children)
        for (const QJsonObject& command : engine->commands())
            if (command.value(u"cmd"_s) == u"send"_s)
                engine->printEvent({ { u"type"_s, u"sendAck"_s }, { u"sendId"_s, command.value(u"sendId"_s) },
                    { u"error"_s, u"no such chat"_s } });
    rest();
    item(u"unsent.retry"_s);
    queue(u"in the box"_s);
    engines.db().exec(u"UPDATE outbound_draft SET status='placed';"_s);
    delivery.refresh();
    rest();
    click(u"draft.line"_s);
    click(u"draft.confirmSent"_s);
    EXPECT_EQ(cell(u"SELECT status FROM outbound_draft;"_s), u"sent"_s);
    click(u"unsent.retry"_s);
    EXPECT_EQ(sent().size(), 2);
    EXPECT_EQ(findItem(u"unsent.retry"_s), nullptr);
}

TEST_F(ComposerWindow, whatIsTypedStaysWithItsPerson)
{
    centre.post(notifications::focusComposer);
    type(u"to Ana"_s);
    person.select(u"ct:WHATSAPP:49172@s.whatsapp.net"_s);
    rest();
    EXPECT_EQ(reply.composer()->text(), u""_s);
    type(u"to Ben"_s);
    person.select(u"ct:WHATSAPP:49171@s.whatsapp.net"_s);
    rest();
    EXPECT_EQ(reply.composer()->text(), u"to Ana"_s);
    EXPECT_EQ(item(u"composer"_s)->property("text"), u"to Ana"_s);
    person.select({});
    rest();
    EXPECT_EQ(findItem(u"composer"_s), nullptr);
}

TEST_F(ComposerWindow, anErrorAndAVoiceNoteShowAboveTheField)
{
    engines.stop(*accounts.findBySlug(u"studio"_s));
    reply.composer()->setText(u"hello"_s);
    rest();
    EXPECT_TRUE(differsFromBefore());
    click(u"composer.send"_s);
    item(u"composer.error"_s);
    EXPECT_TRUE(differsFromBefore());
    reply.composer()->dismissError();

    click(u"composer.voice"_s);
    microphone.answer(MicrophoneAccess::Granted);
    microphone.recording->seconds = 7;
    microphone.recording->loudness = 0.4;
    rest();
    EXPECT_TRUE(differsFromBefore());
    EXPECT_EQ(findItem(u"composer"_s), nullptr);
    click(u"composer.sendVoice"_s);
    item(u"composer.error"_s);
    click(u"composer.discardVoice"_s);
    EXPECT_TRUE(reply.composer()->voice()->note()->idle());
    EXPECT_EQ(item(u"composer"_s)->property("text"), u"hello"_s);
}

TEST_F(ComposerWindow, aDraftIsReadEditedAndSentAfterAQuestionInItsLine)
{
    queue(u"Thanks, see you on Thursday at three."_s);
    EXPECT_TRUE(differsFromBefore());
    EXPECT_EQ(findItem(u"draft.approve"_s), nullptr) << "a press away";
    click(u"draft.line"_s);
    EXPECT_TRUE(differsFromBefore());
    click(u"draft.edit"_s);
    EXPECT_TRUE(focusWithin(u"draft.words"_s));
    press(Qt::Key_A, Qt::ControlModifier);
    type(u"Friday"_s);
    click(u"draft.save"_s);
    EXPECT_EQ(sent(), QStringList());
    click(u"draft.approve"_s);
    EXPECT_EQ(sent(), QStringList()) << "it asks first";
    EXPECT_TRUE(focusWithin(u"draft.send"_s));
    press(Qt::Key_Return);
    item(u"draft.undo"_s);
    clock.advance(seconds(5));
    EXPECT_EQ(sent(), QStringList(u"Friday"_s));
    queue(u"Never mind"_s);
    screens.drafts->askToConfirm(cell(u"SELECT id FROM outbound_draft WHERE status='pending';"_s));
    rest();
    screens.drafts->cancelConfirm();
    rest();
    click(u"draft.line"_s);
    click(u"draft.discard"_s);
    clock.advance(seconds(5));
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM outbound_draft WHERE status='rejected';"_s), u"1"_s);
}

TEST_F(ComposerWindow, aMessageToSomebodyNewIsQueued)
{
    press(Qt::Key_N, Qt::ControlModifier);
    item(u"newMessage"_s);
    EXPECT_TRUE(differsFromBefore());
    EXPECT_TRUE(focusWithin(u"newMessage.recipient"_s));
    EXPECT_FALSE(item(u"newMessage.submit"_s)->isEnabled());
    type(u"+49 170 12345"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(focusWithin(u"newMessage.message"_s));
    type(u"Good day"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(findItem(u"newMessage"_s), nullptr);
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(item(u"newMessage.message"_s)->property("text"), u"Good day"_s) << "what was typed stays";
    click(u"newMessage.submit"_s);
    EXPECT_EQ(findItem(u"newMessage"_s), nullptr);
    EXPECT_EQ(person.selectedId(), u"ct:WHATSAPP:4917012345@s.whatsapp.net"_s);
    EXPECT_EQ(screens.drafts->count(), 1);
    EXPECT_EQ(sent(), QStringList());

    for (int pane = 0; pane < 7 && !focusWithin(u"draft.line"_s); ++pane)
        press(Qt::Key_F6);
    for (const int key : { Qt::Key_Return, Qt::Key_Tab, Qt::Key_Return, Qt::Key_Return })
        press(key);
    clock.advance(seconds(5));
    EXPECT_EQ(sent(), QStringList(u"Good day"_s)) << "opened, approved and confirmed by the keys alone";
    press(Qt::Key_R);
    EXPECT_TRUE(focusWithin(u"composer"_s)) << "and they go on";
}

}
