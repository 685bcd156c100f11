#include "Voice/TranscriptionService.h"

#include "Foundation/Arrival.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Platform/SpeechRecogniser.h"
#include "Voice/ModelFile.h"
#include "Voice/SpeechCutter.h"
#include "Voice/SpeechLanguages.h"
#include "Voice/SpeechModelStore.h"

#include <QFileInfo>

namespace corvane {

namespace {

using Kind = SpeechTranscriberError::Kind;
using Piece = std::expected<SoundPiece, DecodeFailure>;

constexpr int pieceFrames = speechFormat.rate * 10;
const QString english = u"en"_s;

std::unexpected<SpeechTranscriberError> unavailable(const QString& words)
{
    return std::unexpected(SpeechTranscriberError::unavailable(words));
}

std::unexpected<SpeechTranscriberError> failed(Kind kind)
{
    return std::unexpected(SpeechTranscriberError { .kind = kind });
}

/// The other recogniser would fail the same way.
bool isFinal(const SpeechTranscriberError& error)
{
    return error.kind == Kind::MissingPermission || error.kind == Kind::Cancelled
        || error.kind == Kind::EmptyTranscript;
}

SpeechTranscriptResult transcriptOf(const QList<SpeechSegment>& segments, const SpeechModelSpec& model)
{
    QStringList texts;
    for (const SpeechSegment& segment : segments)
        texts.append(segment.text);
    return { texts.join(QLatin1Char(' ')).trimmed(), model, segments };
}

}

struct TranscriptionService::Reading {
    Arrival<Piece> piece;
    MediaDecoder::Handle handle;
};

TranscriptionService::TranscriptionService(
    MediaDecoder& decoder, SpeechRecogniser& models, SpeechRecogniser& basic, const SpeechModelStore& store)
    : m_decoder(decoder)
    , m_models(models)
    , m_basic(basic)
    , m_store(store)
{
}

TranscriptionService::~TranscriptionService()
{
    *m_isGone = true;
    for (const auto& each : std::as_const(m_readings)) {
        if (const auto reading = each.lock())
            reading->piece.arrive(std::unexpected(DecodeFailure::Unavailable));
    }
}

bool TranscriptionService::speaks(const QString& language) const
{
    if (language == english && m_basic.isAvailable())
        return true;
    TranscriptionRequest request;
    request.locale = language;
    request.model = m_store.preferredModel();
    return modelRoute(request).has_value();
}

void TranscriptionService::prewarm(const QString& locale)
{
    TranscriptionRequest request;
    request.locale = locale;
    request.model = m_store.preferredModel();
    if (const auto route = modelRoute(request))
        m_models.prewarm(route->modelPath);
}

std::expected<TranscriptionService::Route, SpeechTranscriberError> TranscriptionService::modelRoute(
    const TranscriptionRequest& request) const
{
    const auto model = m_store.installedModel(*request.model);
    if (!model)
        return std::unexpected(SpeechTranscriberError { .kind = Kind::MissingModel, .model = request.model });
    if (!m_models.isAvailable())
        return unavailable(u"Transcription unavailable on %1."_s.arg(machineWords::thisMachine));
    QString language = modelLanguage(request.locale);
    const bool knowsEnglishAlone = speaksEnglishAlone(model->localPath);
    if (language == anyLanguage && knowsEnglishAlone)
        language = english;
    const bool speaks
        = language == english || language == anyLanguage || (!knowsEnglishAlone && modelLanguages().contains(language));
    if (!speaks)
        return unavailable(u"Transcription unavailable for the current speech language."_s);
    return Route { m_models, model->spec, model->localPath, language };
}

std::expected<TranscriptionService::Route, SpeechTranscriberError> TranscriptionService::basicRoute(
    const TranscriptionRequest& request) const
{
    const QString language = modelLanguage(request.locale);
    if (language != english && language != anyLanguage)
        return std::unexpected(SpeechTranscriberError { .kind = Kind::MissingModel, .model = request.model });
    if (!m_basic.isAvailable())
        return unavailable(u"Transcription unavailable on %1."_s.arg(machineWords::thisMachine));
    return Route { m_basic, basicRecogniserSpec(), {}, english };
}

QCoro::Task<TranscriptionOutcome> TranscriptionService::transcribe(TranscriptionRequest request)
{
    if (!QFileInfo::exists(request.audioPath))
        co_return unavailable(u"Transcription unavailable: audio file is missing."_s);
    std::optional<SpeechTranscriberError> first;
    if (request.model->repository != basicRecogniserSpec().repository) {
        const auto route = modelRoute(request);
        if (route) {
            const auto isGone = m_isGone;
            TranscriptionOutcome outcome = co_await take(*route, request);
            if (outcome || isFinal(outcome.error()) || *isGone)
                co_return outcome;
            first = outcome.error();
        } else {
            first = route.error();
        }
    }
    const auto route = basicRoute(request);
    if (!route) // the error of the first recogniser is more relevant
        co_return std::unexpected(first.value_or(route.error()));
    co_return co_await take(*route, request);
}

/// Reads the sound a few minutes of speech at a time, so that a long one costs no more memory than a short one.
QCoro::Task<TranscriptionOutcome> TranscriptionService::take(Route route, TranscriptionRequest request)
{
    const auto isGone = m_isGone;
    const quint64 playing = ++m_lastReading;
    SpeechCutter cutter;
    QList<SpeechSegment> segments;
    qint64 durationMs = 0;
    const auto tell = [&durationMs, &request](qint64 ms) {
        if (request.onProgress && durationMs > 0)
            request.onProgress(std::min(1.0, double(ms) / double(durationMs)));
    };
    bool isLast = false;
    for (qint64 frame = 0; !isLast;) {
        const auto reading = std::make_shared<Reading>();
        m_readings.removeIf([](const std::weak_ptr<Reading>& each) { return each.expired(); });
        m_readings.append(reading);
        const Arrival<Piece> arrival = reading->piece;
        reading->handle = m_decoder.sound(request.audioPath, { playing, frame, pieceFrames, speechFormat },
            [arrival](Piece piece) { arrival.arrive(std::move(piece)); });
        const Piece piece = co_await arrival;
        if (*isGone || request.cancel.isCancelled())
            co_return failed(Kind::Cancelled);
        if (!piece)
            co_return unavailable(describe(piece.error()));
        frame += piece->samples.size();
        isLast = piece->isLast || piece->samples.isEmpty();
        durationMs = piece->durationMs;
        cutter.take(piece->samples, isLast);
        while (auto cut = cutter.next()) {
            SpeechJob job;
            job.samples = std::exchange(cut->samples, {});
            job.model = route.modelPath;
            job.language = route.language;
            job.onHeard = [&tell, &cut](qint64 ms) {
                tell(cut->soundMs(ms));
            };
            job.cancel = request.cancel;
            const auto heard = co_await route.recogniser.recognise(std::move(job));
            if (*isGone || request.cancel.isCancelled())
                co_return failed(Kind::Cancelled);
            if (!heard)
                co_return unavailable(heard.error().message);
            for (const HeardSpeech& speech : *heard) {
                if (!speech.text.isEmpty())
                    segments.append({ cut->soundMs(speech.startMs), cut->soundMs(speech.endMs), speech.text });
            }
        }
        tell(frame * 1000 / speechFormat.rate);
    }
    const SpeechTranscriptResult result = transcriptOf(segments, route.spec);
    if (result.text.isEmpty())
        co_return failed(Kind::EmptyTranscript);
    co_return result;
}

}
