#pragma once

#include <QByteArray>

/// The shape of a whisper model.
struct SpeechModelShape {
    int state = 64;
    int heads = 2;
    int layers = 2;
};

inline constexpr SpeechModelShape baseSpeechModel { 512, 8, 6 };

/// A ggml file of that shape. Its weights are noise, but for what makes it write `heardWord`, and nothing else, for
/// each half minute of sound; a model of noise alone would try for minutes to make sense of it.
inline constexpr const char* heardWord = "w300";
QByteArray speechModelFile(const SpeechModelShape& shape = {});
