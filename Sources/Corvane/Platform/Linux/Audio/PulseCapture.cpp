#include "Platform/Linux/Audio/PulseCapture.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Audio/PulseConnection.h"

#include <cstring>
#include <vector>

namespace corvane {

namespace {

constexpr uint32_t piecesPerSecond = 20;
constexpr uint32_t noInput = PA_INVALID_INDEX;
const QString noMicrophone = u"No microphone"_s;
const QString noOutput = u"No sound output"_s;

bool isGood(const pa_stream* stream)
{
    return stream && PA_STREAM_IS_GOOD(pa_stream_get_state(stream));
}

}

struct PulseCapture::State final : PulseConnection {
    using PulseConnection::loop;

    /// Where the sound comes from: a source and, for an application, one of its streams.
    struct Place {
        QByteArray source;
        uint32_t input = noInput;
        bool operator==(const Place&) const = default;
    };

    State(const CaptureTarget& wanted, SoundFormat wantedFormat, Callbacks given);
    ~State() override;

    void contextChanged() override;
    void closing() override { ended = true; }
    void look();
    void lookForInput();
    void serverFound(const pa_server_info* server);
    void inputFound(const pa_sink_input_info* input);
    void sinkFound(const pa_sink_info* sink);
    void sourceFound(const pa_source_info* source);
    void take();
    void absent(End kind, const QString& reason);
    void looked();
    void openStream();
    void streamChanged();
    void read();
    std::optional<Milliseconds> ageOfNext() const;
    void end(End kind, const QString& reason);
    void fail(End kind) { end(kind, error()); }
    End missingOrDenied() const { return pa_context_errno(context) == PA_ERR_ACCESS ? End::Denied : End::Missing; }
    void release(pa_operation* operation)
    {
        if (operation)
            pa_operation_unref(operation);
    }

    CaptureTarget target;
    SoundFormat format;
    Callbacks callbacks;
    Place place; ///< of the stream
    Place found;
    uint32_t foundSink = noInput;
    bool looking = false;
    bool looksAgain = false;
    bool ended = false;
};

PulseCapture::State::State(const CaptureTarget& wanted, SoundFormat wantedFormat, Callbacks given)
    : target(wanted)
    , format(wantedFormat)
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
        if (target.follows) {
            pa_context_set_subscribe_callback(
                context,
                [](pa_context*, pa_subscription_event_type_t, uint32_t, void* state) {
                    static_cast<State*>(state)->look();
                },
                this);
            const auto watched = pa_subscription_mask_t(PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SOURCE
                | PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SINK_INPUT);
            release(pa_context_subscribe(context, watched, nullptr, nullptr));
        }
        look();
    } else if (!PA_CONTEXT_IS_GOOD(now)) {
        const int code = pa_context_errno(context);
        const bool denied = code == PA_ERR_ACCESS || code == PA_ERR_AUTHKEY;
        fail(stream ? End::Lost : denied ? End::Denied : End::Missing);
    }
}

void PulseCapture::State::look()
{
    if (ended || pa_context_get_state(context) != PA_CONTEXT_READY)
        return;
    looksAgain = looking;
    if (std::exchange(looking, true))
        return;
    found = {};
    if (target.kind == CaptureTarget::Kind::Application)
        return lookForInput();
    release(pa_context_get_server_info(
        context,
        [](pa_context*, const pa_server_info* server, void* state) { static_cast<State*>(state)->serverFound(server); },
        this));
}

void PulseCapture::State::serverFound(const pa_server_info* server)
{
    if (ended)
        return;
    if (target.kind == CaptureTarget::Kind::Speakers) {
        const char* const sink = server ? server->default_sink_name : nullptr;
        if (!sink || !*sink)
            return absent(End::Missing, noOutput);
        return release(pa_context_get_sink_info_by_name(
            context, sink,
            [](pa_context*, const pa_sink_info* info, int endOfList, void* state) {
                if (info || endOfList < 0)
                    static_cast<State*>(state)->sinkFound(info);
            },
            this));
    }
    const char* const name = server ? server->default_source_name : nullptr;
    if (!name || !*name)
        return absent(End::Missing, noMicrophone);
    found.source = name;
    release(pa_context_get_source_info_by_name(
        context, name,
        [](pa_context*, const pa_source_info* info, int endOfList, void* state) {
            if (info || endOfList < 0)
                static_cast<State*>(state)->sourceFound(info);
        },
        this));
}

/// The application's newest playing stream; the one already being recorded is preferred.
void PulseCapture::State::lookForInput()
{
    foundSink = noInput;
    release(pa_context_get_sink_input_info_list(
        context,
        [](pa_context*, const pa_sink_input_info* input, int endOfList, void* state) {
            if (endOfList == 0)
                static_cast<State*>(state)->inputFound(input);
            else
                static_cast<State*>(state)->inputFound(nullptr);
        },
        this));
}

