#pragma once

#include "Platform/MediaDecoder.h"
#include "Voice/SpeechTranscript.h"

#include <qcoro/qcorotask.h>

namespace corvane {

class SpeechModelStore;
class SpeechRecogniser;

/// Transcribes sound on this machine, with a model of the user's or, if that fails, with the basic recogniser, which
/// knows English. Neither runs if nobody speaks.
class TranscriptionService {
public:
    /// All references outlive the service. `models` takes a model file, `basic` needs none.
    TranscriptionService(
        MediaDecoder& decoder, SpeechRecogniser& models, SpeechRecogniser& basic, const SpeechModelStore& store);
    ~TranscriptionService(); ///< pending requests fail

    /// `request.model` is set.
    QCoro::Task<TranscriptionOutcome> transcribe(TranscriptionRequest request);

    /// Preloads the preferred model from disk for a sound in that locale.
    void prewarm(const QString& locale);

    /// Whether a language of `modelLanguages` can be transcribed now.
    bool speaks(const QString& language) const;

private:
    struct Reading;
    struct Route {
        SpeechRecogniser& recogniser;
        SpeechModelSpec spec;
        QString modelPath;
        QString language;
    };

    std::expected<Route, SpeechTranscriberError> modelRoute(const TranscriptionRequest& request) const;
    std::expected<Route, SpeechTranscriberError> basicRoute(const TranscriptionRequest& request) const;
    QCoro::Task<TranscriptionOutcome> take(Route route, TranscriptionRequest request);

    MediaDecoder& m_decoder;
    SpeechRecogniser& m_models;
    SpeechRecogniser& m_basic;
    const SpeechModelStore& m_store;
    quint64 m_lastReading = 0;
    QList<std::weak_ptr<Reading>> m_readings;
    std::shared_ptr<bool> m_isGone = std::make_shared<bool>(false);
};

}
