#include "Browser/FrameDecoder.h"

#include <QBuffer>
#include <QImageReader>

namespace corvane {

namespace {

QImage decoded(const QByteArray& base64)
{
    constexpr int longestSide = 8192;
    QByteArray bytes = QByteArray::fromBase64(base64);
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, "jpeg");
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > longestSide || size.height() > longestSide)
        return {};
    // In the format of the screen, so that the main thread has nothing to convert.
    return reader.read().convertToFormat(QImage::Format_RGB32);
}

}

FrameDecoder::FrameDecoder(std::function<void(BrowserFrame)> show)
    : m_show(std::move(show))
{
}

void FrameDecoder::offer(const QByteArray& base64Jpeg, QSizeF viewport)
{
    Waiting frame { base64Jpeg, viewport };
    if (m_isBusy)
        m_next = std::move(frame);
    else
        decode(std::move(frame));
}

void FrameDecoder::decode(Waiting frame)
{
    m_isBusy = true;
    m_queue.run<BrowserFrame>(
        [frame = std::move(frame)] { return BrowserFrame { decoded(frame.data), frame.viewport }; },
        [this](BrowserFrame picture) {
            m_isBusy = false;
            if (auto next = std::exchange(m_next, std::nullopt))
                decode(std::move(*next));
            if (!picture.image.isNull())
                m_show(std::move(picture));
        });
}

}