void PulseCapture::State::inputFound(const pa_sink_input_info* input)
{
    if (ended)
        return;
    if (input) {
        const char* const binary = pa_proplist_gets(input->proplist, PA_PROP_APPLICATION_PROCESS_BINARY);
        const bool isWanted = binary && target.binary == binary && !input->corked;
        const bool isHeard = isGood(stream) && place.input == found.input && found.input != noInput;
        if (isWanted && !isHeard) {
            found.input = input->index;
            foundSink = input->sink;
        }
        return;
    }
    if (found.input == noInput)
        return absent(End::Missing, u"the application plays nothing"_s);
    release(pa_context_get_sink_info_by_index(
        context, foundSink,
        [](pa_context*, const pa_sink_info* info, int endOfList, void* state) {
            if (info || endOfList < 0)
                static_cast<State*>(state)->sinkFound(info);
        },
        this));
}

void PulseCapture::State::sinkFound(const pa_sink_info* sink)
{
    if (ended)
        return;
    if (!sink || !sink->monitor_source_name)
        return absent(missingOrDenied(), noOutput);
    found.source = sink->monitor_source_name;
    take();
}

void PulseCapture::State::sourceFound(const pa_source_info* source)
{
    if (ended)
        return;
    if (!source)
        return absent(missingOrDenied(), error());
    // Without a microphone, a server offers the loudspeaker's monitor.
    if (source->monitor_of_sink != PA_INVALID_INDEX)
        return absent(End::Missing, noMicrophone);
    take();
}

void PulseCapture::State::take()
{
    if (!callbacks.sound) {
        callbacks.ready();
    } else if (!isGood(stream) || found != place) {
        closeStream();
        place = found;
        openStream();
    }
    looked();
}

void PulseCapture::State::absent(End kind, const QString& reason)
{
    if (!target.follows)
        return end(kind, reason);
    closeStream();
    callbacks.away();
    looked();
}

void PulseCapture::State::looked()
{
    looking = false;
    if (std::exchange(looksAgain, false))
        look();
}

void PulseCapture::State::openStream()
{
    const pa_sample_spec samples { PA_SAMPLE_FLOAT32LE, uint32_t(format.rate), uint8_t(format.channels) };
    stream = pa_stream_new(context, target.name, &samples, nullptr);
    if (!stream)
        return fail(End::Missing);
    pa_stream_set_state_callback(
        stream, [](pa_stream*, void* state) { static_cast<State*>(state)->streamChanged(); }, this);
    pa_stream_set_read_callback(
        stream, [](pa_stream*, size_t, void* state) { static_cast<State*>(state)->read(); }, this);
    pa_buffer_attr buffer;
    std::memset(&buffer, 0xff, sizeof buffer); // "as the server likes it"
    buffer.fragsize = uint32_t(pa_bytes_per_second(&samples)) / piecesPerSecond;
    if (place.input != noInput)
        pa_stream_set_monitor_stream(stream, place.input);
    // If the wanted source is missing, the server would silently move the stream to another one.
    const auto flags = pa_stream_flags_t(
        PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE | PA_STREAM_INTERPOLATE_TIMING | PA_STREAM_AUTO_TIMING_UPDATE);
    if (pa_stream_connect_record(stream, place.source.constData(), &buffer, flags) < 0 && !target.follows)
        fail(End::Missing);
}

void PulseCapture::State::streamChanged()
{
    const pa_stream_state_t now = pa_stream_get_state(stream);
    const bool isElsewhere
        = now == PA_STREAM_READY && place.input == noInput && place.source != pa_stream_get_device_name(stream);
    if (now == PA_STREAM_READY && !isElsewhere)
        return callbacks.ready();
    if (PA_STREAM_IS_GOOD(now) && !isElsewhere)
        return;
    if (target.follows) {
        closeStream();
        callbacks.away();
    } else if (isElsewhere) {
        end(End::Missing, u"The microphone is taken"_s);
    } else {
        fail(pa_context_errno(context) == PA_ERR_ACCESS ? End::Denied : End::Lost);
    }
}

void PulseCapture::State::read()
{
    while (pa_stream_readable_size(stream) > 0) {
        const void* data = nullptr;
        size_t bytes = 0;
        if (pa_stream_peek(stream, &data, &bytes) < 0 || bytes == 0)
            return;
        const size_t count = bytes / sizeof(float);
        const auto age = ageOfNext();
        if (ended) {
            // no longer needed
        } else if (data) {
            callbacks.sound({ static_cast<const float*>(data), count }, age);
        } else {
            callbacks.sound(std::vector<float>(count), age); // a hole in what the server had
        }
        pa_stream_drop(stream);
    }
}

std::optional<Milliseconds> PulseCapture::State::ageOfNext() const
{
    pa_usec_t microseconds = 0;
    int isNegative = 0;
    if (pa_stream_get_latency(stream, &microseconds, &isNegative) < 0)
        return std::nullopt;
    const auto age = Milliseconds(qint64(microseconds / 1000));
    return isNegative ? -age : age;
}

void PulseCapture::State::end(End kind, const QString& reason)
{
    if (std::exchange(ended, true))
        return;
    callbacks.ended(kind, reason);
}

PulseCapture::PulseCapture(const CaptureTarget& target, SoundFormat format, Callbacks callbacks)
    : m_state(std::make_unique<State>(target, format, std::move(callbacks)))
{
}

PulseCapture::~PulseCapture() = default;

void PulseCapture::look()
{
    pa_threaded_mainloop_lock(m_state->loop);
    m_state->look();
    pa_threaded_mainloop_unlock(m_state->loop);
}

}
