#include "Foundation/Literals.h"
#include "Voice/DictationAnywhere.h"

#include "Foundation/UserDefaults.h"
#include "Support/Await.h"
#include "Support/FakeLanguageModel.h"
#include "Support/FakeMicrophone.h"
#include "Support/FakeShortcuts.h"
#include "Support/FakeTextInsertion.h"
#include "Support/LogCapture.h"
#include "Support/RealVoice.h"
#include "Support/SpokenSound.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"
#include "Voice/SpeechLanguages.h"

#include <QDir>
#include <QFileInfo>

using namespace corvane;
namespace {

/// The first words of the sentence, for tests in which the text does not matter.
QByteArray someWords()
{
    constexpr qsizetype secondAndAHalf = 44 + 48'000;
    return spokenBytes().left(secondAndAHalf);
}

class Dictation : public testing::Test {
protected:
    Dictation()
    {
        qputenv("TMPDIR", QFile::encodeName(home.path(u"tmp"_s)));
        QDir().mkpath(home.path(u"tmp"_s));
        lumo.machine.now.physicalMemoryBytes = 16ULL << 30;
        lumo.machine.now.powerSourceStates = { u"AC Power"_s };
        defaults.setText(dictationLocaleKey, u"en_GB"_s);
        dictation.emplace(
            DictationAnywhere::Surroundings { voice.services, microphone, &insertion, &keys, defaults, clock });
    }
    ~Dictation() override { qunsetenv("TMPDIR"); }

    QString panel() const
    {
        const DictationPanel& shown = *const_cast<DictationAnywhere&>(*dictation).panel();
        return shown.isVisible() ? shown.modeWord() + u": "_s + shown.text() : u"hidden"_s;
    }

    void listen(const QByteArray& sound)
    {
        Q_EMIT keys.pressed(u"dictation"_s);
        microphone.answer(MicrophoneAccess::Granted);
        microphone.recording->seconds = 3;
        microphone.recording->loudness = 0.5;
        microphone.recording->sound = sound;
    }

    bool reaches(DictationAnywhereState::Kind kind)
    {
        return await([&] { return dictation->state().kind == kind; });
    }

    QStringList files() const { return QDir(home.path(u"tmp"_s)).entryList(QDir::Files); }

    LogCapture logs;
    TemporaryHome home;
    VirtualScheduler clock;
    UserDefaults defaults { home.paths().defaultsFile };
    FakeLumo lumo { clock };
    RealVoice voice { lumo.machine, defaults, clock, home.paths().applicationSupport };
    FakeMicrophone microphone;
    FakeTextInsertion insertion;
    FakeShortcuts keys;
    std::optional<DictationAnywhere> dictation;
};

using Kind = DictationAnywhereState::Kind;

}

TEST_F(Dictation, whatIsSaidAfterTheKeyIsInsertedAndItsSoundDeleted)
{
    dictation->start();
    EXPECT_TRUE(keys.bound.isEmpty());
    dictation->toggleRecording();
    EXPECT_EQ(panel(), u"attention: Dictation is off in Settings > Voice."_s);
    clock.advance(Milliseconds(1800));
    EXPECT_EQ(panel(), u"hidden"_s);

    keys.taken = { u"Ctrl+Alt+D"_s };
    dictation->setEnabled(true);
    EXPECT_TRUE(logs.contains(u"[DictationAnywhere] install=1 register=1 (Ctrl+Alt+Shift+D)"_s));
    listen(spokenBytes());
    EXPECT_EQ(insertion.aims, 1);
    EXPECT_EQ(panel(), u"listening: Listening (English) … Ctrl+Alt+Shift+D to finish"_s);
    EXPECT_EQ(dictation->state(), (DictationAnywhereState { .kind = Kind::Recording, .startedAtMs = clock.nowMs() }));
    EXPECT_TRUE(keys.states.contains(u"dictation.cancel"_s));
    clock.advance(Milliseconds(100));
    EXPECT_EQ(dictation->panel()->elapsedText(), u"0:03"_s);
    EXPECT_EQ(dictation->panel()->level(), 0.5);
    Q_EMIT keys.pressed(u"dictation"_s);
    EXPECT_FALSE(keys.states.contains(u"dictation.cancel"_s));
    Q_EMIT keys.pressed(u"dictation"_s);
    EXPECT_EQ(panel(), u"busy: Transcribing…"_s);
    ASSERT_TRUE(reaches(Kind::Inserted));
    EXPECT_EQ(panel(), u"done: Inserted"_s);
    ASSERT_EQ(insertion.texts.size(), 1);
    EXPECT_TRUE(insertion.texts.first().endsWith(u"young man"_s)) << qPrintable(insertion.texts.first());
    EXPECT_EQ(files(), QStringList());
    clock.advance(Milliseconds(1200));
    EXPECT_EQ(panel(), u"hidden"_s);
}

