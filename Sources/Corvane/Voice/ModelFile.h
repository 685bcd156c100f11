#pragma once

#include "Foundation/Result.h"

#include <QString>
#include <atomic>
#include <functional>

namespace corvane {

/// What the file of a speech model says of itself.
struct ModelFileFacts {
    QString sha256; ///< in hexadecimal
    qint64 sizeBytes = 0;
    int audioLayers = 0;
    bool englishAlone = false;
};

/// Reads the whole file: whether it is a ggml model of whisper.cpp, and whether all of it is there. Fails in words for
/// the user. `onProgress` hears the bytes that were read. Takes seconds; a set `stop` ends it.
Result<ModelFileFacts> inspectModelFile(
    const QString& path, const std::function<void(qint64)>& onProgress, const std::atomic_bool& stop);

/// By the file's head; false where it does not read.
bool speaksEnglishAlone(const QString& path);

}
