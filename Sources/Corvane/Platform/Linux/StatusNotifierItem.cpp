#include "Platform/Linux/StatusNotifierItem.h"

#include "Platform/Linux/TrayIcon.h"

#include <QtEndian>

namespace corvane {

namespace {

TrayPixmap trayPixmap(const QImage& drawn)
{
    const QImage image = drawn.convertToFormat(QImage::Format_ARGB32);
    const qsizetype pixels = qsizetype(image.width()) * image.height();
    QByteArray argb(pixels * 4, Qt::Uninitialized);
    qToBigEndian<quint32>(image.constBits(), pixels, argb.data());
    return { image.width(), image.height(), argb };
}

}

void StatusNotifierItem::setUnread(int count)
{
    if (count == m_unread)
        return;
    const bool sameIcon = (count > 0) == (m_unread > 0);
    m_unread = count;
    if (!sameIcon)
        Q_EMIT NewIcon();
    Q_EMIT NewToolTip();
}

TrayPixmaps StatusNotifierItem::icon() const
{
    TrayPixmaps pixmaps;
    for (const int size : { 16, 22, 32, 48 })
        pixmaps.append(trayPixmap(trayIcon(size, m_unread > 0 ? UnreadMark::Present : UnreadMark::Absent)));
    return pixmaps;
}

TrayToolTip StatusNotifierItem::toolTip() const
{
    return { {}, {}, title(), m_unread > 0 ? QStringLiteral("%1 unread").arg(m_unread) : QString() };
}

void StatusNotifierItem::Activate(int, int)
{
    // Raising a window may take its time; the panel gets its answer first.
    QMetaObject::invokeMethod(this, &StatusNotifierItem::activated, Qt::QueuedConnection);
}

void StatusNotifierItem::SecondaryActivate(int x, int y)
{
    Activate(x, y);
}

void StatusNotifierItem::ContextMenu(int, int) { } // panels show the menu themselves

void StatusNotifierItem::Scroll(int, const QString&) { }

void StatusNotifierItem::ProvideXdgActivationToken(const QString& token)
{
    qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

}
