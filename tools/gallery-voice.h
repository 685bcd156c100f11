#pragma once

#include "Settings/VoiceSettings.h"
#include "Voice/KnownModels.h"
#include "Voice/VoiceServices.h"

namespace corvane {

/// Two models in the settings, and a third whose address is refused.
inline void addSpeechModels(SpeechModelStore& store, VoiceSettings& settings)
{
    for (const char* const file : { "ggml-base.bin", "ggml-small.en.bin" }) {
        const QString name = QString::fromLatin1(file);
        SpeechInstalledModel model;
        model.spec.repository = QStringLiteral("whisper.cpp");
        model.spec.variant = name;
        model.spec.displayName = modelName(name);
        model.spec.revision = QStringLiteral("60ed5bc3dd14eea856493d334349b405782ddcaf0028d4b5df4088345fba2efe");
        model.localPath = store.modelsRoot() + QLatin1Char('/') + name;
        model.sizeBytes = 147'951'465;
        store.add(model);
    }
    settings.setAddress(QStringLiteral("http://models.example/ggml-base.bin"));
    settings.download();
}

}
