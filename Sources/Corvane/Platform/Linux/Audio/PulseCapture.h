#pragma once

#include "Platform/Linux/Audio/M4aWriter.h"

#include <functional>
#include <span>

namespace corvane {

/// Sound from the default source of the sound server, PulseAudio or PipeWire. It has a thread of its own, on which
/// every callback comes; destroying the capture ends it at once.
class PulseCapture {
public:
    enum class End { Denied, Missing, Lost };

    struct Callbacks {
        std::function<void()> ready; ///< the source is there, and sound will come
        std::function<void(std::span<const float> samples)> sound; ///< interleaved; none: only looks for the source
        std::function<void(End end, const QString& reason)> ended; ///< once; nothing comes after it
    };

    PulseCapture(SoundFormat format, Callbacks callbacks);
    ~PulseCapture();
    PulseCapture(const PulseCapture&) = delete;
    PulseCapture& operator=(const PulseCapture&) = delete;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}
