#pragma once

#include "Voice/SpeechModelManager.h"
#include "Voice/SpeechModelStore.h"
#include "Voice/TranscriptionService.h"

namespace corvane {

/// What hears, built once and wired to each other.
struct VoiceServices {
    /// All of it outlives the services.
    struct Surroundings {
        MediaDecoder& decoder;
        SpeechRecogniser& models; ///< takes a model of the person's
        SpeechRecogniser& basic;
        const LocalAIAvailability& gate;
        UserDefaults& defaults;
        Scheduler& scheduler;
        const QString& applicationSupport;
    };

    explicit VoiceServices(const Surroundings& at)
        : store(at.applicationSupport, at.defaults, at.scheduler)
        , transcription(at.decoder, at.models, at.basic, store)
        , speech(transcription, store, at.gate)
    {
    }

    SpeechModelStore store;
    TranscriptionService transcription;
    SpeechModelManager speech;
};

}
