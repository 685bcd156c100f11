#include "Foundation/Literals.h"
#include "Inbox/OpenPerson.h"
#include "Inbox/Reply.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"
#include "Support/Await.h"
#include "Support/SpokenSound.h"
#include "UI/DictationWindow.h"
#include "UI/WindowTest.h"
#include "Voice/DictationAnywhere.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QStyleHints>
#include <QTest>

namespace corvane {

namespace {

class VoiceWindow : public WindowTest {
protected:
    VoiceWindow()
    {
        facts.now.physicalMemoryBytes = 16ULL << 30;
        facts.now.powerSourceStates = { u"AC Power"_s };
        const QString note = home.path(u"share/Corvane/media/studio/note.wav"_s);
        QDir().mkpath(home.path(u"share/Corvane/media/studio"_s));
        QFile::copy(spokenSound, note);
        showInbox();
        receive(*launcher.children.first(), u"49172@s.whatsapp.net"_s, u"Ben"_s, {},
            { { "mediaType", "audio" }, { "mediaPath", note } });
        person.select(u"ct:WHATSAPP:49172@s.whatsapp.net"_s);
        rest();
    }

    bool waitFor(const QString& objectName)
    {
        return await([&] {
            rest();
            return findItem(objectName) != nullptr;
        });
    }
};

}

TEST_F(VoiceWindow, aVoiceNoteIsTranscribedAndReadAloud)
{
    click(u"thread.transcribe"_s);
    rest();
    EXPECT_TRUE(item(u"thread.transcribeState"_s)->property("text").toString().startsWith(u"Transcribing locally…"_s));
    ASSERT_TRUE(waitFor(u"thread.speak"_s));
    EXPECT_EQ(findItem(u"thread.transcribe"_s), nullptr);
    click(u"thread.speak"_s);
    rest();
    EXPECT_EQ(item(u"thread.speak"_s)->property("text").toString(), u"Stop reading"_s);
    click(u"thread.speak"_s);
}

TEST_F(VoiceWindow, aReplyIsDictatedAtTheCursorAndEscLeavesIt)
{
    reply.composer()->setText(u"Yes.  See you."_s);
    press(Qt::Key_R);
    for (int i = 0; i < 9; ++i)
        press(Qt::Key_Left);
    press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    microphone.answer(MicrophoneAccess::Granted);
    microphone.recording->sound = spokenBytes();
    microphone.recording->seconds = 3;
    microphone.recording->loudness = 0.4;
    clock.advance(Milliseconds(100));
    rest();
    click(u"dictation.finish"_s);
    ASSERT_TRUE(await([&] {
        rest();
        return reply.composer()->text().size() > 20;
    }));
    EXPECT_TRUE(reply.composer()->text().startsWith(u"Yes. he "_s)) << qPrintable(reply.composer()->text());
    EXPECT_TRUE(reply.composer()->text().endsWith(u" See you."_s));
    EXPECT_TRUE(focusWithin(u"composer"_s));

    press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    microphone.answer(MicrophoneAccess::Granted);
    rest();
    press(Qt::Key_Escape);
    EXPECT_EQ(reply.composer()->voice()->dictation()->stateWord(), u"idle"_s);
    EXPECT_TRUE(focusWithin(u"composer"_s));

    const ComposerDictation& dictation = *reply.composer()->voice()->dictation();
    const QPoint button = item(u"composer.dictate"_s)->mapToScene(QPointF(8, 8)).toPoint();
    QGuiApplication::styleHints()->setMousePressAndHoldInterval(0);
    QTest::mousePress(front(), Qt::LeftButton, {}, button);
    ASSERT_TRUE(await([&] { return dictation.stateWord() == u"starting"_s; })) << "it is held";
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_EQ(dictation.stateWord(), u"recording"_s);
    QTest::mouseRelease(front(), Qt::LeftButton, {}, button);
    EXPECT_EQ(dictation.stateText(), u"Nothing was recorded."_s);
    QGuiApplication::styleHints()->setMousePressAndHoldInterval(-1);

    defaults.setText(u"nimb.dictationLocale"_s, u"de"_s);
    press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    rest();
    click(u"dictation.model"_s);
    rest();
    EXPECT_EQ(settings.section(), u"voice"_s);
    EXPECT_NE(item(u"voice.download"_s), nullptr);
}

TEST_F(VoiceWindow, dictationIsSwitchedOnInTheSettingsAndOffersWhatNoProgramTook)
{
    shell.openSettings();
    settings.setSection(u"voice"_s);
    rest();
    EXPECT_EQ(findItem(u"dictation.key"_s), nullptr);
    click(u"dictation.enabled"_s);
    rest();
    EXPECT_NE(findItem(u"dictation.key"_s), nullptr);
    DictationAnywhere& dictation = app.dictation();
    ASSERT_TRUE(dictation.isEnabled());

    const DictationWindow windows(window.engine(), dictation);
    app.open({ u"--toggle-dictation"_s });
    microphone.answer(MicrophoneAccess::Granted);
    rest();
    ASSERT_NE(windows.panel(), nullptr);
    EXPECT_TRUE(windows.panel()->isVisible());
    EXPECT_TRUE(windows.panel()->flags() & Qt::WindowDoesNotAcceptFocus);
    EXPECT_EQ(QGuiApplication::focusWindow(), window.window());
    turnTo(windows.panel());
    EXPECT_EQ(item(u"dictationPanel.text"_s)->property("text"), u"Listening (English) …"_s);
    click(u"dictationPanel.cancel"_s);
    clock.advance(seconds(2));
    EXPECT_FALSE(windows.panel()->isVisible());

    insertion.outcome = InsertionOutcome::Missed;
    recogniser.says = { { 0, 1000, u"Good morning"_s } };
    dictation.toggleRecording();
    microphone.answer(MicrophoneAccess::Granted);
    microphone.recording->seconds = 2;
    microphone.recording->sound = spokenBytes();
    dictation.toggleRecording();
    ASSERT_TRUE(await([&] { return windows.offer() && windows.offer()->isVisible(); }));
    turnTo(windows.offer());
    rest();
    EXPECT_EQ(item(u"dictationOffer.text"_s)->property("text"), u"Good morning"_s);
    click(u"dictationOffer.copy"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"Good morning"_s);
    EXPECT_FALSE(windows.offer()->isVisible());
    turnTo(nullptr);
    rest();
    EXPECT_NE(findItem(u"dictation.problem"_s), nullptr);
}

}
