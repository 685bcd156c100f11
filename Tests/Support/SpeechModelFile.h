#pragma once

#include <QByteArray>

/// The dimensions of a Whisper model.
struct SpeechModelShape {
    int state = 64;
    int heads = 2;
    int layers = 2;
};

inline constexpr SpeechModelShape baseSpeechModel { 512, 8, 6 };

inline constexpr const char* heardWord = "w300";
/// A ggml file with these dimensions. Its weights are random, except for those that make it transcribe each 30 seconds
/// of sound as `heardWord` and nothing else. A purely random model would keep decoding for minutes.
QByteArray speechModelFile(const SpeechModelShape& shape = {});
