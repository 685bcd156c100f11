#include "Platform/Linux/Decode/SoundFile.h"

#include "Platform/Linux/Audio/Ffmpeg.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <utility>
#include <vector>

extern "C" {
#include <libswresample/swresample.h>
}

namespace corvane {

namespace {

constexpr int settlingParts = 4; ///< of a second: a decoder that starts within a file needs some sound to be exact
constexpr int bufferSize = 64 * 1024;
constexpr qint64 wholeSeconds = 300; ///< shorter sounds are read completely
constexpr int glancesPerSecond = 10;
constexpr const char* containers = "ogg,mov,mp3,wav,aac,amr,flac,matroska,caf,aiff";

using Resampler = std::unique_ptr<SwrContext, Release<swr_free>>;

struct ReleaseReader {
    void operator()(AVIOContext* reader) const
    {
        av_freep(static_cast<void*>(&reader->buffer));
        avio_context_free(&reader);
    }
};

int descriptorOf(void* file)
{
    return static_cast<Descriptor*>(file)->number();
}

int readSome(void* file, uint8_t* bytes, int count)
{
    const ssize_t done = ::read(descriptorOf(file), bytes, size_t(count));
    return done > 0 ? int(done) : done == 0 ? AVERROR_EOF : AVERROR(errno);
}

int64_t moveTo(void* file, int64_t offset, int whence)
{
    if (whence & AVSEEK_SIZE) {
        const off_t at = ::lseek(descriptorOf(file), 0, SEEK_CUR);
        const off_t size = ::lseek(descriptorOf(file), 0, SEEK_END);
        ::lseek(descriptorOf(file), at, SEEK_SET);
        return size;
    }
    return ::lseek(descriptorOf(file), offset, whence & ~AVSEEK_FORCE);
}

}

struct SoundFile::State {
    Descriptor file;
    SampleFormat format;
    std::unique_ptr<AVIOContext, ReleaseReader> reader;
    Input input; ///< reads through `reader`
    Codec decoder;
    AVStream* stream = nullptr;
    Resampler resampler; ///< for the format of the last frame
    Frame frame { av_frame_alloc() };
    Packet packet { av_packet_alloc() };
    qint64 skip = -1; ///< after a seek: decoded sound before this is dropped
    bool isPlaceKnown = true; ///< false after a seek, until the first frame
    qint64 position = 0;
    std::vector<float> ready;
    size_t taken = 0; ///< of `ready`

    Result<void> open();
    Result<void> openInput();
    bool decode(); ///< one more frame; false at the end
    bool sendPacket();
    void resample(const AVFrame* decoded); ///< null: flushes the resampler
    void dropSkipped();
    AVRational frames() const { return { 1, format.rate }; }
};

Result<void> SoundFile::State::openInput()
{
    reader.reset(avio_alloc_context(
        static_cast<uint8_t*>(av_malloc(bufferSize)), bufferSize, 0, &file, readSome, nullptr, moveTo));
    AVFormatContext* opened = avformat_alloc_context();
    opened->pb = reader.get();
    opened->format_whitelist = av_strdup(containers);
    if (const int code = avformat_open_input(&opened, "", nullptr, nullptr); code < 0)
        return avFailure(code);
    input.reset(opened);
    const int code = avformat_find_stream_info(input.get(), nullptr);
    return code < 0 ? Result<void>(avFailure(code)) : Result<void>();
}

Result<void> SoundFile::State::open()
{
    if (const auto opened = openInput(); !opened)
        return opened;
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
            if (!resampler)
                return false;
            resample(nullptr);
            resampler.reset();
            dropSkipped();
            return true;
        } else if (code >= 0) {
            if (frame->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
                av_channel_layout_default(&frame->ch_layout, frame->ch_layout.nb_channels);
            resample(frame.get());
            dropSkipped();
            return true;
        }
    }
}

/// At the end of the file the decoder is flushed once.
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

void SoundFile::State::resample(const AVFrame* decoded)
{
    ready.clear();
    taken = 0;
    const Frame result(av_frame_alloc());
    result->sample_rate = format.rate;
    result->format = AV_SAMPLE_FMT_FLT;
    av_channel_layout_default(&result->ch_layout, format.channels);
    if (!resampler)
        resampler.reset(swr_alloc());
    int code = swr_convert_frame(resampler.get(), result.get(), decoded);
    if (code == AVERROR_INPUT_CHANGED) {
        resampler.reset(swr_alloc());
        code = swr_convert_frame(resampler.get(), result.get(), decoded);
    }
    if (code < 0 || result->nb_samples <= 0)
        return;
    const auto* const samples = reinterpret_cast<const float*>(result->data[0]);
    ready.assign(samples, samples + size_t(result->nb_samples) * size_t(format.channels));
}

