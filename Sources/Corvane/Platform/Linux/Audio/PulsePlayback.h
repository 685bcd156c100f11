#pragma once

#include "Platform/MediaDecoder.h"

#include <functional>

namespace corvane {

/// Sound to the default output of the sound server, PulseAudio or PipeWire, as it is appended; it waits where nothing
/// is left. It has a thread of its own, on which every callback comes; destroying the playback ends it at once.
class PulsePlayback {
public:
    struct Callbacks {
        std::function<void()> started; ///< the output is there
        std::function<void()> finished; ///< the last piece was heard
        std::function<void(const QString& reason)> lost; ///< or never there; once; nothing comes after it
    };

    explicit PulsePlayback(Callbacks callbacks);
    ~PulsePlayback();
    PulsePlayback(const PulsePlayback&) = delete;
    PulsePlayback& operator=(const PulsePlayback&) = delete;

    void append(const SoundPiece& piece);
    qint64 bufferedMs() const; ///< appended and not yet with the server
    bool isWhole() const; ///< the last piece was appended
    void pause();
    void resume();
    void seek(qint64 ms); ///< what was appended is forgotten; the next piece begins there
    qint64 positionMs() const; ///< of what is heard now

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}
