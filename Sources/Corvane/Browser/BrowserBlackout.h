#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QRectF>

namespace corvane {

/// The picture of a page as it will be saved. The user can black out parts of it.
class BrowserBlackout : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isBlackedOut READ isBlackedOut NOTIFY changed)
public:
    using QObject::QObject;

    void show(const QImage& picture); ///< null hides it
    void setLocked(bool locked) { m_isLocked = locked; } ///< while it is being saved
    const QImage& picture() const { return m_shown; } ///< with the blacked-out parts
    bool isBlackedOut() const { return !m_parts.isEmpty(); }

    Q_INVOKABLE void blackOut(const QRectF& part); ///< from 0 to 1 of the picture's width and height
    Q_INVOKABLE void undo(); ///< the last part

Q_SIGNALS:
    void changed();

private:
    QImage m_picture; ///< without the blacked-out parts
    QImage m_shown;
    QList<QRectF> m_parts;
    bool m_isLocked = false;
};

}
