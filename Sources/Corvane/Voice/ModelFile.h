#pragma once

#include "Foundation/Result.h"

#include <QString>
#include <atomic>
#include <functional>

namespace corvane {

/// The metadata of a speech model file.
struct ModelFileFacts {
    QString sha256; ///< in hexadecimal
    qint64 sizeBytes = 0;
    int audioLayers = 0;
    bool englishAlone = false;
};

/// Reads the whole file: checks that it is a complete ggml model for whisper.cpp. The error is for the user.
/// `onProgress` receives the bytes read. Takes seconds; setting `stop` cancels it.
Result<ModelFileFacts> inspectModelFile(
    const QString& path, const std::function<void(qint64)>& onProgress, const std::atomic_bool& stop);

/// From the file's header; false if it is unreadable.
bool speaksEnglishAlone(const QString& path);

}
