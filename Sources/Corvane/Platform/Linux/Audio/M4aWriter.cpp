#include "Platform/Linux/Audio/M4aWriter.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Audio/Ffmpeg.h"
#include "Platform/Linux/Files/Descriptor.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace corvane {

namespace {

void closeOutput(AVFormatContext** context)
{
    avio_closep(&(*context)->pb);
    avformat_free_context(*context);
}
using Output = std::unique_ptr<AVFormatContext, Release<closeOutput>>;

/// Creates an empty file of mode 0600. Fails if it exists; links are not followed.
Result<void> createFile(const QString& path)
{
    const int descriptor
        = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return failure(QString::fromLocal8Bit(std::strerror(errno)));
    ::close(descriptor);
    return {};
}

Result<Output> openOutput(const QString& path)
{
    AVFormatContext* context = nullptr;
    if (const int code = avformat_alloc_output_context2(&context, nullptr, "ipod", nullptr); code < 0)
        return avFailure(code);
    Output output(context);
    if (const int code = avio_open(&output->pb, urlOf(path).constData(), AVIO_FLAG_WRITE); code < 0)
        return avFailure(code);
    return output;
}

Result<void> waitForDisk(const QString& path)
{
    const Descriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!file.isOpen() || ::fsync(file.number()) != 0)
        return failure(QString::fromLocal8Bit(std::strerror(errno)));
    return {};
}

/// Joins the fragments of `from` in `to`.
Result<void> joinPieces(const QString& from, const QString& to)
{
    const auto opened = openInput(from);
    if (!opened)
        return std::unexpected(opened.error());
    const Input& input = *opened;
    const auto output = openOutput(to);
    if (!output)
        return std::unexpected(output.error());
    AVStream* const stream = avformat_new_stream(output->get(), nullptr);
    avcodec_parameters_copy(stream->codecpar, input->streams[0]->codecpar);
    stream->codecpar->codec_tag = 0;
    stream->time_base = input->streams[0]->time_base;
    int code = avformat_write_header(output->get(), nullptr);
    const Packet packet(av_packet_alloc());
    while (code >= 0 && av_read_frame(input.get(), packet.get()) >= 0) {
        av_packet_rescale_ts(packet.get(), input->streams[0]->time_base, stream->time_base);
        packet->pos = -1;
        code = av_interleaved_write_frame(output->get(), packet.get());
    }
    if (code >= 0)
        code = input->pb->error; // unreadable parts are an error, not a gap
    if (code >= 0)
        code = av_write_trailer(output->get());
    if (code >= 0)
        code = avio_closep(&(*output)->pb);
    return code < 0 ? Result<void>(avFailure(code)) : Result<void>();
}

}

struct M4aWriter::State {
    QString path;
    Codec encoder;
    Output output;
    AVStream* stream = nullptr;
    Frame frame;
    Packet packet;
    std::vector<float> waiting; ///< less than a frame
    qint64 written = 0; ///< frames of sound, all channels together

    Result<void> open(SoundFormat format);
    Result<void> encode(std::span<const float> samples); ///< at most one frame
    Result<void> drain(const AVFrame* next);
};

Result<void> M4aWriter::State::open(SoundFormat format)
{
    const AVCodec* const codec = avcodec_find_encoder(AV_CODEC_ID_AAC);
    if (!codec)
        return failure(u"no AAC encoder"_s);
    auto opened = openOutput(path);
    if (!opened)
        return std::unexpected(opened.error());
    output = std::move(*opened);
    encoder.reset(avcodec_alloc_context3(codec));
    encoder->sample_rate = format.rate;
    encoder->bit_rate = format.bitRate;
    encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    encoder->time_base = { 1, format.rate };
    encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av_channel_layout_default(&encoder->ch_layout, format.channels);
    if (const int code = avcodec_open2(encoder.get(), codec, nullptr); code < 0)
        return avFailure(code);
    stream = avformat_new_stream(output.get(), nullptr);
    stream->time_base = encoder->time_base;
    avcodec_parameters_from_context(stream->codecpar, encoder.get());

    AVDictionary* options = nullptr;
    // No trailer: it lists every fragment, so memory would grow with the recording.
    av_dict_set(&options, "movflags", "frag_keyframe+empty_moov+default_base_moof+skip_trailer", 0);
    av_dict_set(&options, "frag_duration", "500000", 0);
    output->flush_packets = 1;
    const int code = avformat_write_header(output.get(), &options);
    av_dict_free(&options);
    if (code < 0)
        return avFailure(code);

    packet.reset(av_packet_alloc());
    frame.reset(av_frame_alloc());
    frame->format = encoder->sample_fmt;
    frame->nb_samples = encoder->frame_size;
    frame->sample_rate = format.rate;
    av_channel_layout_copy(&frame->ch_layout, &encoder->ch_layout);
    const int allocated = av_frame_get_buffer(frame.get(), 0);
    return allocated < 0 ? Result<void>(avFailure(allocated)) : Result<void>();
}

