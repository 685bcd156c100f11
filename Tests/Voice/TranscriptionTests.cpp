#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Platform/Linux/Services.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SpeechRecogniser.h"
#include "Support/Await.h"
#include "Support/RealDecoder.h"
#include "Support/SpeechModelFile.h"
#include "Support/TemporaryHome.h"
#include "Voice/ModelFile.h"
#include "Voice/SpeechModelStore.h"
#include "Voice/TranscriptionService.h"

#include <QCryptographicHash>
#include <QFile>
#include <gtest/gtest.h>

using namespace corvane;
using Kind = SpeechTranscriberError::Kind;

namespace {

const QString spokenFolder = u"/usr/share/pocketsphinx/test/data/librivox/"_s;
const QString spoken = spokenFolder + u"sense_and_sensibility_01_austen_64kb-0870.wav"_s; // seven seconds

QByteArray silence(int seconds)
{
    return QByteArray::fromHex("524946460000000057415645666d74201000000001000100803e0000007d00000200100064617461")
        + QByteArray::fromHex("00000000") + QByteArray(seconds * 32'000, '\0');
}

}

class Transcription : public testing::Test {
protected:
    TranscriptionOutcome transcribe(TranscriptionRequest request)
    {
        request.model = request.model.value_or(m_store.preferredModel());
        std::optional<TranscriptionOutcome> outcome;
        m_service->transcribe(std::move(request)).then([&outcome](TranscriptionOutcome result) {
            outcome = std::move(result);
        });
        EXPECT_TRUE(await([&] { return outcome.has_value(); }));
        return outcome.value_or(std::unexpected(SpeechTranscriberError()));
    }

    SpeechModelSpec install(const QByteArray& file)
    {
        SpeechInstalledModel model;
        model.localPath = m_store.modelsRoot() + u"/ggml-test.bin"_s;
        model.sizeBytes = file.size();
        model.spec = { .repository = u"whisper.cpp"_s,
            .revision = u"0123456789abcdef"_s,
            .variant = u"ggml-test.bin"_s,
            .displayName = u"Test"_s };
        QFile target(model.localPath);
        EXPECT_TRUE(target.open(QIODevice::WriteOnly) && target.write(file) == file.size());
        m_store.add(model);
        return model.spec;
    }

    TemporaryHome m_home;
    RealDecoder m_real;
    UserDefaults m_defaults { m_home.paths().defaultsFile };
    SpeechModelStore m_store { m_home.paths().applicationSupport, m_defaults, m_real.scheduler };
    std::unique_ptr<ProcessLauncher> m_launcher = makeProcessLauncher(m_real.scheduler);
    std::unique_ptr<SpeechRecogniser> m_models = makeModelRecogniser(*m_launcher);
    std::unique_ptr<SpeechRecogniser> m_basic = makeBasicRecogniser(*m_launcher);
    std::unique_ptr<TranscriptionService> m_service
        = std::make_unique<TranscriptionService>(m_real.decoder, *m_models, *m_basic, m_store);
};

TEST_F(Transcription, withoutAModelTheBasicRecogniserHearsEnglish)
{
    double progress = 0;
    const auto outcome = transcribe({ .audioPath = spoken, .locale = u"en_GB"_s, .onProgress = [&](double done) {
                                         EXPECT_GE(done, progress - 0.2); // a pause may be read ahead
                                         progress = done;
                                     } });
    ASSERT_TRUE(outcome) << qPrintable(describe(outcome.error()));
    EXPECT_TRUE(outcome->text.contains(u"leisure to consider how much there might be"_s)) << qPrintable(outcome->text);
    EXPECT_EQ(transcriptModel(outcome->model), u"pocketsphinx:en-us@5prealpha"_s);
    ASSERT_FALSE(outcome->segments.isEmpty());
    EXPECT_LT(outcome->segments.first().startMs, 1000);
    EXPECT_NEAR(double(outcome->segments.last().endMs), 7050, 200);
    EXPECT_GT(progress, 0.9);

    ASSERT_TRUE(writeSegments(m_home.path(u"note.ogg"_s), *outcome));
    EXPECT_EQ(readSegments(m_home.path(u"note.ogg"_s)), outcome->segments);
}

TEST_F(Transcription, whatHoldsNoTextFailsInItsWords)
{
    m_home.write(u"silence.wav"_s, silence(3));
    m_home.write(u"damaged.wav"_s, silence(3).left(30));
    struct Case {
        QString path;
        QString locale;
        Kind kind;
        QString words;
    };
    const QList<Case> cases {
        { m_home.path(u"none.wav"_s), {}, Kind::Unavailable, u"Transcription unavailable: audio file is missing."_s },
        { m_home.path(u"silence.wav"_s), u"en"_s, Kind::EmptyTranscript, u"No speech was detected in that audio."_s },
        { m_home.path(u"damaged.wav"_s), u"en"_s, Kind::Unavailable, u"The file is damaged."_s },
        { spoken, u"de_DE"_s, Kind::MissingModel, u"Transcription unavailable."_s },
    };
    for (const Case& each : cases) {
        const auto outcome = transcribe({ .audioPath = each.path, .locale = each.locale });
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.error().kind, each.kind) << qPrintable(each.path);
        EXPECT_EQ(describe(outcome.error()), each.words);
    }
}

