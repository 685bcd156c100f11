#pragma once

#include "Browser/BrowserBlackout.h"

#include <QPointer>
#include <QQuickItem>
#include <QtQmlIntegration>

namespace corvane {

/// A picture as large as its ratio allows, in the middle of the item.
class BrowserPicture : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QRectF shown READ shown NOTIFY imageChanged) ///< its position in the item
public:
    explicit BrowserPicture(QQuickItem* parent = nullptr);

    void setImage(const QImage& image);
    QRectF shown() const;

Q_SIGNALS:
    void imageChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;

private:
    QImage m_image;
    bool m_isTextureOld = false;
};

/// The picture of a report as it will be saved.
class BrowserBlackoutItem : public corvane::BrowserPicture {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(corvane::BrowserBlackout* blackout READ blackout WRITE setBlackout NOTIFY blackoutChanged)
public:
    using BrowserPicture::BrowserPicture;

    BrowserBlackout* blackout() const { return m_blackout; }
    void setBlackout(BrowserBlackout* blackout);

Q_SIGNALS:
    void blackoutChanged();

private:
    QPointer<BrowserBlackout> m_blackout;
};

}
