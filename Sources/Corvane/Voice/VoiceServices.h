#pragma once

#include "Voice/ModelInstaller.h"
#include "Voice/SpeechModelManager.h"
#include "Voice/SpeechModelStore.h"
#include "Voice/SpeechReader.h"
#include "Voice/TranscriptionService.h"

namespace corvane {

/// The speech services, built once and connected.
struct VoiceServices {
    /// All references outlive the services.
    struct Surroundings {
        MediaDecoder& decoder;
        SpeechRecogniser& models; ///< takes a model file
        SpeechRecogniser& basic;
        const LocalAIAvailability& gate;
        UserDefaults& defaults;
        Scheduler& scheduler;
        const QString& applicationSupport;
        ToolRunner& tools;
        AudioPlayer& player; ///< used only for reading aloud
    };

    explicit VoiceServices(const Surroundings& at)
        : store(at.applicationSupport, at.defaults, at.scheduler)
        , transcription(at.decoder, at.models, at.basic, store)
        , speech(transcription, store, at.gate)
        , installer(store, at.scheduler)
        , reader(at.tools, at.player)
    {
        QObject::connect(&installer, &ModelInstaller::changed, &speech, [this] { speech.showInstallation(installer); });
    }

    SpeechModelStore store;
    TranscriptionService transcription;
    SpeechModelManager speech;
    ModelInstaller installer;
    SpeechReader reader;
};

}
