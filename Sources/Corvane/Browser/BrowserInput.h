#pragma once

#include <QJsonObject>
#include <QPointF>
#include <QRectF>
#include <Qt>
#include <optional>

namespace corvane {

/// An event of a pointing device over the view that shows the page.
struct BrowserPointer {
    enum class Kind { Press, Release, Move, Wheel };

    Kind kind = Kind::Move;
    QPointF at = {}; ///< in the view
    Qt::MouseButton button = Qt::NoButton; ///< pressed or released
    Qt::MouseButtons buttons = Qt::NoButton; ///< held now
    int clicks = 0; ///< 2 for a double click
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    QPointF wheel = {}; ///< in pixels; down and right are positive
};

struct BrowserKey {
    bool isDown = true;
    int key = 0; ///< a Qt::Key
    QString text = {}; ///< what it types; empty for none
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    bool isRepeated = false;
};

/// The position of a frame in a view of that size: centred, and as large as its ratio allows.
QRectF shownFrame(QSizeF frame, QSizeF view);

/// Maps a point of the view to a page of the size `viewport`, never below 0. Nothing if either size is empty.
std::optional<QPointF> pagePoint(QPointF inView, QSizeF view, QSizeF viewport);

/// Parameters of Input.dispatchMouseEvent, at a point of the page.
QJsonObject pointerParameters(const BrowserPointer& pointer, QPointF at);

/// The nearest match for a CSS cursor, such as "pointer" or "url(hand.png), grab"; the arrow if there is none.
Qt::CursorShape cursorShape(const QString& css);

/// Parameters of Input.dispatchKeyEvent; nothing for a key that pages do not support.
std::optional<QJsonObject> keyParameters(const BrowserKey& key);

}
