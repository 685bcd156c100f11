#pragma once

#include "Browser/BrowserInput.h"
#include "Browser/DevToolsConnection.h"
#include "Browser/FrameDecoder.h"

#include <QObject>
#include <QPointer>

namespace corvane {

class BrowserPage;

/// The page as pictures, and the input for it. Points are relative to a view of the given size, which shows the frame
/// at its aspect ratio.
class BrowserSurface : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hasFrame READ hasFrame NOTIFY shown)
public:
    BrowserSurface(const BrowserPage& page, QObject* parent); ///< the page outlives it

    void attach(DevToolsConnection* connection); ///< of the page; null for none
    bool takesInput() const { return m_connection != nullptr; }

    const QImage& frameImage() const { return m_frame; } ///< null before the first
    bool hasFrame() const { return !m_frame.isNull(); }
    QSizeF viewportSize() const { return m_viewport; } ///< in pixels of the page; empty before the first frame

    void clickBrowser(QPointF point, QSizeF view);
    void pointer(const BrowserPointer& pointer, QSizeF view);
    void key(const BrowserKey& key);
    void insertText(const QString& text); ///< committed by an input method
    void compose(const QString& text, int cursor); ///< the preedit text of an input method
    void takeSelection(bool andCut, std::function<void(const QString&)> done);

Q_SIGNALS:
    void shown(); ///< the first frame
    void frameChanged();
    void cursorChanged(const QString& css); ///< over the page, as CSS names it

private:
    void show(const BrowserFrame& frame);
    void send(const QString& method, const QJsonObject& parameters);

    QPointer<DevToolsConnection> m_connection;
    QImage m_frame;
    QSizeF m_viewport;
    FrameDecoder m_decoder;
};

}
