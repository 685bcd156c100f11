#include "Platform/Linux/Audio/PulseCapture.h"

#include "Platform/Linux/Audio/PulseConnection.h"

#include <cstring>
#include <vector>

namespace corvane {

namespace {

constexpr uint32_t piecesPerSecond = 20;

}

struct PulseCapture::State final : PulseConnection {
    State(SoundFormat wanted, Callbacks given);
    ~State() override;

    void contextChanged() override;
    void closing() override { ended = true; }
    void sourceNamed(const char* name);
    void sourceFound(const pa_source_info* source);
    void openStream();
    void streamChanged();
    void read();
    void end(End kind, const QString& reason);
    void fail(End kind) { end(kind, error()); }

    SoundFormat format;
    Callbacks callbacks;
    QByteArray source;
    bool ended = false;
};

PulseCapture::State::State(SoundFormat wanted, Callbacks given)
    : format(wanted)
    , callbacks(std::move(given))
{
    if (!connect(PA_CONTEXT_NOAUTOSPAWN))
        fail(End::Missing);
}

PulseCapture::State::~State()
{
    close();
}

void PulseCapture::State::contextChanged()
{
    const pa_context_state_t now = pa_context_get_state(context);
    if (now == PA_CONTEXT_READY) {
        pa_operation_unref(pa_context_get_server_info(
            context,
            [](pa_context*, const pa_server_info* server, void* state) {
                static_cast<State*>(state)->sourceNamed(server ? server->default_source_name : nullptr);
            },
            this));
    } else if (!PA_CONTEXT_IS_GOOD(now)) {
        const int code = pa_context_errno(context);
        const bool denied = code == PA_ERR_ACCESS || code == PA_ERR_AUTHKEY;
        fail(stream ? End::Lost : denied ? End::Denied : End::Missing);
    }
}

void PulseCapture::State::sourceNamed(const char* name)
{
    if (ended)
        return;
    if (!name || !*name)
        return end(End::Missing, QStringLiteral("No microphone"));
    source = name;
    pa_operation_unref(pa_context_get_source_info_by_name(
        context, name,
        [](pa_context*, const pa_source_info* found, int endOfList, void* state) {
            if (found || endOfList < 0)
                static_cast<State*>(state)->sourceFound(found);
        },
        this));
}

void PulseCapture::State::sourceFound(const pa_source_info* found)
{
    if (ended)
        return;
    if (!found)
        return fail(pa_context_errno(context) == PA_ERR_ACCESS ? End::Denied : End::Missing);
    // Without a microphone a server offers what the loudspeaker plays.
    if (found->monitor_of_sink != PA_INVALID_INDEX)
        return end(End::Missing, QStringLiteral("No microphone"));
    if (callbacks.sound)
        openStream();
    else
        callbacks.ready();
}

void PulseCapture::State::openStream()
{
    const pa_sample_spec samples { PA_SAMPLE_FLOAT32LE, uint32_t(format.rate), uint8_t(format.channels) };
    stream = pa_stream_new(context, "Voice note", &samples, nullptr);
    if (!stream)
        return fail(End::Missing);
    pa_stream_set_state_callback(
        stream, [](pa_stream*, void* state) { static_cast<State*>(state)->streamChanged(); }, this);
    pa_stream_set_read_callback(
        stream, [](pa_stream*, size_t, void* state) { static_cast<State*>(state)->read(); }, this);
    pa_buffer_attr buffer;
    std::memset(&buffer, 0xff, sizeof buffer); // "as the server likes it"
    buffer.fragsize = uint32_t(pa_bytes_per_second(&samples)) / piecesPerSecond;
    // A stream that may be moved is given another source in silence where the wanted one is not there.
    const auto flags = pa_stream_flags_t(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    if (pa_stream_connect_record(stream, source.constData(), &buffer, flags) < 0)
        fail(End::Missing);
}

void PulseCapture::State::streamChanged()
{
    const pa_stream_state_t now = pa_stream_get_state(stream);
    if (now == PA_STREAM_READY && source != pa_stream_get_device_name(stream))
        end(End::Missing, QStringLiteral("The microphone is taken"));
    else if (now == PA_STREAM_READY)
        callbacks.ready();
    else if (!PA_STREAM_IS_GOOD(now))
        fail(pa_context_errno(context) == PA_ERR_ACCESS ? End::Denied : End::Lost);
}

void PulseCapture::State::read()
{
    while (pa_stream_readable_size(stream) > 0) {
        const void* data = nullptr;
        size_t bytes = 0;
        if (pa_stream_peek(stream, &data, &bytes) < 0 || bytes == 0)
            return;
        const size_t count = bytes / sizeof(float);
        if (ended) {
            // nobody listens any more
        } else if (data) {
            callbacks.sound({ static_cast<const float*>(data), count });
        } else {
            callbacks.sound(std::vector<float>(count)); // a hole in what the server had
        }
        pa_stream_drop(stream);
    }
}

void PulseCapture::State::end(End kind, const QString& reason)
{
    if (std::exchange(ended, true))
        return;
    callbacks.ended(kind, reason);
}

PulseCapture::PulseCapture(SoundFormat format, Callbacks callbacks)
    : m_state(std::make_unique<State>(format, std::move(callbacks)))
{
}

PulseCapture::~PulseCapture() = default;

}
