#pragma once

#include "Platform/MediaDecoder.h"

#include <functional>

namespace corvane {

/// Plays appended sound on the default output of the sound server (PulseAudio or PipeWire), and waits when there is no
/// more. All callbacks run on a thread of its own; destroying the playback ends it at once.
class PulsePlayback {
public:
    struct Callbacks {
        std::function<void()> started; ///< the output is connected
        std::function<void()> finished; ///< the last piece was played
        std::function<void(const QString& reason)> lost; ///< or never connected; once; the last callback
    };

    explicit PulsePlayback(Callbacks callbacks);
    ~PulsePlayback();
    PulsePlayback(const PulsePlayback&) = delete;
    PulsePlayback& operator=(const PulsePlayback&) = delete;

    void append(const SoundPiece& piece);
    qint64 bufferedMs() const; ///< appended and not passed to the server yet
    bool isWhole() const; ///< the last piece was appended
    void pause();
    void resume();
    void seek(qint64 ms); ///< drops what was appended; the next piece starts there
    qint64 positionMs() const; ///< of what is playing now

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}
