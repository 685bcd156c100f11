#pragma once

#include "Foundation/Result.h"

#include <QFile>
#include <array>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace corvane {

/// Frees a value with the library's function, which takes its address.
template <auto release> struct Release {
    template <typename Value> void operator()(Value* value) const { release(&value); }
};

using Codec = std::unique_ptr<AVCodecContext, Release<avcodec_free_context>>;
using Frame = std::unique_ptr<AVFrame, Release<av_frame_free>>;
using Packet = std::unique_ptr<AVPacket, Release<av_packet_free>>;
using Input = std::unique_ptr<AVFormatContext, Release<avformat_close_input>>;

inline std::unexpected<Error> avFailure(int code)
{
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text {};
    av_strerror(code, text.data(), text.size());
    return failure(QString::fromUtf8(text.data()));
}

/// Opens files only, never URLs, whatever the name looks like.
inline QByteArray urlOf(const QString& path)
{
    return "file:" + QFile::encodeName(path);
}

inline Result<Input> openInput(const QString& path)
{
    AVFormatContext* opened = nullptr;
    if (const int code = avformat_open_input(&opened, urlOf(path).constData(), nullptr, nullptr); code < 0)
        return avFailure(code);
    Input input(opened);
    if (const int code = avformat_find_stream_info(input.get(), nullptr); code < 0)
        return avFailure(code);
    return input;
}

}