/// The first frame after a seek tells the actual position; what precedes the wanted one is dropped.
void SoundFile::State::dropSkipped()
{
    if (skip < 0)
        return;
    // Only once: the resampler delays some samples, so later frames do not match their timestamps.
    if (!std::exchange(isPlaceKnown, true) && frame->best_effort_timestamp != AV_NOPTS_VALUE) {
        const qint64 start = stream->start_time == AV_NOPTS_VALUE ? 0 : stream->start_time;
        position = std::max<qint64>(0, av_rescale_q(frame->best_effort_timestamp - start, stream->time_base, frames()));
    }
    const auto count = qint64(ready.size()) / format.channels;
    const qint64 dropped = std::clamp<qint64>(skip - position, 0, count);
    taken = size_t(dropped) * size_t(format.channels);
    position += dropped;
    if (position >= skip)
        position = std::exchange(skip, -1); // a seek may overshoot; a little sound is missing then
}

SoundFile::SoundFile(std::unique_ptr<State> state)
    : m_state(std::move(state))
{
}

SoundFile::~SoundFile() = default;

Result<std::unique_ptr<SoundFile>> SoundFile::open(Descriptor file, SampleFormat format)
{
    av_log_set_level(AV_LOG_QUIET); // the result code reports the failure
    auto state = std::make_unique<State>();
    state->file = std::move(file);
    state->format = format;
    if (const auto opened = state->open(); !opened)
        return std::unexpected(opened.error());
    return std::unique_ptr<SoundFile>(new SoundFile(std::move(state)));
}

qint64 SoundFile::durationMs() const
{
    return std::max<qint64>(0, m_state->input->duration / (AV_TIME_BASE / 1000));
}

const SampleFormat& SoundFile::format() const
{
    return m_state->format;
}

qint64 SoundFile::frame() const
{
    return m_state->position;
}

size_t SoundFile::read(std::span<float> samples)
{
    size_t done = 0;
    while (done < samples.size()) {
        if (m_state->taken == m_state->ready.size()) {
            if (!m_state->decode())
                break;
            continue;
        }
        const size_t count = std::min(samples.size() - done, m_state->ready.size() - m_state->taken);
        std::copy_n(
            m_state->ready.begin() + std::ptrdiff_t(m_state->taken), count, samples.begin() + std::ptrdiff_t(done));
        m_state->taken += count;
        done += count;
    }
    m_state->position += qint64(done) / m_state->format.channels;
    return done;
}

void SoundFile::seek(qint64 frame)
{
    State& state = *m_state;
    const qint64 begin = std::max<qint64>(0, frame - state.format.rate / settlingParts);
    const qint64 start = state.stream->start_time == AV_NOPTS_VALUE ? 0 : state.stream->start_time;
    av_seek_frame(state.input.get(), state.stream->index,
        start + av_rescale_q(begin, state.frames(), state.stream->time_base), AVSEEK_FLAG_BACKWARD);
    avcodec_flush_buffers(state.decoder.get());
    state.resampler.reset();
    state.ready.clear();
    state.taken = 0;
    state.position = begin;
    state.skip = frame;
    state.isPlaceKnown = false;
}

SoundShape shapeOf(SoundFile& file, int count)
{
    SoundShape shape { file.durationMs(), QList<float>(count) };
    const auto loudest = [](std::span<const float> samples) {
        float most = 0;
        for (const float sample : samples)
            most = std::max(most, std::min(1.0F, std::abs(sample)));
        return most;
    };
    const int rate = file.format().rate;
    std::vector<float> samples(size_t(rate / glancesPerSecond) * size_t(file.format().channels));
    if (shape.durationMs > wholeSeconds * 1000) {
        for (int i = 0; i < count; ++i) {
            file.seek(shape.durationMs * (rate / 1000) * i / count);
            shape.bars[i] = loudest({ samples.data(), file.read(samples) });
        }
        return shape;
    }
    // The container's length may be missing or wrong, so the parts are computed at the end.
    QList<float> glances;
    while (const size_t read = file.read(samples))
        glances.append(loudest({ samples.data(), read }));
    shape.durationMs = file.frame() / (rate / 1000);
    for (qsizetype i = 0; i < count && !glances.isEmpty(); ++i) {
        const qsizetype from = i * glances.size() / count;
        const qsizetype to = std::max(from + 1, (i + 1) * glances.size() / count);
        shape.bars[i] = *std::max_element(glances.begin() + from, glances.begin() + to);
    }
    return shape;
}

}
