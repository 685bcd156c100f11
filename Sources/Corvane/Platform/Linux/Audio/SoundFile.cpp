#include "Platform/Linux/Audio/SoundFile.h"

#include "Platform/Linux/Audio/Ffmpeg.h"

#include <algorithm>
#include <vector>

extern "C" {
#include <libswresample/swresample.h>
}

namespace corvane {

namespace {

constexpr AVRational milliseconds { 1, 1000 };
using Resampler = std::unique_ptr<SwrContext, Release<swr_free>>;

}

struct SoundFile::State {
    Input input;
    Codec decoder;
    AVStream* stream = nullptr;
    Resampler resampler; ///< for frames like the last one
    Frame frame { av_frame_alloc() };
    Packet packet { av_packet_alloc() };
    qint64 from = 0; ///< what ends before that, in milliseconds, is not wanted
    std::vector<float> ready;
    size_t taken = 0; ///< of `ready`

    Result<void> open(const QString& path);
    bool decode(); ///< one frame more; false at the end
    bool sendPacket();
    bool isBeforeStart() const;
    void resample();
};

Result<void> SoundFile::State::open(const QString& path)
{
    auto opened = openInput(path);
    if (!opened)
        return std::unexpected(opened.error());
    input = std::move(*opened);
    const AVCodec* codec = nullptr;
    const int index = av_find_best_stream(input.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
    if (index < 0)
        return avFailure(index);
    stream = input->streams[index];
    for (unsigned i = 0; i < input->nb_streams; ++i)
        input->streams[i]->discard = int(i) == index ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    decoder.reset(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), stream->codecpar);
    decoder->pkt_timebase = stream->time_base;
    const int code = avcodec_open2(decoder.get(), codec, nullptr);
    return code < 0 ? Result<void>(avFailure(code)) : Result<void>();
}

bool SoundFile::State::decode()
{
    for (;;) {
        const int code = avcodec_receive_frame(decoder.get(), frame.get());
        if (code == AVERROR(EAGAIN)) {
            if (!sendPacket())
                return false;
        } else if (code == AVERROR_EOF) {
            return false;
        } else if (code >= 0 && !isBeforeStart()) {
            resample();
            return true;
        }
    }
}

/// The decoder is told of the end of the file once, and gives out what it still holds.
bool SoundFile::State::sendPacket()
{
    for (;;) {
        av_packet_unref(packet.get());
        if (av_read_frame(input.get(), packet.get()) < 0)
            return avcodec_send_packet(decoder.get(), nullptr) >= 0;
        if (packet->stream_index == stream->index && avcodec_send_packet(decoder.get(), packet.get()) >= 0)
            return true;
    }
}

bool SoundFile::State::isBeforeStart() const
{
    if (from == 0 || frame->best_effort_timestamp == AV_NOPTS_VALUE || frame->sample_rate <= 0)
        return false;
    const qint64 start = stream->start_time == AV_NOPTS_VALUE ? 0 : stream->start_time;
    const qint64 begin = av_rescale_q(frame->best_effort_timestamp - start, stream->time_base, milliseconds);
    return begin + frame->nb_samples * 1000LL / frame->sample_rate <= from;
}

void SoundFile::State::resample()
{
    ready.clear();
    taken = 0;
    if (frame->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&frame->ch_layout, frame->ch_layout.nb_channels);
    const Frame result(av_frame_alloc());
    result->sample_rate = rate;
    result->format = AV_SAMPLE_FMT_FLT;
    av_channel_layout_default(&result->ch_layout, channels);
    if (!resampler)
        resampler.reset(swr_alloc());
    int code = swr_convert_frame(resampler.get(), result.get(), frame.get());
    if (code == AVERROR_INPUT_CHANGED) {
        resampler.reset(swr_alloc());
        code = swr_convert_frame(resampler.get(), result.get(), frame.get());
    }
    if (code < 0 || result->nb_samples <= 0)
        return;
    const auto* const samples = reinterpret_cast<const float*>(result->data[0]);
    ready.assign(samples, samples + size_t(result->nb_samples) * channels);
}

SoundFile::SoundFile(std::unique_ptr<State> state)
    : m_state(std::move(state))
{
}

SoundFile::~SoundFile() = default;

Result<std::unique_ptr<SoundFile>> SoundFile::open(const QString& path)
{
    av_log_set_level(AV_LOG_QUIET); // what fails is told by its code
    auto state = std::make_unique<State>();
    if (const auto opened = state->open(path); !opened)
        return std::unexpected(opened.error());
    return std::unique_ptr<SoundFile>(new SoundFile(std::move(state)));
}

qint64 SoundFile::durationMs() const
{
    return std::max<qint64>(0, m_state->input->duration / (AV_TIME_BASE / 1000));
}

size_t SoundFile::read(std::span<float> samples)
{
    size_t done = 0;
    while (done < samples.size()) {
        if (m_state->taken == m_state->ready.size() && !m_state->decode())
            break;
        const size_t count = std::min(samples.size() - done, m_state->ready.size() - m_state->taken);
        std::copy_n(
            m_state->ready.begin() + std::ptrdiff_t(m_state->taken), count, samples.begin() + std::ptrdiff_t(done));
        m_state->taken += count;
        done += count;
    }
    return done;
}

void SoundFile::seek(qint64 ms)
{
    State& state = *m_state;
    const qint64 start = state.stream->start_time == AV_NOPTS_VALUE ? 0 : state.stream->start_time;
    const qint64 to = start + av_rescale_q(ms, milliseconds, state.stream->time_base);
    av_seek_frame(state.input.get(), state.stream->index, to, AVSEEK_FLAG_BACKWARD);
    avcodec_flush_buffers(state.decoder.get());
    state.resampler.reset();
    state.ready.clear();
    state.taken = 0;
    state.from = ms;
}

}
