#pragma once

#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace corvane {

/// Draws a text as a QR code, in whole pixels for cameras. If the text is too long for one, it draws nothing and
/// `valid` is false.
class QrItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QColor ink READ ink WRITE setInk NOTIFY inkChanged)
    Q_PROPERTY(bool valid READ valid NOTIFY textChanged)
public:
    explicit QrItem(QQuickItem* parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString& text);
    QColor ink() const { return m_ink; }
    void setInk(const QColor& ink);
    bool valid() const { return !m_modules.isNull(); }

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void textChanged();
    void inkChanged();

private:
    QString m_text;
    QColor m_ink;
    QImage m_modules; ///< one pixel per module, one bit deep; null if there is nothing to draw
};

}
