#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>
#include <expected>
#include <functional>
#include <memory>

namespace corvane {

/// Why a file is neither shown nor heard.
enum class DecodeFailure {
    Missing,
    NotAFile, ///< a link, a folder, a device, a pipe
    TooLarge, ///< more bytes than are read
    UnknownFormat, ///< by its content, whatever its name says
    TooManyPixels, ///< more of them, or longer or thinner, than pictures are
    Damaged,
    TooSlow,
    Crashed, ///< the decoder did not survive it
    Unavailable, ///< there is no decoder
};

/// In the words of the screen.
QString describe(DecodeFailure failure);

/// The room for a picture, in pixels. A picture keeps its ratio as far as the room goes; what is beyond is cut off
/// around its middle.
struct PictureBox {
    int height = 0;
    int leastWidth = 0;
    int mostWidth = 0;

    bool operator==(const PictureBox&) const = default;
};

/// Rows of premultiplied ARGB32 in this machine's byte order, without padding.
struct Pixels {
    QSize size;
    QByteArray bytes;
};

/// What of a sound is known before it is played.
struct SoundShape {
    qint64 durationMs = 0;
    QList<float> bars; ///< the loudest of each part, from 0 to 1
};

/// How samples are wanted, whatever the file holds.
struct SampleFormat {
    qint32 rate = 0; ///< moments a second
    qint32 channels = 0;

    bool operator==(const SampleFormat&) const = default;
};

/// What recognisers of speech take.
inline constexpr SampleFormat speechFormat { 16'000, 1 };

/// Samples from -1 to 1, all channels of one moment side by side.
struct SoundPiece {
    static constexpr int rate = 48'000; ///< as it is played
    static constexpr int channels = 2;

    QList<float> samples;
    bool isLast = false;
    qint64 durationMs = 0; ///< of the whole file; 0 where it does not say
};

/// Where a piece of sound begins. Pieces of one playing that follow each other are joined without a seam.
struct SoundPosition {
    quint64 playing = 0;
    qint64 frame = 0; ///< moments since the start, at the format's rate
    int count = 0; ///< moments wanted
    SampleFormat format = { SoundPiece::rate, SoundPiece::channels };
};

/// Reads pictures and sounds that others wrote, outside of this process and within limits of memory and time. Formats
/// are told by content: PNG, JPEG, GIF, WebP and still HEIF pictures; the usual containers of voice notes. A file that
/// the decoder did not survive is not given to it again. All calls and answers on the main thread; an answer never
/// comes within the call that asked.
class MediaDecoder {
public:
    /// Destroying it withdraws the request: no answer comes. An answer may destroy its own request.
    class Request {
    public:
        virtual ~Request() = default;
    };
    using Handle = std::unique_ptr<Request>;
    template <typename Value> using Answer = std::function<void(std::expected<Value, DecodeFailure>)>;

    virtual ~MediaDecoder() = default;

    /// Turned as its camera says, scaled down to the room's height, and never up.
    [[nodiscard]] virtual Handle picture(const QString& path, PictureBox box, Answer<Pixels> answer) = 0;

    [[nodiscard]] virtual Handle shape(const QString& path, int bars, Answer<SoundShape> answer) = 0;
    [[nodiscard]] virtual Handle sound(const QString& path, SoundPosition position, Answer<SoundPiece> answer) = 0;
};

}
