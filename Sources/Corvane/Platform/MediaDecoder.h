#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>
#include <expected>
#include <functional>
#include <memory>

namespace corvane {

/// Why a file cannot be shown or played.
enum class DecodeFailure {
    Missing,
    NotAFile, ///< a link, a folder, a device, a pipe
    TooLarge, ///< more bytes than the limit
    UnknownFormat, ///< by its content, whatever its name says
    TooManyPixels, ///< too many pixels, or too long or too thin
    Damaged,
    TooSlow,
    Crashed, ///< the decoder crashed on it
    Unavailable, ///< there is no decoder
};

/// For the user.
QString describe(DecodeFailure failure);

/// The space for a picture, in pixels. A picture keeps its aspect ratio as far as possible; the rest is cropped around
/// its centre.
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

/// What is known of a sound before it is played.
struct SoundShape {
    qint64 durationMs = 0;
    QList<float> bars; ///< the peak of each part, from 0 to 1
};

/// The requested sample format, independent of the file's.
struct SampleFormat {
    qint32 rate = 0; ///< frames per second
    qint32 channels = 0;

    bool operator==(const SampleFormat&) const = default;
};

/// The format that speech recognisers take.
inline constexpr SampleFormat speechFormat { 16'000, 1 };

/// Samples from -1 to 1, interleaved.
struct SoundPiece {
    static constexpr int rate = 48'000; ///< as it is played
    static constexpr int channels = 2;

    QList<float> samples;
    bool isLast = false;
    qint64 durationMs = 0; ///< of the whole file; 0 if unknown
};

/// The position of a piece of sound. Consecutive pieces of one playback join seamlessly.
struct SoundPosition {
    quint64 playing = 0;
    qint64 frame = 0; ///< frames since the start, at the format's rate
    int count = 0; ///< requested frames
    SampleFormat format = { SoundPiece::rate, SoundPiece::channels };
};

/// Decodes untrusted pictures and sounds in a separate process, within limits of memory and time. Formats are detected
/// by content: PNG, JPEG, GIF, WebP and still HEIF pictures; the usual containers of voice notes. A file that crashed
/// the decoder is not tried again. All calls and answers on the main thread; an answer never arrives within the call
/// that requested it.
class MediaDecoder {
public:
    /// Destroying it withdraws the request: no answer arrives. An answer may destroy its own request.
    class Request {
    public:
        virtual ~Request() = default;
    };
    using Handle = std::unique_ptr<Request>;
    template <typename Value> using Answer = std::function<void(std::expected<Value, DecodeFailure>)>;

    virtual ~MediaDecoder() = default;

    /// Rotated by its EXIF orientation and scaled down to the given size, never up.
    [[nodiscard]] virtual Handle picture(const QString& path, PictureBox box, Answer<Pixels> answer) = 0;

    [[nodiscard]] virtual Handle shape(const QString& path, int bars, Answer<SoundShape> answer) = 0;
    [[nodiscard]] virtual Handle sound(const QString& path, SoundPosition position, Answer<SoundPiece> answer) = 0;
};

}
