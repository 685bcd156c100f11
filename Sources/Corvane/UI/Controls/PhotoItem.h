#pragma once

#include "Platform/MediaDecoder.h"

#include <QImage>
#include <QQuickItem>
#include <QtQmlIntegration>

namespace corvane {

/// An untrusted picture, decoded in another process, with rounded corners. Its height is fixed; if `mostWidth` is set,
/// too, `implicitWidth` follows the picture's ratio between the two widths, otherwise the picture fills the item.
class PhotoItem : public QQuickItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(Photo)
    Q_PROPERTY(QString path READ path WRITE setPath NOTIFY pathChanged) ///< of a file; empty for none
    Q_PROPERTY(qreal radius MEMBER m_radius NOTIFY shapeChanged)
    Q_PROPERTY(qreal leastWidth MEMBER m_leastWidth NOTIFY shapeChanged)
    Q_PROPERTY(qreal mostWidth MEMBER m_mostWidth NOTIFY shapeChanged)
    Q_PROPERTY(bool ready READ ready NOTIFY statusChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY statusChanged) ///< why there is no picture; empty for none
public:
    explicit PhotoItem(QQuickItem* parent = nullptr);

    const QString& path() const { return m_path; }
    void setPath(const QString& path);
    bool ready() const { return !m_picture.isNull(); }
    const QString& problem() const { return m_problem; }

Q_SIGNALS:
    void pathChanged();
    void shapeChanged();
    void statusChanged();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void updatePolish() override;
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;

private:
    PictureBox box() const;
    void ask();
    void show(const QImage& picture, const QString& problem);
    QImage rounded() const;

    QString m_path;
    qreal m_radius = 0;
    qreal m_leastWidth = 0;
    qreal m_mostWidth = 0;
    double m_ratio = 1; ///< the device pixel ratio
    QString m_askedPath;
    PictureBox m_askedBox;
    MediaDecoder::Handle m_request;
    QImage m_picture; ///< in device pixels
    QString m_problem;
    bool m_isTextureOld = false;
};

}
