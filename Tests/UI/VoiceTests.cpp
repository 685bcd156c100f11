#include "Support/Await.h"
#include "Support/SpokenSound.h"
#include "WindowTest.h"

#include <QDir>

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
        inbox.select(u"ct:WHATSAPP:49172@s.whatsapp.net"_s);
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
    inbox.composer()->setText(u"Yes.  See you."_s);
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
        return inbox.composer()->text().size() > 20;
    }));
    EXPECT_TRUE(inbox.composer()->text().startsWith(u"Yes. he "_s)) << qPrintable(inbox.composer()->text());
    EXPECT_TRUE(inbox.composer()->text().endsWith(u" See you."_s));
    EXPECT_TRUE(focusWithin(u"composer"_s));

    press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    microphone.answer(MicrophoneAccess::Granted);
    rest();
    press(Qt::Key_Escape);
    EXPECT_EQ(inbox.composer()->dictation()->stateWord(), u"idle"_s);
    EXPECT_TRUE(focusWithin(u"composer"_s));

    defaults.setText(u"nimb.dictationLocale"_s, u"de"_s);
    press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    rest();
    click(u"dictation.model"_s);
    rest();
    EXPECT_EQ(settings.section(), u"voice"_s);
    EXPECT_NE(item(u"voice.download"_s), nullptr);
}

}
