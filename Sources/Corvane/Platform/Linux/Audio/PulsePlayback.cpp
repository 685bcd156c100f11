#include "Platform/Linux/Audio/PulsePlayback.h"

#include "Platform/Linux/Audio/PulseConnection.h"

#include <cstring>
#include <optional>
#include <utility>

namespace corvane {

namespace {

constexpr uint32_t piecesPerSecond = 5; ///< how often the server asks for more

}

struct PulsePlayback::State final : PulseConnection {
    using PulseConnection::loop;

    State(std::unique_ptr<SoundFile> opened, Callbacks given);
    ~State() override;

    void contextChanged() override;
    void closing() override;
    void openStream();
    void streamChanged();
    void write(size_t bytes);
    void drain();
    void stopDraining();
    void hold(bool held);
    void seek(qint64 ms);
    qint64 positionMs() const;
    void end();

    std::unique_ptr<SoundFile> file;
    Callbacks callbacks;
    pa_operation* draining = nullptr; ///< from the end of the file on
    std::optional<qint64> heldAt; ///< where it stands still, whatever the server has yet to play or to drop
    bool ended = false;
    bool isTimeKnown = true; ///< not between a move and the server's next word
    qint64 from = 0; ///< in milliseconds
    qint64 written = 0; ///< samples since then, all channels together
};

namespace {

/// The thread of the sound waits while it stands.
class Locked {
public:
    explicit Locked(pa_threaded_mainloop* loop)
        : m_loop(loop)
    {
        pa_threaded_mainloop_lock(loop);
    }
    ~Locked() { pa_threaded_mainloop_unlock(m_loop); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    pa_threaded_mainloop* m_loop;
};

void forget(pa_operation* operation)
{
    if (operation)
        pa_operation_unref(operation);
}

}

PulsePlayback::State::State(std::unique_ptr<SoundFile> opened, Callbacks given)
    : file(std::move(opened))
    , callbacks(std::move(given))
{
    if (!connect(PA_CONTEXT_NOFLAGS))
        end();
}

PulsePlayback::State::~State()
{
    close();
}

void PulsePlayback::State::closing()
{
    ended = true;
    stopDraining();
}

void PulsePlayback::State::contextChanged()
{
    const pa_context_state_t now = pa_context_get_state(context);
    if (now == PA_CONTEXT_READY)
        openStream();
    else if (!PA_CONTEXT_IS_GOOD(now))
        end();
}

void PulsePlayback::State::openStream()
{
    const pa_sample_spec samples { PA_SAMPLE_FLOAT32LE, uint32_t(SoundFile::rate), uint8_t(SoundFile::channels) };
    stream = pa_stream_new(context, "Voice note", &samples, nullptr);
    if (!stream)
        return end();
    pa_stream_set_state_callback(
        stream, [](pa_stream*, void* state) { static_cast<State*>(state)->streamChanged(); }, this);
    pa_stream_set_write_callback(
        stream, [](pa_stream*, size_t bytes, void* state) { static_cast<State*>(state)->write(bytes); }, this);
    pa_buffer_attr buffer;
    std::memset(&buffer, 0xff, sizeof buffer); // "as the server likes it"
    buffer.tlength = uint32_t(pa_bytes_per_second(&samples)) / piecesPerSecond;
    const auto flags = pa_stream_flags_t(PA_STREAM_ADJUST_LATENCY | PA_STREAM_AUTO_TIMING_UPDATE
        | PA_STREAM_INTERPOLATE_TIMING | (heldAt ? PA_STREAM_START_CORKED : PA_STREAM_NOFLAGS));
    if (pa_stream_connect_playback(stream, nullptr, &buffer, flags, nullptr, nullptr) < 0)
        end();
}

void PulsePlayback::State::streamChanged()
{
    const pa_stream_state_t now = pa_stream_get_state(stream);
    if (now == PA_STREAM_READY)
        callbacks.started();
    else if (!PA_STREAM_IS_GOOD(now))
        end();
}

void PulsePlayback::State::write(size_t bytes)
{
    while (bytes >= sizeof(float) && !draining && !ended) {
        void* data = nullptr;
        size_t room = bytes;
        if (pa_stream_begin_write(stream, &data, &room) < 0)
            return;
        const size_t wanted = std::min(room, bytes) / sizeof(float);
        const size_t count = file->read({ static_cast<float*>(data), wanted });
        if (count == 0)
            pa_stream_cancel_write(stream);
        else
            pa_stream_write(stream, data, count * sizeof(float), nullptr, 0, PA_SEEK_RELATIVE);
        written += qint64(count);
        bytes -= count * sizeof(float);
        if (count < wanted)
            drain();
    }
}

void PulsePlayback::State::drain()
{
    draining = pa_stream_drain(
        stream,
        [](pa_stream*, int success, void* given) {
            auto* const state = static_cast<State*>(given);
            state->stopDraining();
            if (success && !state->ended)
                state->callbacks.finished();
        },
        this);
    if (!draining)
        end();
}

void PulsePlayback::State::stopDraining()
{
    if (pa_operation* const operation = std::exchange(draining, nullptr)) {
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
}

void PulsePlayback::State::hold(bool held)
{
    heldAt = held ? std::optional(positionMs()) : std::nullopt;
    if (stream && pa_stream_get_state(stream) == PA_STREAM_READY)
        forget(pa_stream_cork(stream, held, nullptr, nullptr));
}

void PulsePlayback::State::seek(qint64 ms)
{
    file->seek(ms);
    from = ms;
    written = 0;
    if (heldAt)
        heldAt = ms;
    if (!stream || pa_stream_get_state(stream) != PA_STREAM_READY)
        return;
    stopDraining();
    forget(pa_stream_flush(stream, nullptr, nullptr));
    write(pa_stream_get_buffer_attr(stream)->tlength);
    isTimeKnown = false;
    forget(pa_stream_update_timing_info(
        stream, [](pa_stream*, int, void* state) { static_cast<State*>(state)->isTimeKnown = true; }, this));
}

qint64 PulsePlayback::State::positionMs() const
{
    if (heldAt)
        return *heldAt;
    pa_usec_t unheard = 0;
    int isAhead = 0;
    if (!stream || !isTimeKnown || pa_stream_get_state(stream) != PA_STREAM_READY
        || pa_stream_get_latency(stream, &unheard, &isAhead) < 0)
        return from;
    const qint64 given = written * 1000 / (SoundFile::rate * SoundFile::channels);
    return from + std::max<qint64>(0, isAhead ? given : given - qint64(unheard / 1000));
}

void PulsePlayback::State::end()
{
    if (std::exchange(ended, true))
        return;
    callbacks.lost(error());
}

PulsePlayback::PulsePlayback(std::unique_ptr<SoundFile> file, Callbacks callbacks)
    : m_state(std::make_unique<State>(std::move(file), std::move(callbacks)))
{
}

PulsePlayback::~PulsePlayback() = default;

void PulsePlayback::pause()
{
    const Locked locked(m_state->loop);
    m_state->hold(true);
}

void PulsePlayback::resume()
{
    const Locked locked(m_state->loop);
    m_state->hold(false);
}

void PulsePlayback::seek(qint64 ms)
{
    const Locked locked(m_state->loop);
    m_state->seek(ms);
}

qint64 PulsePlayback::positionMs() const
{
    const Locked locked(m_state->loop);
    return m_state->positionMs();
}

}
