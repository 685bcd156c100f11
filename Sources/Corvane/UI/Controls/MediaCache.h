#pragma once

#include "Platform/MediaDecoder.h"

#include <QCache>
#include <QImage>
#include <QObject>

class QQuickItem;

namespace corvane {

/// Recently decoded pictures, so that a row that becomes visible again has its picture at once. A child of the window's
/// QML engine.
class MediaCache : public QObject {
    Q_OBJECT
public:
    /// The decoder outlives the cache.
    MediaCache(MediaDecoder& decoder, QObject* parent);

    /// Of the item's engine; null if it has none.
    static MediaCache* of(const QQuickItem* item);

    // Like the decoder, but cached results are returned within the call.
    [[nodiscard]] MediaDecoder::Handle picture(
        const QString& path, PictureBox box, MediaDecoder::Answer<QImage> answer);
    [[nodiscard]] MediaDecoder::Handle shape(const QString& path, MediaDecoder::Answer<SoundShape> answer);

private:
    MediaDecoder& m_decoder;
    QCache<QString, QImage> m_pictures; ///< its cost is in KiB
    QCache<QString, SoundShape> m_shapes;
};

}
