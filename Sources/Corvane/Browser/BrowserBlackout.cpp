#include "Browser/BrowserBlackout.h"

#include "Browser/BrowserEvidence.h"

namespace corvane {

void BrowserBlackout::show(const QImage& picture)
{
    m_picture = picture;
    m_shown = picture;
    m_parts.clear();
    Q_EMIT changed();
}

void BrowserBlackout::blackOut(const QRectF& part)
{
    const QRectF inside = part.normalized().intersected(QRectF(0, 0, 1, 1));
    if (inside.isEmpty() || m_isLocked)
        return;
    m_parts.append(inside);
    m_shown = blackedOut(m_shown, { inside });
    Q_EMIT changed();
}

void BrowserBlackout::undo()
{
    if (m_parts.isEmpty() || m_isLocked)
        return;
    m_parts.removeLast();
    m_shown = blackedOut(m_picture, m_parts);
    Q_EMIT changed();
}

}
