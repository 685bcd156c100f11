#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/Linux/Audio/M4aWriter.h"

#include <QByteArray>
#include <functional>
#include <optional>
#include <span>

namespace corvane {

/// Which sound is captured.
struct CaptureTarget {
    enum class Kind { Microphone, Speakers, Application };

    Kind kind = Kind::Microphone;
    QByteArray binary = {}; ///< the file name of the application's program
    bool follows = false; ///< continues with the successor of a source that disappears
    const char* name = "Voice note"; ///< shown in the desktop's mixer
};

/// Captures sound from the sound server (PulseAudio or PipeWire): the default source, the default output, or one
/// application. All callbacks run on a thread of its own; destroying the capture ends it at once.
class PulseCapture {
public:
    enum class End { Denied, Missing, Lost };

    struct Callbacks {
        std::function<void()> ready; ///< the source is there, and sound will come
        /// Interleaved. The age tells how long ago the first of them sounded, negative for what is yet to be played;
        /// none while the server has not said. Without this callback the capture only looks for the source.
        std::function<void(std::span<const float> samples, std::optional<Milliseconds> age)> sound;
        std::function<void(End end, const QString& reason)> ended; ///< once; nothing comes after it
        std::function<void()> away = {}; ///< of one that follows: there is no source until the next `ready`
    };

    PulseCapture(const CaptureTarget& target, SoundFormat format, Callbacks callbacks);
    ~PulseCapture();
    PulseCapture(const PulseCapture&) = delete;
    PulseCapture& operator=(const PulseCapture&) = delete;

    void look(); ///< for the currently wanted source, if it follows

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}
