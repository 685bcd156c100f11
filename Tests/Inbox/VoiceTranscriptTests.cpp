#include "InboxViewTest.h"

#include <QDir>
#include <QFile>

using namespace corvane;

namespace {

const QString spoken = "/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0880.wav";

class VoiceTranscriptTest : public InboxViewTest {
protected:
    VoiceTranscriptTest()
    {
        lumo.machine.now.physicalMemoryBytes = 16ULL << 30;
        lumo.machine.now.powerSourceStates = { "AC Power" };
        receiveFromAnaAndBen();
        inbox.person()->select(ana);
        QDir().mkpath(home.path("share/Corvane/media/main"));
        QFile::copy(spoken, note);
        receive(ana, {}, { { "mediaType", "audio" }, { "mediaPath", note } });
    }

    VoiceTranscripts& transcripts() { return *inbox.person()->transcripts(); }

    const QString note = home.path("share/Corvane/media/main/note.wav");
    const QString id = "wa:msg:m3";
};

}

TEST_F(VoiceTranscriptTest, aVoiceNoteBecomesTextThatIsStoredShownSearchedAndReadAloud)
{
    transcripts().transcribe(id);
    EXPECT_EQ(transcripts().state(id)->text, "Transcribing locally…");
    ASSERT_TRUE(await([&] { return !transcripts().state(id); }));
    EXPECT_EQ(
        cell("SELECT model FROM audio_transcript WHERE message_id='" + id + "';"), "pocketsphinx:en-us@5prealpha");
    EXPECT_FALSE(readSegments(note).isEmpty());
    EXPECT_TRUE(inbox.person()->messageActions()->readableText(id).contains("young man"));
    type("young man");
    EXPECT_TRUE(column(inbox.list()->results()->messages(), "snippet").value(0).contains("<b>young man</b>"));

    transcripts().speak(id);
    EXPECT_EQ(transcripts().speakingId(), id);
    ASSERT_TRUE(await([&] { return voice.reader.current == AudioPlayer::State::Playing; }));
    transcripts().speak(id);
    EXPECT_EQ(transcripts().speakingId(), "");
    EXPECT_EQ(voice.reader.current, AudioPlayer::State::Idle);
}

TEST_F(VoiceTranscriptTest, whatHindersATranscriptIsSaidAndLeavesWithTheThread)
{
    lumo.machine.now.powerSourceStates = { "Battery Power" };
    transcripts().transcribe(id);
    EXPECT_EQ(transcripts().state(id)->text,
        "This computer is on battery. Connect power before running local transcription.");
    lumo.machine.now.powerSourceStates = { "AC Power" };
    defaults.setText("nimb.dictationLocale", "de");
    transcripts().transcribe(id);
    ASSERT_TRUE(await([&] { return transcripts().state(id)->kind != AudioTranscriptionState::Kind::Loading; }));
    EXPECT_EQ(transcripts().state(id)->kind, AudioTranscriptionState::Kind::MissingModel);
    inbox.person()->select(ben);
    inbox.person()->select(ana);
    EXPECT_FALSE(transcripts().state(id));
}

TEST_F(VoiceTranscriptTest, whatIsDictatedStandsAtTheCursorAndItsSoundIsGone)
{
    Composer& composer = *inbox.reply()->composer();
    ComposerVoice& speech = *composer.voice();
    ComposerDictation& dictation = *speech.dictation();
    composer.setText("So, indeed.");
    QSignalSpy said(&speech, &ComposerVoice::dictated);
    speech.dictate();
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_EQ(dictation.stateText(), "Dictating locally");
    QFile sound(spoken);
    ASSERT_TRUE(sound.open(QIODevice::ReadOnly));
    microphone.recording->sound = sound.readAll();
    microphone.recording->seconds = 3;
    speech.dictate();
    EXPECT_EQ(dictation.stateText(), "Transcribing with Basic English recogniser");
    ASSERT_TRUE(await([&] { return !said.isEmpty(); }));
    EXPECT_EQ(dictation.stateText(), "Dictation inserted into composer.");
    EXPECT_TRUE(QDir(QDir::tempPath()).entryList({ "corvane-voice-*" }).isEmpty());

    EXPECT_EQ(composer.insertDictation("he said", 3), 11);
    EXPECT_EQ(composer.text(), "So, he said indeed.");
    EXPECT_EQ(composer.insertDictation("so", 0), 3);
    EXPECT_EQ(composer.text(), "so So, he said indeed.");
    composer.undo();
    EXPECT_EQ(composer.text(), "So, he said indeed.");

    speech.dictate();
    microphone.answer(MicrophoneAccess::Denied);
    EXPECT_EQ(dictation.stateWord() + ": " + dictation.stateText(), "error: Microphone permission was refused.");
    dictation.cancel();
    EXPECT_EQ(dictation.stateWord(), "idle");
}

TEST_F(VoiceTranscriptTest, whatIsDictatedToSomebodyWhoIsLeftStandsInTheirText)
{
    Composer& composer = *inbox.reply()->composer();
    ComposerVoice& speech = *composer.voice();
    composer.setText("So");
    const QSignalSpy here(&speech, &ComposerVoice::dictated);
    const QSignalSpy there(&speech, &ComposerVoice::dictatedTo);
    speech.dictate();
    microphone.answer(MicrophoneAccess::Granted);
    QFile sound(spoken);
    ASSERT_TRUE(sound.open(QIODevice::ReadOnly));
    microphone.recording->sound = sound.readAll();
    microphone.recording->seconds = 3;
    inbox.person()->select(ben);
    ASSERT_TRUE(await([&] { return !there.isEmpty(); }));
    EXPECT_EQ(here.size(), 0);
    EXPECT_EQ(composer.text(), "");
    inbox.person()->select(ana);
    EXPECT_EQ(composer.text(), "So " + there.first().at(1).toString());
    clock.advance(seconds(4));
    EXPECT_EQ(speech.dictation()->stateText(), "");
}

TEST_F(VoiceTranscriptTest, aDictationSaysWhatIsMissingAndEndsWithItsKey)
{
    ComposerVoice& speech = *inbox.reply()->composer()->voice();
    ComposerDictation& dictation = *speech.dictation();
    defaults.setText("nimb.dictationLocale", "de");
    speech.dictate();
    EXPECT_EQ(dictation.stateText(), "Dictation in German needs a speech model.");
    EXPECT_FALSE(dictation.active());
    defaults.setText("nimb.dictationLocale", "en");
    dictation.start({});
    EXPECT_FALSE(dictation.active()) << "to nobody";
    speech.dictate();
    EXPECT_EQ(dictation.stateText(), "Asking for the microphone…");
    dictation.letGo();
    EXPECT_EQ(dictation.stateWord() + dictation.stateText(), "idle");
    speech.dictate();
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_TRUE(dictation.active());
    dictation.letGo();
    EXPECT_EQ(dictation.stateWord() + ": " + dictation.stateText(), "error: Nothing was recorded.");
    inbox.person()->select({});
    speech.dictate();
    speech.startNote();
    EXPECT_FALSE(dictation.active());
    EXPECT_TRUE(speech.note()->idle());
}
