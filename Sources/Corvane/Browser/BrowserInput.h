#pragma once

#include <QJsonObject>
#include <QPointF>
#include <QRectF>
#include <Qt>
#include <optional>

namespace corvane {

/// What a pointing device did over the view that shows the page.
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

/// Where a frame stands in a view of that size: as large as its ratio allows, in the middle.
QRectF shownFrame(QSizeF frame, QSizeF view);

/// A point of the view on a page of the size `viewport`, never below 0. Nothing where either has no extent.
std::optional<QPointF> pagePoint(QPointF inView, QSizeF view, QSizeF viewport);

/// Parameters of Input.dispatchMouseEvent, at a point of the page.
QJsonObject pointerParameters(const BrowserPointer& pointer, QPointF at);

/// The nearest to a CSS cursor, such as "pointer" or "url(hand.png), grab"; the arrow where nothing is near.
Qt::CursorShape cursorShape(const QString& css);

/// Parameters of Input.dispatchKeyEvent; nothing for a key that a page knows nothing of.
std::optional<QJsonObject> keyParameters(const BrowserKey& key);

}