TEST_F(Dictation, whereNothingTakesTheTextItIsCopiedOrOffered)
{
    dictation->setEnabled(true);
    const auto end = [&](InsertionOutcome outcome, InsertionWay way, Kind state) {
        insertion.outcome = outcome;
        insertion.current = way;
        listen(someWords());
        dictation->toggleRecording();
        EXPECT_TRUE(reaches(state));
        return panel();
    };
    EXPECT_EQ(end(InsertionOutcome::Copied, InsertionWay::None, Kind::Copied),
        u"attention: Copied - allow Accessibility to paste automatically."_s);
    clock.advance(Milliseconds(2399));
    EXPECT_NE(panel(), u"hidden"_s);
    clock.advance(Milliseconds(1));
    EXPECT_EQ(panel(), u"hidden"_s);
    EXPECT_EQ(end(InsertionOutcome::Copied, InsertionWay::PasteKeys, Kind::Copied),
        u"attention: Copied - no program accepted the text."_s);
    EXPECT_TRUE(dictation->offeredText().isEmpty());
    EXPECT_EQ(end(InsertionOutcome::Password, InsertionWay::PasteKeys, Kind::Failed),
        u"attention: Nothing was inserted: this is a password field."_s);
    EXPECT_EQ(dictation->offeredText(), insertion.texts.last());
    listen({});
    EXPECT_TRUE(dictation->offeredText().isEmpty()) << "the next one takes its place";
}

TEST_F(Dictation, everyFailureEndsInThePanelWithoutAFile)
{
    dictation->setEnabled(true);
    Q_EMIT keys.pressed(u"dictation"_s);
    clock.advance(Milliseconds(500));
    EXPECT_EQ(panel(), u"attention: Allow microphone access to start dictation."_s);
    microphone.answer(MicrophoneAccess::Missing);
    EXPECT_EQ(panel(), u"attention: Could not start microphone — no microphone was found"_s);
    clock.advance(Milliseconds(4000));
    EXPECT_EQ(panel(), u"hidden"_s);

    listen("RIFF but no sound"_ba);
    dictation->toggleRecording();
    ASSERT_TRUE(reaches(Kind::Failed));
    EXPECT_EQ(dictation->state().message, u"The file is damaged."_s);
    listen({});
    microphone.recording->seconds = 0;
    Q_EMIT microphone.recording->interrupted(u"the microphone went away"_s);
    EXPECT_EQ(dictation->problem(), u"Could not start microphone — the microphone went away"_s);
    listen(someWords());
    Q_EMIT microphone.recording->interrupted(u"the microphone went away"_s);
    EXPECT_TRUE(reaches(Kind::Inserted)) << "what was said until then";
    EXPECT_EQ(dictation->problem(), QString());
    microphone.broken = true;
    Q_EMIT keys.pressed(u"dictation"_s);
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_EQ(dictation->state().kind, Kind::Failed);
    microphone.broken = false;

    defaults.setText(dictationLocaleKey, u"de_DE"_s);
    dictation->toggleRecording();
    EXPECT_EQ(panel(), u"attention: Dictation in German needs a speech model."_s);
    EXPECT_EQ(files(), QStringList());
}

TEST_F(Dictation, escTheReleasedKeyAndTheSettingEndIt)
{
    dictation->setEnabled(true);
    listen(someWords());
    Q_EMIT keys.released(u"dictation"_s);
    EXPECT_EQ(dictation->state().kind, Kind::Recording) << "it is no push-to-talk";
    Q_EMIT keys.pressed(u"dictation.cancel"_s);
    EXPECT_EQ(panel(), u"attention: Dictation cancelled."_s);
    EXPECT_EQ(dictation->state().kind, Kind::Idle);

    dictation->setPushToTalk(true);
    listen(someWords());
    EXPECT_EQ(panel(), u"listening: Listening (English) … release Ctrl+Alt+D to finish"_s);
    Q_EMIT keys.released(u"dictation"_s);
    EXPECT_EQ(dictation->state().kind, Kind::Transcribing);
    dictation->cancel();
    Q_EMIT keys.pressed(u"dictation"_s);
    Q_EMIT keys.released(u"dictation"_s);
    microphone.answer(MicrophoneAccess::Granted);
    EXPECT_EQ(dictation->state().kind, Kind::Idle) << "let go before the microphone was there";

    listen(someWords());
    const QString stale = home.path(u"tmp/corvane-dictation-of-a-killed-program.wav"_s);
    home.write(u"tmp/corvane-dictation-of-a-killed-program.wav"_s, "old"_ba);
    clock.setNowMs(QFileInfo(stale).lastModified().toMSecsSinceEpoch() + 600'001);
    dictation->setEnabled(false);
    EXPECT_EQ(panel(), u"attention: Dictation is off."_s);
    EXPECT_TRUE(keys.states.isEmpty()) << "its keys are free for others";
    clock.advance(Milliseconds(1600));
    EXPECT_EQ(panel(), u"hidden"_s);
    dictation->start();
    EXPECT_EQ(files(), QStringList());
    EXPECT_TRUE(insertion.texts.isEmpty());
}
