#pragma once

#include "Platform/Linux/Audio/SoundFile.h"

#include <functional>

namespace corvane {

/// A file of sound to the default output of the sound server, PulseAudio or PipeWire. It has a thread of its own, on
/// which every callback comes; destroying the playback ends it at once.
class PulsePlayback {
public:
    struct Callbacks {
        std::function<void()> started; ///< the output is there
        std::function<void()> finished; ///< all of it was heard
        std::function<void(const QString& reason)> lost; ///< or never there; once; nothing comes after it
    };

    PulsePlayback(std::unique_ptr<SoundFile> file, Callbacks callbacks);
    ~PulsePlayback();
    PulsePlayback(const PulsePlayback&) = delete;
    PulsePlayback& operator=(const PulsePlayback&) = delete;

    void pause();
    void resume();
    void seek(qint64 ms);
    qint64 positionMs() const; ///< of what is heard now

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}