Result<void> M4aWriter::State::encode(std::span<const float> samples)
{
    const auto channels = size_t(encoder->ch_layout.nb_channels);
    if (const int code = av_frame_make_writable(frame.get()); code < 0)
        return avFailure(code);
    frame->nb_samples = int(samples.size() / channels);
    for (size_t channel = 0; channel < channels; ++channel) {
        auto* const plane = reinterpret_cast<float*>(frame->extended_data[channel]);
        for (size_t i = 0; i < samples.size() / channels; ++i)
            plane[i] = samples[i * channels + channel];
    }
    frame->pts = written;
    written += frame->nb_samples;
    return drain(frame.get());
}

Result<void> M4aWriter::State::drain(const AVFrame* next)
{
    int code = avcodec_send_frame(encoder.get(), next);
    while (code >= 0) {
        code = avcodec_receive_packet(encoder.get(), packet.get());
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF)
            return {};
        if (code < 0)
            break;
        packet->stream_index = stream->index;
        av_packet_rescale_ts(packet.get(), encoder->time_base, stream->time_base);
        code = av_interleaved_write_frame(output.get(), packet.get());
    }
    return avFailure(code);
}

M4aWriter::M4aWriter(std::unique_ptr<State> state)
    : m_state(std::move(state))
{
}

M4aWriter::~M4aWriter() = default;

Result<std::unique_ptr<M4aWriter>> M4aWriter::create(const QString& path, SoundFormat format)
{
    av_log_set_level(AV_LOG_QUIET); // the result code reports the failure
    if (const auto created = createFile(path); !created)
        return std::unexpected(created.error());
    auto state = std::make_unique<State>();
    state->path = path;
    if (const auto opened = state->open(format); !opened) {
        QFile::remove(path);
        return std::unexpected(opened.error());
    }
    return std::unique_ptr<M4aWriter>(new M4aWriter(std::move(state)));
}

Result<void> M4aWriter::write(std::span<const float> samples)
{
    std::vector<float>& waiting = m_state->waiting;
    waiting.insert(waiting.end(), samples.begin(), samples.end());
    const size_t size = size_t(m_state->encoder->frame_size) * size_t(m_state->encoder->ch_layout.nb_channels);
    size_t done = 0;
    for (; waiting.size() - done >= size; done += size) {
        if (const auto encoded = m_state->encode(std::span(waiting).subspan(done, size)); !encoded) {
            waiting.clear(); // `close` accepts less than a frame
            return encoded;
        }
    }
    waiting.erase(waiting.begin(), waiting.begin() + std::ptrdiff_t(done));
    return {};
}

Result<void> M4aWriter::close()
{
    if (!m_state->waiting.empty())
        (void)m_state->encode(m_state->waiting);
    (void)m_state->drain(nullptr);
    const int code = av_write_trailer(m_state->output.get());
    m_state->output.reset();
    return code < 0 ? Result<void>(avFailure(code)) : Result<void>();
}

Result<void> M4aWriter::finish()
{
    const auto closed = close();
    if (closed)
        (void)join(m_state->path); // the fragments can be played, too
    return closed;
}

Result<void> M4aWriter::join(const QString& path)
{
    const QString whole = path + u".whole"_s;
    QFile::remove(whole);
    auto joined = createFile(whole);
    if (joined)
        joined = joinPieces(path, whole);
    if (joined)
        joined = waitForDisk(whole); // otherwise a power cut may leave neither of them
    if (joined && ::rename(QFile::encodeName(whole).constData(), QFile::encodeName(path).constData()) != 0)
        joined = failure(QString::fromLocal8Bit(std::strerror(errno)));
    if (!joined)
        QFile::remove(whole);
    return joined;
}

}
