#include "Platform/Linux/Decode/PictureFile.h"

#include "Platform/WholeFile.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <algorithm>
#include <libheif/heif.h>
#include <optional>

namespace corvane {

namespace {

constexpr int longestEdge = 30'000;
constexpr int thinnest = 100; ///< the maximum aspect ratio
constexpr qint64 mostPixels = 64'000'000;
constexpr qint64 mostJpegPixels = 120'000'000; ///< scaled down while reading
constexpr int mostMegabytes = 512; ///< of one decoded picture

using Failed = std::unexpected<DecodeFailure>;

enum class Format { Png, Jpeg, Gif, WebP, Heif };

std::optional<Format> formatOf(QFile& file)
{
    file.seek(0);
    const QByteArray head = file.read(12);
    if (head.startsWith("\x89PNG\r\n\x1a\n"))
        return Format::Png;
    if (head.startsWith("\xff\xd8\xff"))
        return Format::Jpeg;
    if (head.startsWith("GIF87a") || head.startsWith("GIF89a"))
        return Format::Gif;
    if (head.startsWith("RIFF") && head.endsWith("WEBP"))
        return Format::WebP;
    for (const char* brand : { "heic", "heix", "heim", "heis", "mif1" }) {
        if (head.mid(4, 4) == "ftyp" && head.endsWith(brand))
            return Format::Heif;
    }
    return std::nullopt;
}

QByteArray readerName(Format format)
{
    switch (format) {
    case Format::Png:
        return "png";
    case Format::Jpeg:
        return "jpeg";
    case Format::Gif:
        return "gif";
    case Format::WebP:
        return "webp";
    case Format::Heif:
        break;
    }
    return {};
}

bool isTurned(const QImageReader& reader)
{
    return reader.transformation() & QImageIOHandler::TransformationRotate90;
}

std::expected<QSize, DecodeFailure> checked(QSize size, Format format)
{
    if (size.isEmpty())
        return Failed(DecodeFailure::Damaged);
    const qint64 most = format == Format::Jpeg ? mostJpegPixels : mostPixels;
    const auto [shorter, longer] = std::minmax({ size.width(), size.height() });
    const bool fits = longer <= longestEdge && longer <= qint64(shorter) * thinnest && qint64(shorter) * longer <= most;
    return fits ? std::expected<QSize, DecodeFailure>(size) : Failed(DecodeFailure::TooManyPixels);
}

/// The part of a picture that is shown, and its size.
struct View {
    QRect part;
    QSize size;
};

View viewOf(QSize picture, PictureBox box)
{
    const qint64 natural = qint64(picture.width()) * box.height / picture.height();
    const qint64 width = std::clamp<qint64>(natural, box.leastWidth, box.mostWidth);
    const QSize target(int(std::max<qint64>(1, width)), box.height);
    const QSize part = width == natural ? picture : target.scaled(picture, Qt::KeepAspectRatio).expandedTo({ 1, 1 });
    const QPoint corner((picture.width() - part.width()) / 2, (picture.height() - part.height()) / 2);
    return { { corner, part }, part.height() > target.height() ? target : part };
}

Pixels pixelsOf(const QImage& picture)
{
    const QImage image = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return { image.size(), QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()) };
}

/// A still HEIF picture, already rotated.
class Heif {
public:
    explicit Heif(QFile& file)
        : m_content((file.seek(0), file.readAll()))
        , m_context(heif_context_alloc())
    {
        heif_context_set_max_decoding_threads(m_context, 0);
        const heif_error error = heif_context_read_from_memory_without_copy(
            m_context, m_content.constData(), size_t(m_content.size()), nullptr);
        if (error.code == heif_error_Ok)
            heif_context_get_primary_image_handle(m_context, &m_handle);
    }
    ~Heif()
    {
        heif_image_release(m_image);
        heif_image_handle_release(m_handle);
        heif_context_free(m_context);
    }
    Heif(const Heif&) = delete;
    Heif& operator=(const Heif&) = delete;

    QSize size() const
    {
        return m_handle ? QSize(heif_image_handle_get_width(m_handle), heif_image_handle_get_height(m_handle))
                        : QSize();
    }

    QImage read()
    {
        const heif_error error
            = heif_decode_image(m_handle, &m_image, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, nullptr);
        if (error.code != heif_error_Ok)
            return {};
        int stride = 0;
        const uint8_t* const plane = heif_image_get_plane_readonly(m_image, heif_channel_interleaved, &stride);
        const int width = heif_image_get_width(m_image, heif_channel_interleaved);
        const int height = heif_image_get_height(m_image, heif_channel_interleaved);
        return plane ? QImage(plane, width, height, stride, QImage::Format_RGBA8888) : QImage();
    }

private:
    QByteArray m_content;
    heif_context* m_context;
    heif_image_handle* m_handle = nullptr;
    heif_image* m_image = nullptr;
};

std::expected<Pixels, DecodeFailure> readHeif(QFile& file, PictureBox box)
{
    Heif heif(file);
    if (const auto size = checked(heif.size(), Format::Heif); !size)
        return Failed(size.error());
    const QImage image = heif.read();
    if (image.isNull())
        return Failed(DecodeFailure::Damaged);
    const View view = viewOf(image.size(), box);
    const QImage part = view.part == image.rect() ? image : image.copy(view.part);
    return pixelsOf(part.scaled(view.size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

}

void loadPictureFormats()
{
    QImageReader::setAllocationLimit(mostMegabytes);
    for (const Format format : { Format::Png, Format::Jpeg, Format::Gif, Format::WebP }) {
        QBuffer nothing;
        nothing.open(QIODevice::ReadOnly);
        QImageReader(&nothing, readerName(format)).canRead();
    }
    heif_have_decoder_for_format(heif_compression_HEVC);
}

std::expected<Pixels, DecodeFailure> readPicture(QFile& file, PictureBox box)
{
    const auto format = formatOf(file);
    if (!format)
        return Failed(DecodeFailure::UnknownFormat);
    if (!isWholeFile(file))
        return Failed(DecodeFailure::Damaged);
    if (format == Format::Heif)
        return readHeif(file, box);
    file.seek(0);
    QImageReader reader(&file, readerName(*format));
    reader.setAutoTransform(true);
    const auto size = checked(reader.size(), *format);
    if (!size)
        return Failed(size.error());
    const bool turned = isTurned(reader);
    View view = viewOf(turned ? size->transposed() : *size, box);
    if (turned)
        view = { { QPoint(view.part.y(), view.part.x()), view.part.size().transposed() }, view.size.transposed() };
    reader.setClipRect(view.part);
    reader.setScaledSize(view.size);
    const QImage image = reader.read();
    return image.isNull() ? Failed(DecodeFailure::Damaged) : std::expected<Pixels, DecodeFailure>(pixelsOf(image));
}

}
