#include "Voice/SpeechTranscript.h"

#include "Foundation/UserDefaults.h"
#include "Support/Print.h"
#include "Support/SpeechModelFile.h"
#include "Support/TemporaryHome.h"
#include "Support/VirtualScheduler.h"
#include "Voice/KnownModels.h"
#include "Voice/ModelFile.h"
#include "Voice/SpeechCutter.h"
#include "Voice/SpeechLanguages.h"
#include "Voice/SpeechModelStore.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

TEST(SpeechTexts, everyFailureHasItsWords)
{
    using Kind = SpeechTranscriberError::Kind;
    const auto words = [](Kind kind) {
        return describe(SpeechTranscriberError { .kind = kind });
    };
    EXPECT_EQ(words(Kind::MissingModel), "Transcription unavailable.");
    EXPECT_EQ(words(Kind::Unavailable), "Transcription unavailable.");
    EXPECT_EQ(describe(SpeechTranscriberError::unavailable("No recogniser.")), "No recogniser.");
    EXPECT_TRUE(words(Kind::MissingPermission).startsWith("The microphone is not allowed. "));
    EXPECT_EQ(words(Kind::EmptyTranscript), "No speech was detected in that audio.");
    EXPECT_EQ(words(Kind::Cancelled), "The transcription was cancelled.");
}

TEST(SpeechTexts, segmentsAreKeptBesideTheSound)
{
    const TemporaryHome home;
    const QString sound = home.path("a.wav");
    EXPECT_TRUE(readSegments(sound).isEmpty());
    const SpeechTranscriptResult result { "a b", basicRecogniserSpec(), { { 1, 20, "a" }, { 30, 400, "b" } } };
    EXPECT_TRUE(writeSegments(sound, result));
    const QList<SpeechSegment> read = readSegments(sound);
    ASSERT_EQ(read.size(), 2);
    EXPECT_EQ(read.last().startMs, 30);
    EXPECT_EQ(read.last().endMs, 400);
    EXPECT_EQ(read.last().text, "b");
    EXPECT_TRUE(home.read("a.wav.segments.json").contains("\"variant\":\"en-us\""));
}

TEST(SpeechTexts, aLanguageHasItsNameAndItsCode)
{
    EXPECT_EQ(modelLanguage("de_AT"), "de");
    EXPECT_EQ(modelLanguage("en-GB"), "en");
    EXPECT_EQ(modelLanguage("nb_NO"), "no");
    EXPECT_EQ(modelLanguage("C"), "en");
    EXPECT_EQ(modelLanguage(anyLanguage), anyLanguage);
    EXPECT_EQ(modelLanguages().first() + modelLanguages().last(), "ensu");
    EXPECT_EQ(localeDisplayName(anyLanguage), "Detected from the sound");
    EXPECT_EQ(localeDisplayName("de_AT"), "German (Austria)");
    EXPECT_EQ(localeDisplayName("de"), "German");
    EXPECT_EQ(localeDisplayName("tl"), "Filipino");
    EXPECT_EQ(localeDisplayName("C"), "English");
    EXPECT_EQ(localeDisplayName("xx"), "xx");
    EXPECT_TRUE(localeDisplayName({}).startsWith("System ("));
}

TEST(SpeechTexts, aModelIsWrittenAndReadBack)
{
    const SpeechModelSpec spec { "whisper.cpp", "0123456789abcdef", "ggml-base.bin", "Base", "Role", 0.5, false, true };
    EXPECT_EQ(decodedSpeechModelSpec(encoded(spec)), spec);
    EXPECT_EQ(transcriptModel(spec), "whisper.cpp:ggml-base.bin@0123456789");
    QJsonObject object { { "repository", "r" }, { "variant", "v" } };
    const auto least = decodedSpeechModelSpec(object);
    ASSERT_TRUE(least);
    EXPECT_EQ(least->displayName + '|' + least->role, "v|System transcription");
    EXPECT_TRUE(least->isDefault && !least->isSmoke);
    object.remove("repository");
    EXPECT_FALSE(decodedSpeechModelSpec(object));
    EXPECT_FALSE(decodedSpeechModelSpec({ { "repository", "r" } }));
    SpeechInstalledModel model { spec, "/cache", "/cache/base", QDateTime::fromMSecsSinceEpoch(1000), 7, {} };
    EXPECT_EQ(decodedInstalledModel(encoded(model)), model);
    model.lastUsedAt = QDateTime::fromMSecsSinceEpoch(2000);
    EXPECT_EQ(decodedInstalledModel(encoded(model)), model);
    EXPECT_FALSE(decodedInstalledModel({ { "spec", object } }));

    const KnownModel& english = knownModels().value(1);
    EXPECT_EQ(modelName(english.fileName), "Whisper Tiny, English");
    EXPECT_EQ(modelName("my.bin"), "my.bin");
    EXPECT_TRUE(publishedAt(english).path().endsWith("/ggml-tiny.en.bin"));
}