TEST_F(Transcription, aModelIsTakenBeforeTheBasicRecogniserAndItsFailureAfter)
{
    ASSERT_TRUE(m_models->isAvailable()) << "tools/setup builds whisper.cpp";
    const QByteArray file = speechModelFile();
    const auto model = install(file);
    const auto outcome = transcribe({ .audioPath = spoken, .locale = u"de"_s });
    ASSERT_TRUE(outcome) << qPrintable(describe(outcome.error()));
    EXPECT_EQ(outcome->model, model);
    EXPECT_EQ(outcome->text, QLatin1StringView(heardWord));

    // A model file that was damaged after installation.
    install(file.left(file.size() / 2));
    const auto second = transcribe({ .audioPath = spoken, .locale = u"en"_s });
    ASSERT_TRUE(second) << qPrintable(describe(second.error()));
    EXPECT_EQ(second->model, basicRecogniserSpec());
    const auto other = transcribe({ .audioPath = spoken, .locale = u"de"_s });
    ASSERT_FALSE(other);
    EXPECT_EQ(describe(other.error()), u"The speech model cannot be read."_s);
}

TEST_F(Transcription, aCancelledJobAndAServiceThatGoesEndTheWaiting)
{
    const CancelHandle cancel;
    const auto outcome = transcribe({ .audioPath = spoken,
        .locale = u"en"_s,
        .onProgress = [cancel](double) { cancel.cancel(); },
        .cancel = cancel });
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().kind, Kind::Cancelled);

    std::optional<TranscriptionOutcome> left;
    m_service->transcribe({ .audioPath = spoken, .locale = u"en"_s, .model = basicRecogniserSpec() })
        .then([&left](TranscriptionOutcome result) { left = std::move(result); });
    m_service.reset();
    EXPECT_TRUE(left && !*left && left->error().kind == Kind::Cancelled);
}

TEST(ModelFile, onlyAWholeModelPasses)
{
    const TemporaryHome home;
    const QString path = home.path(u"model.bin"_s);
    const std::atomic_bool stop = false;
    const QByteArray whole = speechModelFile();
    struct Case {
        QByteArray content;
        QString words;
    };
    const QString damaged = u"The speech model is damaged: "_s;
    const QList<Case> cases {
        { "RIFF, not a model", u"This is not a speech model: a ggml file for whisper.cpp is needed."_s },
        { whole.left(40), u"This is not a speech model: a ggml file for whisper.cpp is needed."_s },
        { whole.left(300'000), damaged + u"a part of the file is missing."_s },
        { whole.chopped(1), damaged + u"a part of the file is missing."_s },
        { whole + '\0', damaged + u"the file contains extra data."_s },
    };
    for (const Case& each : cases) {
        home.write(u"model.bin"_s, each.content);
        const auto facts = inspectModelFile(path, {}, stop);
        ASSERT_FALSE(facts);
        EXPECT_EQ(facts.error().message, each.words);
    }
    home.write(u"model.bin"_s, whole);
    qint64 read = 0;
    const auto facts = inspectModelFile(path, [&read](qint64 bytes) { read = bytes; }, stop);
    ASSERT_TRUE(facts);
    EXPECT_EQ(read, whole.size());
    EXPECT_EQ(facts->audioLayers, 2);
    EXPECT_EQ(facts->sha256, QString::fromLatin1(QCryptographicHash::hash(whole, QCryptographicHash::Sha256).toHex()));
    EXPECT_FALSE(facts->englishAlone || speaksEnglishAlone(path));
}
