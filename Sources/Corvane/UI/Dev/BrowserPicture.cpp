#include "UI/Dev/BrowserPicture.h"

#include "Browser/BrowserInput.h"

#include <QQuickWindow>
#include <QSGImageNode>

namespace corvane {

BrowserPicture::BrowserPicture(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void BrowserPicture::setImage(const QImage& image)
{
    m_image = image;
    m_isTextureOld = true;
    update();
    Q_EMIT imageChanged();
}

QRectF BrowserPicture::shown() const
{
    return m_image.isNull() ? QRectF() : shownFrame(m_image.size(), size());
}

void BrowserPicture::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    update();
    Q_EMIT imageChanged();
}

QSGNode* BrowserPicture::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    if (shown().isEmpty()) {
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
        node->setTexture(window()->createTextureFromImage(m_image, QQuickWindow::TextureIsOpaque));
    node->setRect(shown());
    return node;
}

void BrowserBlackoutItem::setBlackout(BrowserBlackout* blackout)
{
    if (blackout == m_blackout)
        return;
    if (m_blackout)
        m_blackout->disconnect(this);
    m_blackout = blackout;
    const auto show = [this] {
        setImage(m_blackout ? m_blackout->picture() : QImage());
    };
    if (blackout)
        connect(blackout, &BrowserBlackout::changed, this, show);
    show();
    Q_EMIT blackoutChanged();
}

}
