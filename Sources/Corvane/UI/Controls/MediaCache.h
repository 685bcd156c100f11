#pragma once

#include "Platform/MediaDecoder.h"

#include <QCache>
#include <QImage>
#include <QObject>

class QQuickItem;

namespace corvane {

/// What was decoded for the screen of late, so that a row that comes back into sight has its picture at once. The QML
/// engine of the window holds it as its child.
class MediaCache : public QObject {
    Q_OBJECT
public:
    /// The decoder outlives the cache.
    MediaCache(MediaDecoder& decoder, QObject* parent);

    /// Of the engine that made the item; null where it has none.
    static MediaCache* of(const QQuickItem* item);

    // As the decoder, only that what is known is answered within the call.
    [[nodiscard]] MediaDecoder::Handle picture(
        const QString& path, PictureBox box, MediaDecoder::Answer<QImage> answer);
    [[nodiscard]] MediaDecoder::Handle shape(const QString& path, MediaDecoder::Answer<SoundShape> answer);

private:
    MediaDecoder& m_decoder;
    QCache<QString, QImage> m_pictures; ///< its cost is in KiB
    QCache<QString, SoundShape> m_shapes;
};

}
