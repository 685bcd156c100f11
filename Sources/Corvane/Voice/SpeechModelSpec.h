#pragma once

#include "Foundation/Literals.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <optional>

namespace corvane {

/// What transcribes speech: a model file, or the basic recogniser.
struct SpeechModelSpec {
    QString repository; ///< "whisper.cpp" or "pocketsphinx"
    QString revision; ///< SHA-256 of the file in hexadecimal, or the recogniser's version
    QString variant; ///< the file name, or "en-us"
    QString displayName;
    QString role = u"System transcription"_s;
    double approximateSizeGB = 0;
    bool isDefault = true;
    bool isSmoke = false;

    QString id() const { return repository + QLatin1Char(':') + variant; } ///< such as "whisper.cpp:ggml-base.bin"
    bool operator==(const SpeechModelSpec&) const = default;
};

QJsonObject encoded(const SpeechModelSpec& spec);

/// Nothing unless it has "repository" and "variant".
std::optional<SpeechModelSpec> decodedSpeechModelSpec(const QJsonObject& object);

/// How a transcript refers to its model: "{repository}:{variant}@{first 10 characters of revision}".
QString transcriptModel(const SpeechModelSpec& spec);

/// The recogniser that needs no model file.
SpeechModelSpec basicRecogniserSpec();

/// An installed model.
struct SpeechInstalledModel {
    SpeechModelSpec spec;
    QString cachePath; ///< the folder of all models
    QString localPath; ///< the model's file
    QDateTime installedAt;
    qint64 sizeBytes = 0;
    std::optional<QDateTime> lastUsedAt;

    bool operator==(const SpeechInstalledModel&) const = default;
};

QJsonObject encoded(const SpeechInstalledModel& model);
std::optional<SpeechInstalledModel> decodedInstalledModel(const QJsonObject& object);

}
