#include "UI/Controls/MediaCache.h"

#include "Foundation/Literals.h"

#include <QDateTime>
#include <QFileInfo>
#include <QQmlEngine>
#include <QQuickItem>

namespace corvane {

namespace {

constexpr qsizetype mostKiB = 96 * 1024;
constexpr qsizetype mostShapes = 2000;
constexpr int bars = 56;

/// Changes with the file.
QString keyOf(const QString& path)
{
    const QFileInfo file(path);
    return path + u"|%1|%2"_s.arg(file.lastModified().toMSecsSinceEpoch()).arg(file.size());
}

}

MediaCache::MediaCache(MediaDecoder& decoder, QObject* parent)
    : QObject(parent)
    , m_decoder(decoder)
    , m_pictures(mostKiB)
    , m_shapes(mostShapes)
{
}

MediaCache* MediaCache::of(const QQuickItem* item)
{
    const QQmlEngine* const engine = qmlEngine(item);
    return engine ? engine->findChild<MediaCache*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

MediaDecoder::Handle MediaCache::picture(const QString& path, PictureBox box, MediaDecoder::Answer<QImage> answer)
{
    const QString key = keyOf(path) + u"|%1x%2-%3"_s.arg(box.height).arg(box.leastWidth).arg(box.mostWidth);
    if (const QImage* const known = m_pictures.object(key)) {
        answer(*known);
        return nullptr;
    }
    return m_decoder.picture(path, box, [this, key, answer = std::move(answer)](const auto& pixels) {
        if (!pixels)
            return answer(std::unexpected(pixels.error()));
        const auto* const bytes = reinterpret_cast<const uchar*>(pixels->bytes.constData());
        const QImage image
            = QImage(bytes, pixels->size.width(), pixels->size.height(), QImage::Format_ARGB32_Premultiplied).copy();
        m_pictures.insert(key, new QImage(image), pixels->bytes.size() / 1024 + 1);
        answer(image);
    });
}

MediaDecoder::Handle MediaCache::shape(const QString& path, MediaDecoder::Answer<SoundShape> answer)
{
    const QString key = keyOf(path);
    if (const SoundShape* const known = m_shapes.object(key)) {
        answer(*known);
        return nullptr;
    }
    return m_decoder.shape(path, bars, [this, key, answer = std::move(answer)](const auto& shape) {
        if (shape)
            m_shapes.insert(key, new SoundShape(*shape));
        answer(shape);
    });
}

}
