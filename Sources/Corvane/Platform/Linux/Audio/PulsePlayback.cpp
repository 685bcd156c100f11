#include "Platform/Linux/Audio/PulsePlayback.h"

#include "Platform/Linux/Audio/PulseConnection.h"
#include "Platform/Linux/Audio/SoundBuffer.h"

#include <cstring>
#include <optional>
#include <utility>

namespace corvane {

namespace {

constexpr uint32_t piecesPerSecond = 5; ///< how often the server asks for more

}

struct PulsePlayback::State final : PulseConnection {
    using PulseConnection::loop;

    explicit State(Callbacks given);
    ~State() override;

    void contextChanged() override;
    void closing() override;
    void openStream();
    void streamChanged();
    void write(size_t bytes);
    void append(const SoundPiece& piece);
    void drain();
    void stopDraining();
    void hold(bool held);
    void seek(qint64 ms);
    bool isReady() const;
    qint64 positionMs() const;
    void end();

    SoundBuffer sound;
    Callbacks callbacks;
    pa_operation* draining = nullptr; ///< since the end of the file
    std::optional<qint64> heldAt; ///< the position while paused, whatever the server still buffers
    bool ended = false;
    qint64 from = 0; ///< in milliseconds
    qint64 written = 0; ///< samples since then, all channels together
};

namespace {

/// The sound thread waits while it is paused.
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

PulsePlayback::State::State(Callbacks given)
    : callbacks(std::move(given))
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
    const pa_sample_spec samples { PA_SAMPLE_FLOAT32LE, uint32_t(SoundPiece::rate), uint8_t(SoundPiece::channels) };
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
    if (now == PA_STREAM_READY) {
        hold(heldAt.has_value()); // it may have changed since the stream was requested
        callbacks.started();
    } else if (!PA_STREAM_IS_GOOD(now))
        end();
}

void PulsePlayback::State::write(size_t bytes)
{
    if (draining || ended)
        return;
    while (bytes >= sizeof(float) && !sound.isEmpty()) {
        void* data = nullptr;
        size_t room = bytes;
        if (pa_stream_begin_write(stream, &data, &room) < 0)
            return;
        const size_t count = sound.read({ static_cast<float*>(data), std::min(room, bytes) / sizeof(float) });
        pa_stream_write(stream, data, count * sizeof(float), nullptr, 0, PA_SEEK_RELATIVE);
        written += qint64(count);
        bytes -= count * sizeof(float);
    }
    if (sound.isEmpty() && sound.isWhole())
        drain();
}

void PulsePlayback::State::append(const SoundPiece& piece)
{
    sound.append(piece);
    // The server still expects what it requested while nothing was available.
    if (const size_t room = isReady() ? pa_stream_writable_size(stream) : size_t(-1); room != size_t(-1))
        write(room);
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
    if (isReady())
        forget(pa_stream_cork(stream, held, nullptr, nullptr));
}

void PulsePlayback::State::seek(qint64 ms)
{
    sound.clear();
    from = ms;
    written = 0;
    if (heldAt)
        heldAt = ms;
    if (!stream)
        return;
    // A new stream instead of a flush: the server requests a full buffer again, and its clock restarts.
    stopDraining();
    closeStream();
    openStream();
}

bool PulsePlayback::State::isReady() const
{
    return stream && pa_stream_get_state(stream) == PA_STREAM_READY;
}

qint64 PulsePlayback::State::positionMs() const
{
    if (heldAt)
        return *heldAt;
    pa_usec_t unheard = 0;
    int isAhead = 0;
    if (!isReady() || pa_stream_get_latency(stream, &unheard, &isAhead) < 0)
        return from;
    const qint64 given = written * 1000 / (SoundPiece::rate * SoundPiece::channels);
    return from + std::max<qint64>(0, isAhead ? given : given - qint64(unheard / 1000));
}

void PulsePlayback::State::end()
{
    if (std::exchange(ended, true))
        return;
    callbacks.lost(error());
}

PulsePlayback::PulsePlayback(Callbacks callbacks)
    : m_state(std::make_unique<State>(std::move(callbacks)))
{
}

PulsePlayback::~PulsePlayback() = default;

void PulsePlayback::append(const SoundPiece& piece)
{
    const Locked locked(m_state->loop);
    m_state->append(piece);
}

qint64 PulsePlayback::bufferedMs() const
{
    const Locked locked(m_state->loop);
    return m_state->sound.ms();
}

bool PulsePlayback::isWhole() const
{
    const Locked locked(m_state->loop);
    return m_state->sound.isWhole();
}

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