TEST(SpeechTexts, aVoiceNoteIsHeardInTheChosenLanguage)
{
    TemporaryHome home;
    UserDefaults defaults(home.paths().defaultsFile);
    VirtualScheduler clock;
    SpeechModelStore store(home.paths().applicationSupport, defaults, clock);
    EXPECT_EQ(voiceNoteLocale(defaults, store), "") << "the basic recogniser detects none";
    SpeechInstalledModel model;
    model.spec = { .repository = "whisper.cpp", .revision = "r", .variant = "v", .displayName = "V" };
    model.localPath = home.path("v.bin");
    home.write("v.bin", "model");
    model.sizeBytes = 5;
    const QSignalSpy changed(&store, &SpeechModelStore::changed);
    store.add(model);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(voiceNoteLocale(defaults, store), anyLanguage);
    defaults.setText(dictationLocaleKey, "de_AT");
    EXPECT_EQ(voiceNoteLocale(defaults, store), "de_AT");

    store.refresh();
    EXPECT_EQ(changed.count(), 1) << "nothing is new";
    store.markUsed(basicRecogniserSpec());
    store.remove(basicRecogniserSpec());
    EXPECT_EQ(changed.count(), 1) << "it is no file";
    store.markUsed(model.spec);
    EXPECT_EQ(changed.count(), 2);
    store.prefer(basicRecogniserSpec());
    EXPECT_EQ(changed.count(), 3);
    EXPECT_EQ(store.preferredModel(), basicRecogniserSpec()) << "though there is a model";
    store.remove(model.spec);
    EXPECT_EQ(changed.count(), 4);
    EXPECT_EQ(store.installedModel(model.spec), std::nullopt);
    home.write("v.bin", "model");
    store.refresh();
    EXPECT_TRUE(store.installed().isEmpty()) << "it is not in the list any more";
}

TEST(SpeechTexts, aModelIsReadOnlyIfItsHeadIsOne)
{
    const TemporaryHome home;
    const QByteArray whole = speechModelFile();
    std::atomic_bool stop = false;
    const auto with = [&](const QByteArray& content) {
        home.write("m.bin", content);
        const auto facts = inspectModelFile(home.path("m.bin"), {}, stop);
        return facts ? QString("whole") : facts.error().message;
    };
    const auto number = [&](int place, qint32 value) {
        QByteArray changed = whole;
        changed.replace(place * 4, 4, QByteArray(reinterpret_cast<const char*>(&value), 4));
        return with(changed);
    };
    const QString none = "This is not a speech model: a ggml file for whisper.cpp is needed.";
    EXPECT_EQ(with(whole), "whole");
    for (const int place : { 0, 1, 2, 3, 5, 9, 10 }) {
        EXPECT_EQ(number(place, 0), none) << place;
        EXPECT_EQ(number(place, 1'000'001), none) << place;
    }
    EXPECT_EQ(number(2, 100'000), "whole");
    EXPECT_EQ(number(2, 100'001), none);
    const QString missing = "The speech model is damaged: a part of the file is missing.";
    for (const qint32 count : { -1, 100'000 }) {
        EXPECT_EQ(number(12, count), missing);
        EXPECT_EQ(number(13, count), missing);
    }
    EXPECT_EQ(number(5, 3), missing) << "a layer more";
    EXPECT_EQ(number(5, 1), "The speech model is damaged: the file contains extra data.");
    EXPECT_EQ(with(whole + 'x'), "The speech model is damaged: the file contains extra data.");
    EXPECT_EQ(with(whole.chopped(1)), missing);
    EXPECT_EQ(with(whole.first(40)), none);
    stop = true;
    EXPECT_EQ(with(whole), "Cancelled.");
    EXPECT_TRUE(inspectModelFile(home.path("none"), {}, stop).error().message.startsWith("The file cannot be read: "));
    EXPECT_FALSE(speaksEnglishAlone(home.path("m.bin")));
    EXPECT_FALSE(speaksEnglishAlone(home.path("none")));
    QByteArray english = whole.first(48);
    english.replace(4, 4, QByteArray::fromHex("98ca0000")); // 51,864 words
    home.write("en.bin", english);
    EXPECT_TRUE(speaksEnglishAlone(home.path("en.bin")));
    english[0] = 'x';
    home.write("en.bin", english);
    EXPECT_FALSE(speaksEnglishAlone(home.path("en.bin")));
}

TEST(SpeechTexts, timesOfACutLeadBack)
{
    const SpeechCut cut { {}, { { 0, 1000 }, { 500, 9000 } } };
    EXPECT_EQ(cut.soundMs(0), 1000);
    EXPECT_EQ(cut.soundMs(499), 1499);
    EXPECT_EQ(cut.soundMs(500), 9000);
    EXPECT_EQ(cut.soundMs(700), 9200);
    EXPECT_EQ(SpeechCut().soundMs(5), 5);
}
