#pragma once

#include <QString>

#include <pulse/pulseaudio.h>

namespace corvane {

/// The way of one stream to the sound server, PulseAudio or PipeWire, with a thread of its own on which all calls of
/// the server come. Whoever builds on it closes it in their destructor, before their own members go.
class PulseConnection {
public:
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

protected:
    PulseConnection() = default;
    virtual ~PulseConnection() = default;

    bool connect(pa_context_flags_t flags); ///< false: nothing will come; `error` says why
    void close(); ///< no call comes after it
    void closeStream(); ///< nor any for this stream
    QString error() const;

    virtual void contextChanged() = 0;
    virtual void closing() { } ///< the thread stands still, the stream is there yet

    pa_threaded_mainloop* loop = pa_threaded_mainloop_new();
    pa_context* context = nullptr;
    pa_stream* stream = nullptr;
};

}
