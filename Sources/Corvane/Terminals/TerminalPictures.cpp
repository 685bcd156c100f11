#include "Terminals/TerminalPictures.h"

#include "Terminals/LumoTerminalSession.h"

#include <cmath>
#include <cstring>

namespace corvane {

namespace {

constexpr double mostPixels = 16e6; ///< of one picture, as shown

PictureBox boxOf(QSize claimed)
{
    const double scale = std::min(1.0, std::sqrt(mostPixels / (double(claimed.width()) * claimed.height())));
    return { std::max(1, int(claimed.height() * scale)), 1, terminal::Bitmap::maxSide };
}

/// From premultiplied to straight alpha.
terminal::Bitmap bitmapOf(const Pixels& pixels)
{
    const size_t count = size_t(pixels.size.width()) * size_t(pixels.size.height());
    terminal::Bitmap bitmap { pixels.size.width(), pixels.size.height(), std::vector<uint8_t>(count * 4) };
    for (size_t i = 0; i < count; ++i) {
        uint32_t pixel = 0;
        std::memcpy(&pixel, pixels.bytes.constData() + i * 4, 4);
        const uint32_t alpha = pixel >> 24;
        const auto channel = [&](int shift) {
            return uint8_t(alpha ? std::min(255u, ((pixel >> shift & 0xff) * 255 + alpha / 2) / alpha) : 0);
        };
        uint8_t* const to = bitmap.pixels.data() + i * 4;
        to[0] = channel(16);
        to[1] = channel(8);
        to[2] = channel(0);
        to[3] = uint8_t(alpha);
    }
    return bitmap;
}

}

TerminalPictures::TerminalPictures(LumoTerminalSession& session, MediaDecoder& decoder)
    : QObject(&session)
    , m_session(session)
    , m_decoder(decoder)
{
}

void TerminalPictures::decode(const TerminalRequests::Picture& picture)
{
    auto file = std::make_unique<QTemporaryFile>();
    if (!file->open() || file->write(picture.file) != picture.file.size() || !file->flush())
        return;
    const QString path = file->fileName();
    const uint32_t image = picture.image;
    const auto show = [this, image](const std::expected<Pixels, DecodeFailure>& pixels) {
        if (pixels)
            m_session.showPicture(image, bitmapOf(*pixels));
        m_jobs.erase(image);
    };
    Job& job = m_jobs[image];
    job.request = m_decoder.picture(path, boxOf(picture.size), show);
    job.file = std::move(file);
}

}
