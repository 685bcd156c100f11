#pragma once

#include <QString>

#include <pulse/pulseaudio.h>

namespace corvane {

/// The connection of one stream to the sound server (PulseAudio or PipeWire), with a thread of its own for all
/// callbacks of the server. Derived classes close it in their destructor, before their members are destroyed.
class PulseConnection {
public:
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

protected:
    PulseConnection() = default;
    virtual ~PulseConnection() = default;

    bool connect(pa_context_flags_t flags); ///< false: no callback follows; `error` says why
    void close(); ///< no callback follows
    void closeStream(); ///< no callback of this stream follows
    QString error() const;

    virtual void contextChanged() = 0;
    virtual void closing() { } ///< the thread is stopped, the stream still exists

    pa_threaded_mainloop* loop = pa_threaded_mainloop_new();
    pa_context* context = nullptr;
    pa_stream* stream = nullptr;
};

}
