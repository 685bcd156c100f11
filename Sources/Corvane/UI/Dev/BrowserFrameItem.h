#pragma once

#include "Browser/BrowserSurface.h"
#include "UI/Dev/BrowserPicture.h"

#include <QPointer>

namespace corvane {

/// Shows a browser's page and passes pointer, keyboard and input method to it, except for the keys of the window and
/// the pane.
class BrowserFrameItem : public corvane::BrowserPicture {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(corvane::BrowserSurface* surface READ surface WRITE setSurface NOTIFY surfaceChanged)
public:
    explicit BrowserFrameItem(QQuickItem* parent = nullptr);

    BrowserSurface* surface() const { return m_surface; }
    void setSurface(BrowserSurface* surface);

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    void surfaceChanged();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void send(BrowserPointer::Kind kind, const QSinglePointEvent& event);
    void edit(const QKeyEvent& event);

    QPointer<BrowserSurface> m_surface;
    Qt::CursorShape m_cursor = Qt::ArrowCursor; ///< over the page
    int m_clicks = 1; ///< of the button that was pressed last
};

}
