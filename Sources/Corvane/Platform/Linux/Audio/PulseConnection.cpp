#include "Platform/Linux/Audio/PulseConnection.h"

namespace corvane {

bool PulseConnection::connect(pa_context_flags_t flags)
{
    context = pa_context_new(pa_threaded_mainloop_get_api(loop), "Corvane");
    pa_context_set_state_callback(
        context, [](pa_context*, void* self) { static_cast<PulseConnection*>(self)->contextChanged(); }, this);
    return pa_context_connect(context, nullptr, flags, nullptr) >= 0 && pa_threaded_mainloop_start(loop) >= 0;
}

void PulseConnection::close()
{
    pa_threaded_mainloop_lock(loop);
    closing();
    closeStream();
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
    pa_threaded_mainloop_unlock(loop);
    pa_threaded_mainloop_stop(loop);
    pa_threaded_mainloop_free(loop);
}

void PulseConnection::closeStream()
{
    if (!stream)
        return;
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_set_read_callback(stream, nullptr, nullptr);
    pa_stream_set_write_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
    stream = nullptr;
}

QString PulseConnection::error() const
{
    return QString::fromUtf8(pa_strerror(pa_context_errno(context)));
}

}
