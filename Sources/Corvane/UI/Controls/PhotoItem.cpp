#include "UI/Controls/PhotoItem.h"

#include "UI/Controls/MediaCache.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <cmath>

namespace corvane {

PhotoItem::PhotoItem(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    connect(this, &PhotoItem::shapeChanged, this, &QQuickItem::polish);
}

void PhotoItem::setPath(const QString& path)
{
    if (path == m_path)
        return;
    m_path = path;
    Q_EMIT pathChanged();
    polish();
}

void PhotoItem::componentComplete()
{
    QQuickItem::componentComplete();
    // A cached picture is shown in the first frame.
    ask();
}

void PhotoItem::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    if (now.size() == before.size())
        return;
    m_isTextureOld = true;
    polish();
    update();
}

void PhotoItem::itemChange(ItemChange change, const ItemChangeData& data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        polish();
}

void PhotoItem::updatePolish()
{
    ask();
}

PictureBox PhotoItem::box() const
{
    const auto pixels = [this](double length) {
        return int(std::ceil(length * m_ratio));
    };
    const bool fills = m_mostWidth <= 0;
    return { pixels(height()), pixels(fills ? width() : m_leastWidth), pixels(fills ? width() : m_mostWidth) };
}

void PhotoItem::ask()
{
    if (!isComponentComplete() || !window())
        return;
    m_ratio = window()->effectiveDevicePixelRatio();
    const PictureBox wanted = box();
    if (m_path == m_askedPath && wanted == m_askedBox)
        return;
    const bool another = m_path != m_askedPath;
    m_askedPath = m_path;
    m_askedBox = wanted;
    m_request.reset();
    MediaCache* const cache = MediaCache::of(this);
    if (another)
        show({}, {});
    if (!cache || m_path.isEmpty() || wanted.height <= 0 || wanted.mostWidth <= 0)
        return;
    m_request = cache->picture(m_path, wanted, [this](const auto& picture) {
        show(picture.value_or(QImage()), picture ? QString() : describe(picture.error()));
    });
}

void PhotoItem::show(const QImage& picture, const QString& problem)
{
    m_picture = picture;
    m_problem = problem;
    m_isTextureOld = true;
    if (m_mostWidth > 0 && ready())
        setImplicitWidth(std::max(m_leastWidth, picture.width() / m_ratio));
    update();
    Q_EMIT statusChanged();
}

QSGNode* PhotoItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    if (!ready() || size().isEmpty()) {
        delete old;
        return nullptr;
    }
    auto* node = static_cast<QSGImageNode*>(old);
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Linear);
        m_isTextureOld = true;
    }
    if (std::exchange(m_isTextureOld, false))
        node->setTexture(window()->createTextureFromImage(rounded(), QQuickWindow::TextureHasAlphaChannel));
    node->setRect(boundingRect());
    return node;
}

/// The picture covers the item; a smaller one is centred at its own size.
QImage PhotoItem::rounded() const
{
    QImage image((size() * m_ratio).toSize().expandedTo({ 1, 1 }), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QSizeF room = image.size();
    const QSizeF picture = m_picture.size();
    const bool fills = m_mostWidth <= 0;
    const double scale = fills ? std::max(room.width() / picture.width(), room.height() / picture.height()) : 1;
    const QPointF corner((room.width() - picture.width() * scale) / 2, (room.height() - picture.height() * scale) / 2);
    // A brush instead of a clip: the painter antialiases the edges of shapes, not of clips.
    QBrush brush(m_picture);
    brush.setTransform(QTransform::fromTranslate(corner.x(), corner.y()).scale(scale, scale));
    painter.setBrush(brush);
    painter.setPen(Qt::NoPen);
    const QRectF covered = QRectF(corner, picture * scale).intersected(QRectF({}, room));
    painter.drawRoundedRect(covered, m_radius * m_ratio, m_radius * m_ratio);
    return image;
}

}
